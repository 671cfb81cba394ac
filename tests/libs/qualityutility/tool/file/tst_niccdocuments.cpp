#include "support/logcapture.h"
#include "support/testfiles.h"
#include <qualityutility/data/niccdata.h>
#include <qualityutility/tool/file/picqualityfiletool.h>
#include <suite/action/commonconfigaction.h>
#include <suite/common/colorgamuttype.h>
#include <suite/model/colorgamutinfo.h>

#include <QDate>
#include <QFile>
#include <QJsonDocument>
#include <QTemporaryDir>
#include <QTest>

#include <atomic>
#include <thread>
#include <vector>

using Model::ColorGamutInfo;
using Tool = PicQualityFileTool;

namespace {

ColorGamutInfo gamut(const char* name, double x)
{
    ColorGamutInfo info;
    info.rLxy = {1, x, 0.3, {}};
    info.gLxy = {2, 0.2, 0.7, {}};
    info.bLxy = {3, 0.1, 0.05, {}};
    info.wLxy = {6, 0.3, 0.31, {}};
    info.name = name;
    return info;
}

struct Configuration
{
    ColorGamutInfo led;
    ColorGamutInfo target = gamut("before", 0.5);
    bool isOpen = false;
    bool versionChanged = false;
};

} // namespace

class NiccDocumentsTest : public QObject
{
    Q_OBJECT

private:
    QString file(const QByteArray& content) { return writeFile(m_folder->filePath("n.nicc"), content); }

    static bool read(const QString& path, Configuration& c)
    {
        return Tool::readNiccConfig(path, c.led, c.target, c.isOpen, c.versionChanged);
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<LogCapture> m_log;

private Q_SLOTS:
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        NICCData::releaseInstance();
        NICCData::getInstance()->setManageDate(QDate(2026, 2, 3));
        m_log = std::make_unique<LogCapture>();
    }

    void cleanup() { m_log.reset(); }

    void aConfigurationHasItsKeysAndComesBack()
    {
        ColorGamutInfo led = gamut("led", 0.69);
        led.cover = 0.5;
        const ColorGamutInfo target = gamut("\xe6\xb5\x8b", 0.64);
        const QString path = m_folder->filePath("n.nicc");
        QVERIFY(Tool::writeNiccConfig(path, led, target));
        const QByteArray bytes = readFile(path);
        QByteArray same;
        Tool::writeNicc(led, target, same);
        QCOMPARE(bytes, same);
        const QJsonObject root = QJsonDocument::fromJson(bytes).object();
        QCOMPARE(root.keys(), (QStringList{"LEDColorGamnut", "TargetColorGamnut", "Time", "vesion"}));
        QCOMPARE(root["vesion"].toString(), QString("2.0"));
        QCOMPARE(root["Time"].toString(), QString("2026-02-03"));
        QCOMPARE(root["LEDColorGamnut"].toObject().keys(),
                 (QStringList{"BluePoint", "GreenPoint", "RedPoint", "WhitePoint"}));
        QVERIFY(bytes.startsWith("{\n    \"LEDColorGamnut\": {\n        \"BluePoint\": {"));

        NICCData::getInstance()->setManageDate({});
        Configuration back;
        back.versionChanged = true;
        QVERIFY(read(path, back));
        led.name.clear();
        led.cover = 0.0;
        QCOMPARE(back.led, led);
        QCOMPARE(back.target, target);
        QVERIFY(!back.versionChanged && !back.isOpen);
        QCOMPARE(NICCData::getInstance()->getManageDate(), QDate(2026, 2, 3));
        QVERIFY(Tool::updateNiccOpenConfig(path, true));
        QVERIFY(read(path, back));
        QVERIFY(back.isOpen && back.target == target);
        QVERIFY(!Tool::writeNiccConfig(m_folder->path(), led, target));
        QCOMPARE(m_log->take(), QStringList{"critical default: file \"" + m_folder->path() + "\" open failed!!!"});
    }

