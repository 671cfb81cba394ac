#include "support/logcapture.h"
#include "support/testfiles.h"
#include <qualityutility/tool/file/picqualityfiletool.h>
#include <suite/model/finegray.h>
#include <suite/model/graydetailpara.h>
#include <suite/model/grayeffectpara.h>
#include <suite/model/magicgraycoeffs.h>
#include <suite/model/magicgrayparam.h>

#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QTemporaryDir>
#include <QTest>

using Tool = PicQualityFileTool;
using Model::LXY;
using Points = std::vector<LXY>;
using Update = std::function<bool(const QString&)>;
using Read = std::function<bool(const QString&, QList<LXY>&)>;

Q_DECLARE_METATYPE(Update)
Q_DECLARE_METATYPE(Read)

namespace {

QJsonArray parseArray(const char* text)
{
    return QJsonDocument::fromJson(text).array();
}

QJsonObject parse(const QByteArray& text)
{
    return QJsonDocument::fromJson(text).object();
}

Points points(int count, double first)
{
    Points result;
    for (int i = 0; i < count; ++i)
        result.push_back({first + i, 0.3 + 0.001 * i, 0.33, {}});
    return result;
}

QList<LXY> pointList(int count, double first)
{
    const Points all = points(count, first);
    return {all.begin(), all.end()};
}

Model::FineGrayCoeffs coeffs()
{
    Model::FineGrayCoeffs result;
    result.rGrayCoeffs = {0, 1, 255};
    result.gGrayCoeffs = {2};
    result.magnitudes = {9, 8};
    return result;
}

Model::FineGrayAdvanceParam advance(int whitePoints)
{
    Model::FineGrayAdvanceParam result;
    result.maxNum = 6;
    result.caliNum = 2;
    result.wMeasure = points(whitePoints, 100.0 * whitePoints);
    result.caliLength = 1000;
    result.rGrayCoeffs = {1, 2};
    result.bGrayCoeffs = {3};
    result.magBits = {4, 5, 6};
    result.rLumTarget = {0.125, 1e-9};
    result.bLumTarget = {7};
    return result;
}

Model::MagicGrayCoeffs magicGray()
{
    Model::MagicGrayCoeffs result;
    result.getR0Measures() = points(2, 1);
    result.getG0Measures() = points(1, 2);
    result.getB0Measures() = points(1, 3);
    result.getR1Measures() = points(1, 4);
    result.getG1Measures() = points(1, 5);
    result.getB1Measures() = points(1, 6);
    result.getFirstRMeasures() = points(1, 7);
    result.getFirstGMeasures() = points(1, 8);
    result.getFirstBMeasures() = points(1, 9);
    result.getACRMeasures() = {{0, points(1, 10)}, {1, points(2, 11)}};
    result.getACGMeasures() = {{0, points(1, 12)}};
    result.getACBMeasures() = {{0, points(1, 13)}};
    result.getWhiteMeasures() = {{0, {}}, {1, points(1, 14)}};
    result.getCurrentLUTs() = {-1, 0, 70000};
    result.getComGainLUTOdd() = {1};
    result.getComGainLUTEven() = {2};
    return result;
}

/// A list of every kind that the tool converts, from numbers.
template <typename List>
QJsonArray written(const List& list)
{
    QJsonArray out{1, 2, 3};
    Tool::listToJsonArray(list, out);
    return out;
}

template <typename List>
List readBack(const QJsonArray& array)
{
    List out;
    out.push_back(typename List::value_type()); // to be replaced
    Tool::jsonArrayToList(array, out);
    return out;
}

const QStringList measurementKeys{"rMG0Measure", "gMG0Measure",     "bMG0Measure",     "rMG1Measure",     "gMG1Measure",
                                  "bMG1Measure", "rMGFirstMeasure", "gMGFirstMeasure", "bMGFirstMeasure", "rMGMeasure",
                                  "gMGMeasure",  "bMGMeasure",      "wMGMeasure"};
const QStringList emptyConfigKeys{"bGrayCoeffs", "bMeasure",    "gGrayCoeffs", "gMeasure",
                                  "magnitudes",  "rGrayCoeffs", "rMeasure"};

} // namespace

