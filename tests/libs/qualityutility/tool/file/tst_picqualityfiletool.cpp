#include "support/grayrecords.h"
#include "support/logcapture.h"
#include "support/testfiles.h"
#include <qualityutility/tool/file/picqualityfiletool.h>
#include <suite/model/graydetailpara.h>
#include <suite/model/grayeffectpara.h>
#include <suite/model/magicgrayparam.h>

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using Tool = PicQualityFileTool;
using Model::LXY;
using Update = std::function<bool(const QString&)>;
using Read = std::function<bool(const QString&, QList<LXY>&)>;

Q_DECLARE_METATYPE(Update)
Q_DECLARE_METATYPE(Read)

namespace {

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
            Points found;
            Tool::jsonArrayToList(document.value("wMeasure" + QString::number(slot)).toArray(), found);
            QCOMPARE(found, points(kept, 100.0 * kept));
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
};

QTEST_GUILESS_MAIN(PicQualityFileToolTest)
#include "tst_picqualityfiletool.moc"