    void threadsWriteWholeDocumentsWhileTheVersionChanges()
    {
        const QStringList versions{QString(40, 'a'), QString(40, 'b')};
        NICCData& data = *NICCData::getInstance();
        data.setVersion(versions[0]);
        std::atomic<int> running{4};
        std::atomic<int> torn{0};
        std::vector<std::thread> writers;
        for (int i = running; i > 0; --i) {
            writers.emplace_back([&] {
                for (int n = 0; n < 3000; ++n) {
                    QByteArray document;
                    Tool::writeNicc(gamut("led", 0.69), gamut("target", 0.64), document);
                    const QJsonObject root = QJsonDocument::fromJson(document).object();
                    torn += versions.contains(root["vesion"].toString()) && !root["Time"].toString().isEmpty() ? 0 : 1;
                }
                --running;
            });
        }
        for (int n = 0; running > 0; ++n) {
            data.setVersion(QString(40, n % 2 == 0 ? 'a' : 'b')); // a text of its own each time
            data.setManageDate(QDate(2026, 1, 1 + n % 28));
        }
        for (std::thread& writer : writers)
            writer.join();
        QCOMPARE(torn.load(), 0);
    }

    void coverageIsReadThoughNeverWritten()
    {
        const ColorGamutInfo info = Tool::getColorGamut(
            {{"Cover", 0.9}, {"OrgCover", "1.5"}, {"RedPoint", QVariantMap{{"lum", 4}, {"x", "0.1"}}}});
        QCOMPARE(info.cover, 0.9);
        QCOMPARE(info.orgCover, 1.5);
        QCOMPARE(info.rLxy, (Model::LXY{4, 0.1, 0, {}}));
        QVERIFY(info.name.empty());
        QVERIFY(!Tool::ColorGamutToJson(info, false).contains("Cover"));
        QCOMPARE(Tool::ColorGamutToJson(info, false).size(), 5);
    }

    void anotherVersionBringsTheStandardGamutOfItsIndex_data()
    {
        QTest::addColumn<QByteArray>("document");
        QTest::addColumn<QString>("target");
        QTest::addColumn<bool>("isOpen");
        QTest::addColumn<bool>("versionChanged"); ///< true before reading
        QTest::newRow("same version") << QByteArray(R"({"vesion": "2.0", "UsedIndex": 3})") << "before" << false
                                      << false;
        QTest::newRow("no version") << QByteArray(R"({"UsedIndex": 3})") << "before" << false << true;
        QTest::newRow("no index") << QByteArray(R"({"vesion": "1.0"})") << "before" << false << true;
        QTest::newRow("index 3") << QByteArray(R"({"vesion": "1.0", "UsedIndex": 3})") << "P3-D65" << true << true;
        QTest::newRow("index 8") << QByteArray(R"({"vesion": "", "UsedIndex": 8})") << "SMPTE-C" << true << true;
        QTest::newRow("low byte") << QByteArray(R"({"vesion": 1, "UsedIndex": 258})") << "BT.2020" << true << true;
        QTest::newRow("a type without a name")
            << QByteArray(R"({"vesion": "1", "UsedIndex": 9})") << "Rec.709" << true << true;
        QTest::newRow("the user's own") << QByteArray(R"({"vesion": "1", "UsedIndex": 12, "IsOpen": true})") << "before"
                                        << false << true;
    }

    void anotherVersionBringsTheStandardGamutOfItsIndex()
    {
        QFETCH(QByteArray, document);
        Configuration c;
        c.versionChanged = true;
        QVERIFY(read(file(document), c));
        QTEST(QString::fromStdString(c.target.name), "target");
        QTEST(c.isOpen, "isOpen");
        QTEST(c.versionChanged, "versionChanged");
        QVERIFY(!NICCData::getInstance()->getManageDate().isValid()); // "Time" is missing
    }

    void whatCannotBeReadChangesNothing_data()
    {
        QTest::addColumn<QByteArray>("content"); ///< null: no file
        QTest::addColumn<QString>("text");
        QTest::newRow("missing") << QByteArray() << "can not find!!!";
        QTest::newRow("empty") << QByteArray("") << " invalid!!!";
        QTest::newRow("blanks") << QByteArray("  \n") << "";
        QTest::newRow("broken") << QByteArray(R"({"vesion": "1.0", )") << "";
    }

