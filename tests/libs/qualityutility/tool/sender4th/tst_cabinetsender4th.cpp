#include "support/logcapture.h"
#include "support/recordedsender.h"
#include "support/testfiles.h"
#include <qualityutility/tool/sender4th/cabinetsender.h>
#include <qualityutility/tool/sender4th/deviceoutcomes.h>
#include <suite/model/colorgamutinfo.h>

#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <future>

using namespace CabinetSenderSpace;
using Service::ModelService;
using Simulator::RecordingTransport;
using CabinetList = std::vector<unsigned long long>;
using Bytes = std::vector<unsigned char>;
using Recorded = RecordingTransport::Recorded;

Q_DECLARE_METATYPE(CabinetTargetMap)

namespace {

Model::ColorGamutInfo gamut()
{
    Model::ColorGamutInfo info;
    info.rLxy = {21.26, 0.6400, 0.3300, {}};
    info.gLxy = {71.52, 0.3000, 0.6000, {}};
    info.bLxy = {7.22, 0.1500, 0.0600, {}};
    info.wLxy = {100.0, 0.3127, 0.3290, {}};
    info.name = "Rec.709";
    info.coeff.setCoeffs({16384, 1, 2, 3, 16385, 4, 5, 65535, 6});
    return info;
}

const QString putError = "critical default: put error!!!";

} // namespace

class CabinetSender4thTest : public QObject, private RecordedSender
{
    Q_OBJECT

private:
    QTemporaryDir m_folder;

private Q_SLOTS:
    void init() { connectRecorder(); }
    void cleanup() { disconnectRecorder(); }

    void grayTableTravelsByteForByte_data()
    {
        QTest::addColumn<bool>("vectors");
        QTest::newRow("lists") << false;
        QTest::newRow("vectors") << true;
    }

    void grayTableTravelsByteForByte()
    {
        QFETCH(bool, vectors);
        const CabinetTargetMap targets{{"a", {3, 1}}};
        const int result =
            vectors ? CabinetSender::setGrayScaleTable(targets, Bytes{0, 255}, Bytes{1}, Bytes{}, Bytes{7, 8, 9}, 60)
                    : CabinetSender::setGrayScaleTable(targets, QList<unsigned char>{0, 255}, {1}, {}, {7, 8, 9}, 60);
        QCOMPARE(result, 0);
        const Recorded& sent = request();
        QCOMPARE(sent.action, std::string("Device_CorrectionGrayCoeff"));
        QCOMPARE(sent.method, Action::Request::Method::Put);
        QVERIFY(sent.acknowledged && sent.priority == PackagePriority::Normal);
        QCOMPARE(keys(sent.parameters),
                 QStringList({"bGrayCoeffs", "cids", "freq", "gGrayCoeffs", "magnitude", "rGrayCoeffs"}));
        QCOMPARE(sent.parameters.get<CabinetList>("cids"), CabinetList({3, 1}));
        QCOMPARE(sent.parameters.get<int>("freq"), 60);
        QCOMPARE(sent.parameters.get<Bytes>("rGrayCoeffs"), Bytes({0, 255}));
        QCOMPARE(sent.parameters.get<Bytes>("gGrayCoeffs"), Bytes({1}));
        QCOMPARE(sent.parameters.get<Bytes>("bGrayCoeffs"), Bytes());
        QCOMPARE(sent.parameters.get<Bytes>("magnitude"), Bytes({7, 8, 9}));
        QVERIFY(effect("a", 1).getFineGrayValid() && effect("a", 3).getFineGrayValid());
        QVERIFY(!effect("a", 2).getFineGrayValid());
    }

    void timeoutIsFourPerCabinetWhereTheOperationHasOne()
    {
        const QString binary = writeFile(m_folder.filePath("card.bin"), {});
        const CabinetTargetMap targets{{"a", {1, 2, 3}}, {"b", {}}};
        m_sender.setGrayScaleTable(targets, {}, {}, {}, {}, 60);
        m_sender.uploadNiccData(targets, gamut());
        m_sender.uploadNiccMeasure(targets, gamut());
        m_sender.sendRvcardBin(targets, binary);
        m_sender.setColorManageMode(targets, gamut());
        m_sender.setCorrectEffectMode(targets, 8, true);
        QList<int> timeouts;
        for (const Recorded& sent : m_transport->requests()) {
            const int* timeout = sent.parameters.options().find<int>("timeout");
            timeouts << (timeout ? *timeout : -1);
        }
        QCOMPARE(timeouts, QList<int>({12, 0, 12, 0, 12, 0, 100, 100, -1, -1, -1, -1}));
    }