class PicQualityFileToolTest : public QObject
{
    Q_OBJECT

private:
    QString write(const QByteArray& content) { return writeFile(m_path, content); }
    QByteArray content() const { return readFile(m_path); }
    QJsonObject root() const { return parse(content()); }

    QTemporaryDir m_folder;
    const QString m_path = m_folder.filePath("document.json");

private Q_SLOTS:
    void init() { QFile::remove(m_path); }

    void numbersConvertAsQtDoes()
    {
        const QJsonArray mixed = parseArray(R"([1, "2", true, 3.9, 4.0, null, [5], {"a": 6}, -1, 300, 4294967296])");
        QCOMPARE(readBack<std::vector<int>>(mixed), std::vector<int>({1, 0, 0, 0, 4, 0, 0, 0, -1, 300, 0}));
        const std::vector<unsigned char> bytes{1, 0, 0, 0, 4, 0, 0, 0, 255, 44, 0};
        QCOMPARE(readBack<std::vector<unsigned char>>(mixed), bytes);
        QCOMPARE(readBack<QList<unsigned char>>(mixed), QList<unsigned char>(bytes.begin(), bytes.end()));
        const std::vector<unsigned int> words{1, 0, 0, 0, 4, 0, 0, 0, 4294967295u, 300, 0};
        QCOMPARE(readBack<std::vector<unsigned int>>(mixed), words);
        QCOMPARE(readBack<QList<unsigned int>>(mixed), QList<unsigned int>(words.begin(), words.end()));
        const std::vector<double> doubles{1, 0, 0, 3.9, 4, 0, 0, 0, -1, 300, 4294967296.0};
        QCOMPARE(readBack<std::vector<double>>(mixed), doubles);
        QCOMPARE(readBack<QList<double>>(mixed), QList<double>(doubles.begin(), doubles.end()));
    }

    void unsignedNumbersKeepTheirBits()
    {
        QCOMPARE(written(std::vector<unsigned int>{4294967295u, 2147483648u}), QJsonArray({-1, -2147483647 - 1}));
        QCOMPARE(written(QList<unsigned int>{7}), QJsonArray({7}));
        QCOMPARE(readBack<std::vector<unsigned int>>(parseArray("[-2147483648]")),
                 std::vector<unsigned int>{2147483648u});
    }

    void listsReplaceWhatWasThere()
    {
        QCOMPARE(written(std::vector<int>{}), QJsonArray());
        QVERIFY(readBack<QList<LXY>>({}).isEmpty());
        QCOMPARE(written(std::vector<double>{0.1, -2}), QJsonArray({0.1, -2}));
        QCOMPARE(written(QList<double>{0.5}), QJsonArray({0.5}));
        QCOMPARE(written(std::vector<unsigned char>{255}), QJsonArray({255}));
        QCOMPARE(written(QList<unsigned char>{0}), parseArray("[0]"));
        QJsonArray point;
        point.append(parse(R"({"lum": 1, "x": 0.25, "y": 0.5})"));
        QCOMPARE(written(Points{{1, 0.25, 0.5, "name"}}), point);
    }

    void pointsAreTakenFromObjectsOnly()
    {
        const QJsonArray array = parseArray(
            R"([{"lum": 1, "x": 0.3, "y": 0.3, "z": 9}, 5, "text", {"x": 0.2}, {"lum": "1.5", "x": true, "y": null}])");
        const Points expected{{1, 0.3, 0.3, {}}, {0, 0.2, 0, {}}, {1.5, 1, 0, {}}};
        QCOMPARE(readBack<Points>(array), expected);
        QCOMPARE(readBack<QList<LXY>>(array), QList<LXY>(expected.begin(), expected.end()));
        QCOMPARE(getLxy({{"lum", "1.5"}, {"x", true}}), expected.back());
    }

