#include <qualityutility/tool/file/documentcheck.h>

#include <QJsonDocument>
#include <QTest>

using DocumentCheck::check;

namespace {

QJsonObject parse(const QByteArray& text)
{
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(text, &error);
    if (error.error != QJsonParseError::NoError)
        qFatal("%s: %s", text.constData(), qPrintable(error.errorString()));
    return document.object();
}

} // namespace

class DocumentCheckTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aKindIsToldByItsKeys_data()
    {
        QTest::addColumn<QByteArray>("document");
        QTest::addColumn<QString>("kind"); ///< null: none
        const QString cache = "fine-gray cache";
        const QString configuration = "fine-gray configuration";
        QTest::newRow("no key") << QByteArray("{}") << QString();
        QTest::newRow("keys of several kinds, or of parts")
            << QByteArray(R"({"Time": "", "Temperature": 1, "lum": 1})") << QString();
        QTest::newRow("correction tables") << QByteArray(R"({"rMeasure": [], "magnitudes": []})") << configuration;
        QTest::newRow("a foreign switch") << QByteArray(R"({"open18bit": true})") << configuration;
        QTest::newRow("measurements alone") << QByteArray(R"({"bMeasure": []})") << cache;
        QTest::newRow("a cache that an updater made") << QByteArray(R"({"magnitudes": [], "wMGMeasure": []})") << cache;
        QTest::newRow("kept measurements") << QByteArray(R"({"wMeasure9": []})") << cache;
        QTest::newRow("target") << QByteArray(R"({"TargetColorGamnut": {}})") << "NICC configuration";
        QTest::newRow("status") << QByteArray(R"({"FromInputStatus": 1})") << "new-NICC document";
    }

    void aKindIsToldByItsKeys()
    {
        QFETCH(QByteArray, document);
        const auto report = check(parse(document));
        QTEST(report ? report->kind : QString(), "kind");
    }

    void aFaultIsToldByPath_data()
    {
        QTest::addColumn<QByteArray>("document");
        QTest::addColumn<QStringList>("faults");
        QTest::newRow("unknown keys") << QByteArray(R"({"magnitudes": [], "color": 1, "mgData": {"x": 1}})")
                                      << QStringList({"color: unknown key", "mgData.x: unknown key"});
        QTest::newRow("wrong types")
            << QByteArray(R"({"openGray": 1, "xbitType": 2.5, "grayEffectPara": [], "rGrayCoeffs": [1, "2"],
                "mgData": {"wMGMeasure": 1, "compBase": "4"}})")
            << QStringList({"grayEffectPara: expected an object", "mgData.compBase: expected an integer",
                            "mgData.wMGMeasure: expected an array of measurement series",
                            "openGray: expected true or false", "rGrayCoeffs[1]: expected an integer",
                            "xbitType: expected an integer"});
        QTest::newRow("numbers outside their range")
            << QByteArray(R"({"magnitudes": [255, 256], "grayDetailPara": {"peakLum": -2},
                "mgData": {"mgCurrentLUTs": [-2147483648, 2147483648]}})")
            << QStringList({"grayDetailPara.peakLum: expected at least 0, found -2",
                            "magnitudes[1]: expected 0 to 255, found 256",
                            "mgData.mgCurrentLUTs[1]: expected at least -2.14748e+09, found 2.14748e+09"});
        QTest::newRow("points") << QByteArray(
                                       R"({"rMeasure": [{"lum": -1, "x": 0.6, "y": 0.5}, 5, {"x": 1.5, "z": 0}]})")
                                << QStringList({"rMeasure[0].lum: expected at least 0, found -1",
                                                "rMeasure[0]: x + y is 1.1, outside the chromaticity diagram",
                                                "rMeasure[1]: expected a point with lum, x and y",
                                                "rMeasure[2].x: expected 0 to 1, found 1.5",
                                                "rMeasure[2].z: unknown key", "rMeasure[2]: has no lum",
                                                "rMeasure[2]: has no y",
                                                "rMeasure[2]: x + y is 1.5, outside the chromaticity diagram"});
        QTest::newRow("lengths of each group")
            << QByteArray(R"({"grayAdvance": {"coeffs": {"rGrayCoeffs": [1], "gGrayCoeffs": []}, "magBits": [1, 2],
                "targetLum": {"rLumTarget": [0.5], "bLumTarget": []}}, "magnitudes": [1],
                "rMeasure": [], "gMeasure": [{"lum": 1, "x": 0, "y": 0}]})")
            << QStringList({"grayAdvance.coeffs.gGrayCoeffs: has 0 entries, rGrayCoeffs has 1",
                            "grayAdvance.targetLum.bLumTarget: has 0 entries, rLumTarget has 1",
                            "gMeasure: has 1 entries, rMeasure has 0"});
        QTest::newRow("lengths of the tables and of magic gray")
            << QByteArray(R"({"bGrayCoeffs": [1], "magnitudes": [], "mgData": {"rMG0Measure": [], "gMG1Measure": [],
                "bMG1Measure": [{"lum": 1, "x": 0, "y": 0}], "bMGFirstMeasure": [], "gMGMeasure": [],
                "bMGMeasure": [{"measure": []}], "wMGMeasure": [{"measure": []}, {"measure": []}],
                "mgCurrentLUTs": [1, 2, 3], "mgComGainLUTOdd": [1], "mgComGainLUTEven": []}})")
            << QStringList({"mgData.bMG1Measure: has 1 entries, gMG1Measure has 0",
                            "mgData.bMGMeasure: has 1 entries, gMGMeasure has 0",
                            "mgData.mgComGainLUTEven: has 0 entries, mgComGainLUTOdd has 1",
                            "magnitudes: has 0 entries, bGrayCoeffs has 1"});
        QTest::newRow("series") << QByteArray(R"({"wMGMeasure": [{"measure": [{"lum": 1, "x": 0.3}]}, {}]})")
                                << QStringList({"wMGMeasure[0].measure[0]: has no y",
                                                "wMGMeasure[1]: expected an object with \"measure\""});
        QTest::newRow("gamuts") << QByteArray(R"({"LEDColorGamnut": {"RedPoint": [], "name": 1, "Cover": "0.5"},
                "IsOpen": "on", "UsedIndex": -1, "vesion": 2})")
                                << QStringList({"IsOpen: expected true or false",
                                                "LEDColorGamnut.Cover: expected a number",
                                                "LEDColorGamnut.RedPoint: expected a point with lum, x and y",
                                                "LEDColorGamnut.name: expected a text",
                                                "UsedIndex: expected at least 0, found -1", "vesion: expected a text"});
        QTest::newRow("good: a status may be negative, lists may be empty")
            << QByteArray(R"({"GamutName": "", "Temperature": 0, "FromInputStatus": -1})") << QStringList();
    }

    void aFaultIsToldByPath()
    {
        QFETCH(QByteArray, document);
        QTEST(check(parse(document))->faults, "faults");
    }

    void whatIsThereIsSummedUpInTheOrderOfItsMeaning()
    {
        const QJsonObject root =
            parse(R"({"switchMG": true, "mgData": {"compBase": 4, "mgCurrentLUTs": [3, -1, 2], "rMGMeasure": [{}, {}]},
            "grayDetailPara": {"switchINVTMO": false, "maxLum": 1000, "detailLevel": 3, "peakInvalid": true},
            "bMeasure": [], "rMeasure": [{"lum": 2.5, "x": 0.3, "y": 0.3}, {"lum": 0.5, "x": 0.3, "y": 0.3}]})");
        QCOMPARE(check(root)->summary,
                 QStringList({"rMeasure: 2 points, 0.5 to 2.5 cd/m2", "bMeasure: none", "grayDetailPara.detailLevel: 3",
                              "grayDetailPara.peakInvalid: on", "grayDetailPara.maxLum: 1000",
                              "grayDetailPara.switchINVTMO: off", "mgData.rMGMeasure: 2 series",
                              "mgData.mgCurrentLUTs: 3 numbers, -1 to 3", "mgData.compBase: 4"}));
        const QJsonObject nicc = parse(R"({"vesion": "2.0", "TargetColorGamnut": {"name": "Rec.709", "Cover": 0.95,
            "WhitePoint": {"lum": 100, "x": 0.3127, "y": 0.329}}})");
        QCOMPARE(check(nicc)->summary,
                 QStringList({"vesion: 2.0", "TargetColorGamnut.WhitePoint: 100 cd/m2, x 0.3127, y 0.329",
                              "TargetColorGamnut.name: Rec.709", "TargetColorGamnut.Cover: 0.95"}));
    }
};

QTEST_GUILESS_MAIN(DocumentCheckTest)
#include "tst_documentcheck.moc"