    void theLastDeviceDecidesTheResult_data()
    {
        QTest::addColumn<QString>("failing");
        QTest::addColumn<CabinetTargetMap>("targets");
        QTest::addColumn<int>("result");
        QTest::addColumn<QStringList>("log");
        QTest::addColumn<QStringList>("outcomes");
        const QString line = "spdlog error: setGrayScaleTable error:no power";
        const CabinetTargetMap both{{"a", {1, 2}}, {"b", {1}}};
        QTest::newRow("no device") << "" << CabinetTargetMap{} << 1 << QStringList() << QStringList();
        QTest::newRow("all answer") << "" << both << 0 << QStringList()
                                    << QStringList({"a confirmed 2", "b confirmed 1"});
        QTest::newRow("first fails") << "a" << both << 0 << QStringList({putError, line})
                                     << QStringList({"a failed: no power", "b confirmed 1"});
        QTest::newRow("last fails") << "b" << both << 15 << QStringList({putError, line})
                                    << QStringList({"a confirmed 2", "b failed: no power"});
    }

    void theLastDeviceDecidesTheResult()
    {
        QFETCH(QString, failing);
        QFETCH(CabinetTargetMap, targets);
        answerWith([failing](const Recorded& sent) {
            // Queued, as a real device answers.
            QTimer::singleShot(0, [sent, failing] {
                if (sent.action != "Device_CorrectionGrayCoeff")
                    return RecordingTransport::confirm(sent); // the handler's own operation, below
                CabinetSender::setColorManageMode({{"a", {1}}}, {});
                if (QString::fromStdString(sent.deviceId) == failing)
                    sent.responder.fail("no power");
                else
                    RecordingTransport::confirm(sent);
            });
        });
        LogCapture log;
        const DeviceOutcomes outcomes;
        QTEST(m_sender.setGrayScaleTable(targets, {}, {}, {}, {}, 60), "result");
        QTEST(log.take(), "log");
        QStringList told; // what the handlers did is not among them
        for (const DeviceOutcome& outcome : outcomes.list())
            told << QString::fromStdString(outcome.deviceId) +
                        (outcome.kind == DeviceOutcome::Kind::Confirmed
                             ? " confirmed " + QString::number(outcome.confirmed.size())
                             : " failed: " + outcome.error);
        QTEST(told, "outcomes");
    }

    void aSilentDeviceTimesOutOnAThreadThatQtDidNotStart()
    {
        answerWith(nullptr);
        Action::setTimeoutUnit(std::chrono::milliseconds(1));
        LogCapture log;
        auto result = std::async(std::launch::async, [] {
            return CabinetSender::setGrayScaleTable({{"a", {1}}}, Bytes{}, Bytes{}, Bytes{}, Bytes{}, 60);
        });
        if (result.wait_for(std::chrono::seconds(5)) == std::future_status::timeout)
            request().responder.fail("released by the test"); // or it would wait for ever
        QCOMPARE(result.get(), 15);
        QCOMPARE(log.take().last(), "spdlog error: setGrayScaleTable error:timeout: no answer for "
                                    "Device_CorrectionGrayCoeff to device a within 0.004 s");
    }

    void gamutTravelsUnrounded_data()
    {
        QTest::addColumn<QString>("prefix");
        QTest::newRow("target") << "";
        QTest::newRow("measured") << "niccMeasures.";
    }

    void gamutTravelsUnrounded()
    {
        QFETCH(QString, prefix);
        const Model::ColorGamutInfo info = gamut();
        const bool isTarget = prefix.isEmpty();
        const int result = isTarget ? CabinetSender::uploadNiccData({{"a", {1}}}, info)
                                    : CabinetSender::uploadNiccMeasure({{"a", {1}}}, info);
        QCOMPARE(result, 0);
        const Recorded& sent = request();
        QCOMPARE(sent.action,
                 std::string(isTarget ? "Device_CabinetsColorSpaceNicc" : "Device_CabinetsColorSpaceMeasure"));
        QStringList expected{"cids"};
        if (isTarget) {
            expected << "name";
            QCOMPARE(sent.parameters.get<std::string>("name"), info.name);
        }
        const std::pair<const char*, Model::LXY> points[] = {
            {"rLxy", info.rLxy}, {"gLxy", info.gLxy}, {"bLxy", info.bLxy}, {"wLxy", info.wLxy}};
        for (const auto& [name, point] : points) {
            const std::pair<const char*, double> members[] = {{".lum", point.lum}, {".cx", point.x}, {".cy", point.y}};
            for (const auto& [member, value] : members) {
                const QString key = prefix + name + member;
                expected << key;
                const double* stored = sent.parameters.arguments().find<double>(key.toStdString());
                QVERIFY2(stored && *stored == value, qPrintable(key));
            }
        }
        expected.sort();
        QCOMPARE(keys(sent.parameters), expected);
    }