    void seriesAreRenumberedWhenRead()
    {
        const Tool::MeasureSeries series{{3, points(1, 1)}, {7, points(2, 2)}};
        QJsonArray array{1};
        Tool::mapToJsonArray(series, array);
        QCOMPARE(array.size(), 2);
        QCOMPARE(array.at(0).toObject().keys(), QStringList("measure"));
        Tool::MeasureSeries back{{9, {}}};
        Tool::jsonArrayToMap(array, back);
        QCOMPARE(back, Tool::MeasureSeries({{0, points(1, 1)}, {1, points(2, 2)}}));
        Tool::jsonArrayToMap(
            parseArray(R"([5, {"measure": 5}, {"other": []}, {"measure": [{"lum": 4}]}, {"measure": []}])"), back);
        QCOMPARE(back, Tool::MeasureSeries({{0, {{4, 0, 0, {}}}}, {1, {}}}));
    }

    void copyReplacesTheDestination()
    {
        const QString target = m_folder.filePath("copy.bin");
        LogCapture log;
        QVERIFY(!Tool::copyFile(m_path, target));
        QCOMPARE(log.take(), QStringList("critical default: file \"" + m_path + "\" not find"));
        write("new");
        QFile::setPermissions(m_path, QFile::ReadOwner | QFile::WriteOwner);
        writeFile(target, "older content");
        QVERIFY(Tool::copyFile(m_path, target));
        QCOMPARE(readFile(target), QByteArray("new"));
        QVERIFY(!(QFile::permissions(target) & (QFile::ReadGroup | QFile::ReadOther)));
        QVERIFY(Tool::copyFile(m_path, m_path)); // onto itself: nothing is lost
        QCOMPARE(content(), QByteArray("new"));
        QVERIFY(!Tool::copyFile(m_path, m_folder.filePath("absent/copy.bin")));
    }

    void configurationComesBackWhole()
    {
        Model::GrayEffectPara effect;
        effect.setSupGraySwitch(true);
        effect.setFineGraySwitch(true);
        effect.set22bitSwitch(true);
        effect.setMGSwitch(true);
        Model::GrayDetailPara detail;
        detail.setQualityAdvance(true);
        detail.setDetailAdvance(true);
        detail.setDetailLevel(3);
        detail.setABLSwitch(true);
        detail.setPeakValid(true);
        detail.setPeakMeasure(750);
        detail.setPeakLum(800);
        detail.setMaxLum(1000);
        detail.setINVTMOSwitch(true);
        QVERIFY(Tool::writeFineGrayConfig(m_path, pointList(3, 1), pointList(2, 20), pointList(1, 30), coeffs()));
        QVERIFY(Tool::updateGrayStateConfig(m_path, effect, detail));
        QVERIFY(Tool::updateMGGrayConfig(m_path, magicGray(), {}));

        QList<LXY> red, green, blue;
        Model::FineGrayCoeffs tables;
        Model::GrayEffectPara effectBack;
        Model::GrayDetailPara detailBack;
        Model::MagicGrayCoeffs magicBack;
        Model::MagicGrayParam param;
        QVERIFY(Tool::readFineGrayConfig(m_path, red, green, blue, tables, effectBack, detailBack, magicBack, param));
        QCOMPARE(red, pointList(3, 1));
        QCOMPARE(green, pointList(2, 20));
        QCOMPARE(blue, pointList(1, 30));
        QCOMPARE(tables, coeffs());
        QCOMPARE(effectBack, effect);
        QCOMPARE(detailBack, detail);
        QCOMPARE(magicBack, magicGray());
        QCOMPARE(param, Model::MagicGrayParam());
        QVERIFY(Tool::readFineGrayConfig(m_path, green, blue, red, tables));
        QCOMPARE(green, pointList(3, 1));

        QVERIFY(Tool::writeFineGrayConfig(m_path, {}, {}, {}, {})); // a writer drops all sections
        QCOMPARE(root().keys(), emptyConfigKeys);
    }