    void whatCannotBeReadChangesNothing()
    {
        QFETCH(QByteArray, content);
        QFETCH(QString, text);
        const QString path = content.isNull() ? m_folder->filePath("absent") : file(content);
        const QStringList line =
            text.isEmpty() ? QStringList() : QStringList{"critical default: file \"" + path + "\" " + text};
        Configuration c;
        QVERIFY(!read(path, c));
        QCOMPARE(m_log->take(), line);
        QCOMPARE(c.target, gamut("before", 0.5));
        QCOMPARE(NICCData::getInstance()->getManageDate(), QDate(2026, 2, 3));
        std::string name = "before";
        int temperature = 1;
        int fromInput = 1;
        QVERIFY(!Tool::readNewNicc(path, name, temperature, fromInput));
        QCOMPARE(m_log->take(), line);
        QCOMPARE(name, std::string("before"));
        QCOMPARE(Tool::updateNiccOpenConfig(path, true), text.isEmpty());
        QCOMPARE(m_log->take(), line);
        if (text.isEmpty()) { // rewritten as an object of its own
            QVERIFY(read(path, c));
            QVERIFY(c.isOpen);
        }
        QCOMPARE(QFile::exists(path), !content.isNull());
    }

    void aNewNiccDocumentComesBack_data()
    {
        QTest::addColumn<QByteArray>("document");
        QTest::addColumn<int>("fromInput"); ///< before reading
        QTest::addColumn<QString>("name");
        QTest::addColumn<int>("temperature");
        QByteArray written;
        Tool::writeNewNicc("Rec.709", 6500, 0, written);
        QTest::newRow("written") << written << 1 << "Rec.709" << 6500;
        Tool::writeNewNicc("Rec.709", -1, 1, written);
        QTest::newRow("typed in") << written << 0 << "From input" << -1;
        QTest::newRow("no status, typed in before") << QByteArray(R"({"GamutName": "x"})") << 2 << "From input" << 7;
        QTest::newRow("nothing known") << QByteArray(R"({"other": 1})") << 0 << "before" << 7;
    }

    void aNewNiccDocumentComesBack()
    {
        QFETCH(QByteArray, document);
        QFETCH(int, fromInput);
        std::string name = "before";
        int temperature = 7;
        QVERIFY(Tool::readNewNicc(file(document), name, temperature, fromInput));
        QTEST(QString::fromStdString(name), "name");
        QTEST(temperature, "temperature");
    }

    void theConfigurationsAreNamedByType()
    {
        const auto& gamuts = *Action::CommonConfigAction::getInstance()->getGamutConfigAC();
        for (const int type : {1, 2, 4, 8, 16, 32, 64, 128, 2048})
            QVERIFY2(gamuts.contains(ColorGamutType2QString(type, true)), qPrintable(QString::number(type)));
        QCOMPARE(ColorGamutType2QString(256, true), QString());
        QCOMPARE(ColorGamutType2QString(2, false), QString("BT.2020"));
        QCOMPARE(gamuts.getByName("NTSC 1953").gLxy.y, 0.71);
        QCOMPARE(gamuts.getByName("absent"), ColorGamutInfo());
        QCOMPARE(gamuts.defaultCfg().name, std::string("Rec.709"));

        Action::ColorGamutConfigAction own;
        QVERIFY(!own.load(file(R"({"default": "b", "gamuts": [{"name": "a"}]})")));
        QVERIFY(!own.load(m_folder->filePath("absent")));
        QCOMPARE(m_log->take().size(), 2);
        QVERIFY(own.load(file(R"({"default": "a", "gamuts": [{"name": "a", "RedPoint": {"lum": 1, "x": 2}}]})")));
        QCOMPARE(own.defaultCfg().rLxy, (Model::LXY{1, 2, 0, {}}));
    }
};

QTEST_GUILESS_MAIN(NiccDocumentsTest)
#include "tst_niccdocuments.moc"