    void fullScaleFollowsTheDeviceType_data()
    {
        QTest::addColumn<QString>("type");
        QTest::addColumn<int>("fullScale");
        QTest::newRow("G4") << "G4" << 1023;
        QTest::newRow("longer") << "G4+" << 255;
        QTest::newRow("lower case") << "g4" << 255;
        QTest::newRow("empty") << "" << 255;
    }

    void fullScaleFollowsTheDeviceType()
    {
        QFETCH(QString, type);
        ModelService::getDevice("a")->getBase().setType(type.toStdString());
        QCOMPARE(CabinetSender::setColorManageMode({{"a", {1}}, {"x", {1}}}, gamut()), 1); // x is unknown and skipped
        QCOMPARE(m_transport->requests().size(), size_t(1));
        QCOMPARE(request().action, std::string("Device_CabinetsColorSpaceCoeff"));
        QCOMPARE(keys(request().parameters),
                 QStringList({"cids", "niccData.b", "niccData.coeffs", "niccData.g", "niccData.r"}));
        for (const char* key : {"niccData.r", "niccData.g", "niccData.b"})
            QTEST(request().parameters.get<int>(key), "fullScale");
        QCOMPARE(request().parameters.get<std::vector<unsigned short>>("niccData.coeffs"), gamut().coeff.getCoeffs());
    }

    void targetGamutGoesToTheCabinetsOfTheRequestAndMeasureToThoseOfTheReply()
    {
        CabinetTargetMap targets{{"a", {1}}};
        answerWith([&](const Recorded& sent) {
            targets.clear(); // by its owner, during the wait
            Parameters reply;
            reply.insert("cids", CabinetList{3});
            sent.responder.reply(reply);
        });
        m_sender.uploadNiccData(targets, gamut());
        QCOMPARE(effect("a", 1).getTargetColorGamut(), gamut());
        QCOMPARE(effect("a", 3).getTargetColorGamut(), Model::ColorGamutInfo());

        QList<Model::DisplayEffectPara::Field> order;
        effect("a", 3).setObserver([&](Model::DisplayEffectPara::Field field) { order << field; });
        m_sender.uploadNiccMeasure({{"a", {1}}}, gamut());
        QVERIFY(effect("a", 3).getColorGamutValid());
        QCOMPARE(effect("a", 3).getOrgColorGamut(), gamut());
        QVERIFY(!effect("a", 1).getColorGamutValid());
        using Field = Model::DisplayEffectPara::Field;
        QCOMPARE(order, QList<Field>({Field::ColorGamutValid, Field::OrgColorGamut}));
    }

    void aReplyWithoutCidsSucceedsAndChangesNothing()
    {
        answerWith([](const Recorded& sent) { sent.responder.reply({}); });
        LogCapture log;
        QCOMPARE(m_sender.setGrayScaleTable({{"a", {1}}}, {}, {}, {}, {}, 60), 0);
        QCOMPARE(m_sender.uploadNiccMeasure({{"a", {1}}}, gamut()), 0);
        QCOMPARE(m_sender.setCorrectEffectMode({{"a", {1}}}, 8, true), 0);
        const QString line = "critical default: Parameters get error, key: cids";
        QCOMPARE(log.take(), QStringList({line, line, line}));
        QVERIFY(!effect("a", 1).getFineGrayValid() && !effect("a", 1).getColorGamutValid());
        QCOMPARE(effect("a", 1).getEffectMode(), 3u);
    }