    void cacheComesBackWhole()
    {
        QVERIFY(Tool::writeFineGrayCache(m_path, pointList(2, 1), pointList(1, 2), {}));
        QCOMPARE(root().keys(), QStringList({"bMeasure", "gMeasure", "rMeasure"}));
        QVERIFY(Tool::updateFineGrayCache(m_path, advance(4)));
        QVERIFY(Tool::updateFineGrayCache(m_path, magicGray()));
        QList<LXY> red, green, blue{{1, 2, 3, {}}};
        Model::FineGrayAdvanceParam advanceBack;
        Model::MagicGrayCoeffs magicBack;
        magicBack.getCurrentLUTs() = {5};
        QVERIFY(Tool::readFineGrayCache(m_path, red, green, blue, advanceBack, magicBack));
        QCOMPARE(red, pointList(2, 1));
        QCOMPARE(green, pointList(1, 2));
        QVERIFY(blue.isEmpty());
        QCOMPARE(advanceBack, advance(4));
        Model::MagicGrayCoeffs expected = magicGray();
        expected.getCurrentLUTs() = {5}; // the cache keeps no tables
        expected.getComGainLUTOdd().clear();
        expected.getComGainLUTEven().clear();
        QCOMPARE(magicBack, expected);
        QVERIFY(Tool::readFineGrayCache(m_path, green, blue, red, advanceBack));
        QCOMPARE(green, pointList(2, 1));
    }

    void updatersKeepWhatIsNotTheirs_data()
    {
        QTest::addColumn<Update>("update");
        QTest::addColumn<QStringList>("owned");
        QTest::newRow("gray state") << Update([](const QString& path) {
            return Tool::updateGrayStateConfig(path, {}, {});
        }) << QStringList({"grayDetailPara", "grayEffectPara"});
        QTest::newRow("magic gray") << Update([](const QString& path) {
            return Tool::updateMGGrayConfig(path, magicGray(), {});
        }) << QStringList("mgData");
        QTest::newRow("cache advance") << Update([](const QString& path) {
            return Tool::updateFineGrayCache(path, advance(1));
        }) << QStringList("grayAdvance");
        QTest::newRow("cache magic gray")
            << Update([](const QString& path) { return Tool::updateFineGrayCache(path, magicGray()); })
            << measurementKeys;
    }

    void updatersKeepWhatIsNotTheirs()
    {
        QFETCH(Update, update);
        QFETCH(QStringList, owned);
        owned.sort();
        // A missing file begins as the empty configuration.
        QVERIFY(update(m_path));
        QStringList expected = emptyConfigKeys + owned;
        expected.sort();
        QCOMPARE(root().keys(), expected);
        QVERIFY(root().value("rMeasure").isArray());
        QVERIFY(content().startsWith("{\n    \"")); // indented

        QJsonObject before =
            parse(R"({"other": [1, 2.5, "x", null, {"deep": true}], "openGray": true, "rMeasure": [{"lum": 0.1}],
            "mgData": {"compBase": 4}, "grayEffectPara": 1, "grayDetailPara": 2, "grayAdvance": 3, "wMGMeasure": 4})");
        write(QJsonDocument(before).toJson());
        QVERIFY(update(m_path));
        QJsonObject after = root();
        for (const QString& key : owned) {
            QVERIFY2(after.take(key) != before.take(key), qPrintable(key));
        }
        QCOMPARE(after, before);

        write("not JSON at all");
        QVERIFY(update(m_path));
        QCOMPARE(root().keys(), owned);