    void binaryTravelsAsBase64_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QString>("text");
        QTest::newRow("empty") << QByteArray() << "";
        QTest::newRow("padded") << QByteArray("\x00\xff\xfe\x7f", 4) << "AP/+fw==";
    }

    void binaryTravelsAsBase64()
    {
        QFETCH(QByteArray, content);
        const QString file = writeFile(m_folder.filePath("card.bin"), content);
        QCOMPARE(CabinetSender::sendRvcardBin({{"a", {2, 1}}, {"b", {}}}, file), 0);
        QCOMPARE(request().action, std::string("Device_M_RvCardBin"));
        QCOMPARE(keys(request().parameters), QStringList({"bin", "idList"}));
        QCOMPARE(request().parameters.get<CabinetList>("idList"), CabinetList({2, 1}));
        QTEST(QString::fromStdString(request(0).parameters.get<std::string>("bin")), "text");
        QTEST(QString::fromStdString(request(1).parameters.get<std::string>("bin")), "text");
        QCOMPARE(CabinetSender::sendRvcardBin({}, file), 1);
        QCOMPARE(CabinetSender::sendRvcardContent({{"a", {1}}}, content), 0);
        QTEST(QString::fromStdString(request(2).parameters.get<std::string>("bin")), "text");
    }

    void aFolderInPlaceOfABinaryIsSentAsEmpty()
    {
        LogCapture log;
        QCOMPARE(CabinetSender::sendRvcardBin({{"a", {1}}}, m_folder.path()), 0);
        QCOMPARE(request().parameters.get<std::string>("bin"), std::string());
        QCOMPARE(log.take(), QStringList());
    }

    void aBinaryThatCannotBeReadIsNotSent_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QStringList>("log");
        const QString absent = m_folder.filePath("absent.bin");
        const QString link = m_folder.filePath("link.bin");
        const QString large = writeFile(m_folder.filePath("large.bin"), {});
        QVERIFY(QFile::link(absent, link) && QFile::resize(large, 1'700'000'000)); // sparse
        const QString missing = "critical default: file \"%1\" not find!!!";
        const QString error = "spdlog error: sendRvcardBin error:";
        QTest::newRow("absent") << absent << QStringList{missing.arg(absent), error};
        QTest::newRow("a symbolic link to nothing") << link << QStringList{missing.arg(link), error};
        QTest::newRow("larger than its text can be")
            << large << QStringList(error + "file " + large + " has 1700000000 bytes, expected at most 1500000000");
    }

    void aBinaryThatCannotBeReadIsNotSent()
    {
        QFETCH(QString, path);
        LogCapture log;
        QCOMPARE(CabinetSender::sendRvcardBin({{"a", {1}}}, path), 15);
        QTEST(log.take(), "log");
        QCOMPARE(CabinetSender::sendRvcardBin({}, path), 15);
        QVERIFY(m_transport->requests().empty());
    }

    void failuresOfABinaryLogNoPutError()
    {
        LogCapture log;
        answerWith([](const Recorded& sent) { sent.responder.fail("no space"); });
        QCOMPARE(CabinetSender::sendRvcardBin({{"a", {1}}}, m_folder.path()), 15);
        QCOMPARE(log.take(), QStringList("spdlog error: sendRvcardBin error:no space"));
    }

    void everyOperationNamesItselfInAnErrorLine()
    {
        answerWith([](const Recorded& sent) { sent.responder.fail(QString::fromUtf8("電源なし {}")); });
        const CabinetTargetMap targets{{"a", {1}}};
        LogCapture log;
        QCOMPARE(m_sender.setCorrectEffectMode(targets, 8, true), 15);
        QCOMPARE(m_sender.uploadNiccData(targets, gamut()), 15);
        QCOMPARE(m_sender.setColorManageMode(targets, gamut()), 15);
        QCOMPARE(m_sender.uploadNiccMeasure(targets, gamut()), 15);
        QStringList expected;
        for (const char* name : {"setCorrectEffectMode", "uploadNiccData", "setColorManageMode", "uploadNiccMeasure"})
            expected << putError << QString("spdlog error: %1 error:電源なし {}").arg(name);
        QCOMPARE(log.take(), expected);
    }

    void everyOperationTracesItsEntryAndAtOnceItsLeave()
    {
        LogCapture log;
        int value = 0;
        m_sender.getFineGrayConfig("a", 1, value, value);
        m_sender.gamutCorrectEffectMode({{"a", {1}}}, true, true);
        m_sender.setGrayScaleTable({}, {}, {}, {}, {}, 60);
        m_sender.uploadNiccData({}, {});
        m_sender.setColorManageMode({}, {});
        m_sender.uploadNiccMeasure({}, {});
        m_sender.sendRvcardBin({}, m_folder.path());
        const QStringList entered{"getFineGrayConfig",    "gamutCorrectEffectMode", "setCorrectEffectMode",
                                  "getCorrectEffectMode", "setGrayScaleTable",      "uploadNiccData",
                                  "setColorManageMode",   "uploadNiccMeasure",      "sendRvcardBin"};
        const auto lines = log.takeLines();
        QCOMPARE(lines.size(), 2 * entered.size());
        for (int i = 0; i < entered.size(); ++i) {
            const auto& enter = lines.at(2 * i);
            const auto& leave = lines.at(2 * i + 1);
            QCOMPARE(enter.text, " ENTER ");
            QCOMPARE(enter.function, entered.at(i));
            QCOMPARE(leave.text, " LEAVE ");
            QCOMPARE(leave.function, "operator()");
            for (const auto& line : {enter, leave}) {
                QCOMPARE(line.level, spdlog::level::trace);
                QCOMPARE(line.file, "src/libs/qualityutility/tool/sender4th/cabinetsender4th.cpp");
            }
        }
    }
};

QTEST_GUILESS_MAIN(CabinetSender4thTest)
#include "tst_cabinetsender4th.moc"