        LogCapture log;
        write("");
        QVERIFY(!update(m_path));
        QCOMPARE(content(), QByteArray());
        QVERIFY(!update(m_folder.path()));
        QVERIFY(!update(m_folder.filePath("absent/document.json")));
        QCOMPARE(log.take(), QStringList({"critical default: file \"" + m_path + "\"  invalid!!!",
                                          "critical default: file \"" + m_folder.path() + "\" open failed!!!",
                                          "critical default: file \"" + m_folder.filePath("absent/document.json") +
                                              "\" open failed!!!"}));
    }

    void magicGraySectionNeverHoldsForeignParameters()
    {
        write(R"({"mgData": {"compBase": 4, "maxDataShiftBase": 4}})");
        QVERIFY(Tool::updateMGGrayConfig(m_path, {}, {}));
        QStringList keys = measurementKeys + QStringList{"mgCurrentLUTs", "mgComGainLUTOdd", "mgComGainLUTEven"};
        keys.sort();
        QCOMPARE(root().value("mgData").toObject().keys(), keys);
    }

    void foreignMagicGrayParametersAreTaken_data()
    {
        QTest::addColumn<QByteArray>("section");
        QTest::addColumn<int>("baseScaleBit");
        QTest::addColumn<int>("pwmRangeBit");
        QTest::newRow("both") << QByteArray(R"({"compBase": 4, "maxDataShiftBase": 4})") << 4 << 12;
        QTest::newRow("text") << QByteArray(R"({"compBase": "4", "maxDataShiftBase": "4"})") << -1 << -1;
        QTest::newRow("top of the range")
            << QByteArray(R"({"compBase": 2147483647, "maxDataShiftBase": 2147483647})") << 2147483647 << 2147483647;
        QTest::newRow("not whole") << QByteArray(R"({"compBase": 4.5, "maxDataShiftBase": 4.5})") << 0 << 8;
    }

    void foreignMagicGrayParametersAreTaken()
    {
        QFETCH(QByteArray, section);
        Model::MagicGrayParam param;
        param.setBaseScaleBit(-1);
        param.setPWMRangeBit(-1);
        Model::MagicGrayCoeffs magic = magicGray();
        Tool::JsonToMGCoeffs(parse(section), magic, param);
        QTEST(param.getBaseScaleBit(), "baseScaleBit");
        QTEST(param.getPWMRangeBit(), "pwmRangeBit");
        QCOMPARE(magic, magicGray()); // nothing else is in the section

        write(R"({"compBase": 99, "rMG0Measure": 5})"); // at a cache's root it reaches no caller
        QList<LXY> list;
        Model::FineGrayAdvanceParam unused;
        QVERIFY(Tool::readFineGrayCache(m_path, list, list, list, unused, magic));
        QCOMPARE(magic, magicGray());
    }

    void membersOfAnotherTypeLeaveTheRecordAsItWas()
    {
        Model::GrayEffectPara effect;
        effect.setSupGraySwitch(true);
        Tool::JsonTograyPara(parse(R"({"supGraySwitch": 0, "switchMG": true, "fineGraySwitch": "true"})"), effect);
        QVERIFY(effect.getSupGraySwitch() && effect.getMGSwitch() && !effect.getFineGraySwitch());

        Model::FineGrayAdvanceParam param = advance(2);
        Tool::getGrayAdvane(
            parse(R"({"maxNum": "9", "caliNum": 2.5, "wMeasure": 1, "coeffs": [], "targetLum": {"rLumTarget": 4,
            "gLumTarget": [1, "x"]}})"),
            param);
        Model::FineGrayAdvanceParam expected = advance(2);
        expected.caliNum = 0; // a number that is not whole
        expected.gLumTarget = {1, 0};
        QCOMPARE(param, expected);
    }

    void peakValuesAreTakenOnlyWhenValid_data()
    {
        QTest::addColumn<QByteArray>("section");
        QTest::addColumn<bool>("before");
        QTest::addColumn<bool>("valid");
        QTest::addColumn<int>("peakLum");
        QTest::newRow("absent") << QByteArray(R"({"peakLum": 500})") << false << false << 7;
        QTest::newRow("not valid") << QByteArray(R"({"peakInvalid": false, "peakLum": 500})") << true << true << 7;
        QTest::newRow("valid") << QByteArray(R"({"peakInvalid": true, "peakLum": 500})") << false << true << 500;
        QTest::newRow("valid, text") << QByteArray(R"({"peakInvalid": true, "peakLum": "500"})") << false << true << 7;
        QTest::newRow("mark is a number") << QByteArray(R"({"peakInvalid": 1, "peakLum": 500})") << false << false << 7;
    }

    void peakValuesAreTakenOnlyWhenValid()
    {
        QFETCH(QByteArray, section);
        QFETCH(bool, before);
        Model::GrayDetailPara detail;
        detail.setPeakValid(before);
        detail.setPeakLum(7);
        Tool::JsonTodetailPara(parse(section), detail);
        QTEST(detail.getPeakValid(), "valid");
        QTEST(detail.getPeakLum(), "peakLum");
        Tool::JsonTodetailPara(parse(R"({"detailLevel": 2.5, "switchINVTMO": true})"), detail);
        QCOMPARE(detail.getDetailLevel(), 0);
        QVERIFY(detail.getINVTMOSwitch());
    }

    void longerWhiteMeasurementsAreKeptInNineSlots()
    {
        // Each shorter list moves its predecessor into the next slot; the tenth finds none.
        for (int count = 17; count >= 7; --count)
            QVERIFY(Tool::updateFineGrayCache(m_path, advance(count)));
        const QJsonObject document = root();
        for (int slot = 1; slot <= 9; ++slot) {
            const int kept = 18 - slot;
            QCOMPARE(readBack<Points>(document.value("wMeasure" + QString::number(slot)).toArray()),
                     points(kept, 100.0 * kept));
        }
        QVERIFY(!document.contains("wMeasure10"));
        QCOMPARE(document["grayAdvance"]["wMeasure"].toArray().size(), 7);
    }

    void whiteMeasurementsAreKeptOnlyWhenTheyAreMore_data()
    {
        QTest::addColumn<QByteArray>("before");
        QTest::addColumn<bool>("kept");
        QTest::newRow("none stored") << QByteArray(R"({"a": 1})") << false;
        QTest::newRow("as many") << QByteArray(R"({"grayAdvance": {"wMeasure": [1, 2]}})") << false;
        QTest::newRow("more") << QByteArray(R"({"grayAdvance": {"wMeasure": [1, 2, 3]}})") << true;
        QTest::newRow("not an object") << QByteArray(R"({"grayAdvance": [1, 2, 3]})") << false;
        QTest::newRow("without white") << QByteArray(R"({"grayAdvance": {"maxNum": 3}})") << false;
        QTest::newRow("white is no array") << QByteArray(R"({"grayAdvance": {"wMeasure": 3}})") << false;
    }

    void whiteMeasurementsAreKeptOnlyWhenTheyAreMore()
    {
        QFETCH(QByteArray, before);
        QFETCH(bool, kept);
        write(before);
        QVERIFY(Tool::updateFineGrayCache(m_path, advance(2)));
        QCOMPARE(root().value("wMeasure1"),
                 kept ? QJsonValue(parseArray("[1, 2, 3]")) : QJsonValue(QJsonValue::Undefined));
        QCOMPARE(root().value("grayAdvance")["wMeasure"].toArray().size(), 2);
    }

    void readersSayWhyTheyFail_data()
    {
        QTest::addColumn<Read>("read");
        QTest::newRow("configuration") << Read([](const QString& path, QList<LXY>& list) {
            Model::FineGrayCoeffs tables;
            return Tool::readFineGrayConfig(path, list, list, list, tables);
        });
        QTest::newRow("whole configuration") << Read([](const QString& path, QList<LXY>& list) {
            Model::FineGrayCoeffs tables;
            Model::GrayEffectPara effect;
            Model::GrayDetailPara detail;
            Model::MagicGrayCoeffs magic;
            Model::MagicGrayParam param;
            return Tool::readFineGrayConfig(path, list, list, list, tables, effect, detail, magic, param);
        });
        QTest::newRow("cache") << Read([](const QString& path, QList<LXY>& list) {
            Model::FineGrayAdvanceParam param;
            return Tool::readFineGrayCache(path, list, list, list, param);
        });
    }

    void readersSayWhyTheyFail()
    {
        QFETCH(Read, read);
        QList<LXY> list = pointList(2, 5);
        LogCapture log;
        QVERIFY(!read(m_path, list));
        QVERIFY(!read(write(""), list));
        QFile::remove(m_path);
        QVERIFY(!read(m_folder.path(), list));
        const QString begin = "critical default: file \"" + m_path + "\" ";
        QCOMPARE(log.take(), QStringList({begin + "can not find!!!", begin + " invalid!!!",
                                          "critical default: file \"" + m_folder.path() + "\" open failed!!!"}));
        QVERIFY(read(write("{\"rMeasure\": [}"), list)); // not JSON: success, nothing taken
        QVERIFY(read(write("[1]"), list));
        QVERIFY(read(write(R"({"rMeasure": {}, "gMeasure": "x", "unknown": []})"), list));
        QCOMPARE(list, pointList(2, 5));
        QVERIFY(read(write(R"({"bMeasure": []})"), list));
        QVERIFY(list.isEmpty());
        QCOMPARE(log.take(), QStringList());
    }

    void switchesOfTheConfigurationAreResetFirst_data()
    {
        QTest::addColumn<QByteArray>("document");
        QTest::addColumn<QString>("switches");
        QTest::newRow("missing file") << QByteArray() << "0 0 0 0";
        QTest::newRow("not JSON") << QByteArray("{") << "0 0 0 0";
        QTest::newRow("all on") << QByteArray(
                                       R"({"openGray": true, "openXbit": true, "xbitType": 3, "open18bit": true})")
                                << "1 1 3 1";
        QTest::newRow("other types")
            << QByteArray(R"({"openGray": 1, "openXbit": "true", "xbitType": "3", "open18bit": null})") << "0 0 0 0";
    }

    void switchesOfTheConfigurationAreResetFirst()
    {
        QFETCH(QByteArray, document);
        if (!document.isEmpty())
            write(document);
        LogCapture log;
        QList<LXY> list;
        Model::FineGrayCoeffs tables;
        bool openGray = true, openXbit = true, open18bit = true;
        int xbitType = 9;
        const bool result =
            Tool::readFineGrayConfig(m_path, list, list, list, tables, openGray, openXbit, xbitType, open18bit);
        QCOMPARE(result, !document.isEmpty());
        QTEST(QString("%1 %2 %3 %4").arg(openGray).arg(openXbit).arg(xbitType).arg(open18bit), "switches");
    }

    void aDocumentBeyondTheLimitIsLeftAlone()
    {
        constexpr qint64 limit = qint64{256} * 1024 * 1024;
        QVERIFY(QFile(write("{}")).resize(limit + 1)); // a hole: it takes no room
        QList<LXY> list = pointList(2, 5);
        Model::FineGrayAdvanceParam param;
        LogCapture log;
        QVERIFY(!Tool::readFineGrayCache(m_path, list, list, list, param));
        QVERIFY(!Tool::updateFineGrayCache(m_path, advance(1)));
        const QString line = "critical default: file \"" + m_path + "\"  invalid!!!";
        QCOMPARE(log.take(), QStringList({line, line}));
        QCOMPARE(QFileInfo(m_path).size(), limit + 1);
        QVERIFY(QFile::resize(m_path, 100));
        QVERIFY(Tool::readFineGrayCache(m_path, list, list, list, param));
    }
};

QTEST_GUILESS_MAIN(PicQualityFileToolTest)
#include "tst_picqualityfiletool.moc"
