#include "support/logcapture.h"
#include <qualityutility/tool/sender3th/cabinetsender3th.h>
#include <simulator/simulatedhub.h>
#include <suite/model/colorgamutinfo.h>

#include <QJsonDocument>
#include <QProcess>
#include <QRegularExpression>
#include <QTest>

using namespace CabinetSenderSpace;
using Simulator::HubAnswer;
using Simulator::hubFrame;
using Simulator::SimulatedHub;

namespace {

Model::ColorGamutInfo gamut()
{
    Model::ColorGamutInfo info;
    info.rLxy = {21.5, 0.64, 0.33, {}};
    info.gLxy = {71.5, 0.3, 0.6, {}};
    info.bLxy = {7.25, 0.15, 0.06, {}};
    info.wLxy = {100, 0.3127, 0.329, {}};
    info.name = "Rec.709 é";
    return info;
}

/// The waits of the session under test are short: what matters is that they end.
std::unique_ptr<ClientSession> connected(quint16 port)
{
    auto session = std::make_unique<ClientSession>();
    session->setWaits(2000, 5, 60); // every arrival is one of the sixty looks
    session->connectToServer("127.0.0.1", port);
    return session;
}

/// Skips the test when python3 is not here.
bool isStarted(QProcess& python)
{
    if (python.waitForStarted())
        return true;
    QTest::qSkip("python3 is not here", __FILE__, __LINE__);
    return false;
}

HubAnswer byteByByte(const QByteArray&, const QByteArray& frame)
{
    HubAnswer answer;
    for (const char byte : frame)
        answer.chunks << QByteArray(1, byte);
    return answer;
}

QByteArray nextLine(QProcess& process)
{
    while (!process.canReadLine() && process.waitForReadyRead(20000)) {
    }
    return process.readLine().trimmed();
}

} // namespace

using Failure = HubFailure::Kind;

Q_DECLARE_METATYPE(SimulatedHub::Script)
Q_DECLARE_METATYPE(Failure)

class CabinetSender3thTest : public QObject
{
    Q_OBJECT

private:
    QStringList criticals() { return m_log->take().filter(QRegularExpression("^critical")); }

    std::unique_ptr<SimulatedHub> m_hub;
    std::unique_ptr<ClientSession> m_session;
    QScopedPointer<LogCapture> m_log;

private Q_SLOTS:
    void init()
    {
        m_log.reset(new LogCapture);
        QString error;
        m_hub = SimulatedHub::start(0, error);
        QVERIFY2(m_hub != nullptr, qPrintable(error));
        m_session = connected(m_hub->port());
        QVERIFY(m_session->isConnected());
        CabinetSender3th::getInstance()->attachSession(m_session.get());
    }

    void cleanup()
    {
        CabinetSender3th::getInstance()->attachSession(nullptr);
        CabinetSender3th::releaseInstance();
        m_session.reset();
        m_hub.reset();
        m_log.reset();
    }

    void commandsOnTheWire()
    {
        m_hub->keepRequests();
        m_session->setWaits(2000, 1000, 60); // a look in vain is a line in the log
        CabinetSender3th& sender = *CabinetSender3th::getInstance();
        int level = -1;
        int mode = -1;
        QCOMPARE(sender.getFineGrayConfig("any", 7, level, mode), 0);
        QCOMPARE(level, 14);
        QCOMPARE(mode, 1);
        QCOMPARE(sender.setGrayScaleTable({}, {0, 1, 2, 255}, {10, 99, 100, 9}, {1, 1, 1, 1}, {7, 7, 7, 7}, 60), 0);
        QCOMPARE(sender.setGrayScaleTable({}, {}, {}, {}, {}, 60), 0);
        QCOMPARE(sender.uploadNiccData({}, gamut()), 0);
        QCOMPARE(sender.uploadNiccMeasure({}, gamut()), 0);
        QCOMPARE(sender.setColorManageMode({}, gamut()), 0); // touches nothing
        const auto requests = m_hub->requests();
        QCOMPARE(requests.size(), 5);
        QCOMPARE(requests.at(0), QByteArray("{\n    \"cmd\": 17\n}\n"));
        QCOMPARE(requests.at(1),
                 QByteArray("{\n    \"cmd\": 55,\n    \"data\": {\n        \"bGrayCoeffs\": \"1,1,1,1\",\n"
                            "        \"gGrayCoeffs\": \"10,99,100,9\",\n        \"magnitude\": \"7,7,7,7\",\n"
                            "        \"rGrayCoeffs\": \"0,1,2,255\"\n    }\n}\n"));
        QVERIFY(requests.at(2).contains("\"magnitude\": \"\""));
        const QByteArray points = "        \"rLxy\": {\n            \"cx\": 0.64,\n            \"cy\": 0.33,\n         "
                                  "   \"lum\": 21.5\n        },\n";
        QVERIFY2(requests.at(3).startsWith("{\n    \"cmd\": 23,\n    \"data\": {\n        \"bLxy\": {") &&
                     requests.at(3).contains(points) && requests.at(3).contains("\"name\": \"Rec.709 é\""),
                 requests.at(3).constData());
        QVERIFY(requests.at(4).startsWith("{\n    \"cmd\": 25,") && requests.at(4).contains(points) &&
                !requests.at(4).contains("name"));
        QCOMPARE(m_hub->received(55).value("rGrayCoeffs").toString(), ""); // the hub took the empty table last
        QCOMPARE(criticals(), QStringList());
    }

    void repliesAreJudged_data()
    {
        QTest::addColumn<QByteArray>("reply");
        QTest::addColumn<int>("result");
        QTest::addColumn<QString>("log");
        const QString failed = "critical default: result parse failed! ";
        QTest::newRow("success") << QByteArray("{\"error\":0}") << 0 << "";
        QTest::newRow("not a number counts as 0") << QByteArray("{\"error\":\"x\"}") << 0 << "";
        QTest::newRow("error number") << QByteArray("{\"error\":3}") << 105
                                      << "critical default: result error! resultCode 3";
        QTest::newRow("error number wider than an int")
            << QByteArray("{\"error\":4294967296}") << 105 << "critical default: result error! resultCode 4294967296";
        QTest::newRow("error number below one")
            << QByteArray("{\"error\":0.5}") << 105 << "critical default: result error! resultCode 0.5";
        QTest::newRow("more digits for 0") << QByteArray("{\"error\":-0.0}") << 0 << "";
        QTest::newRow("array") << QByteArray("[1]") << 105 << failed + "\"[1]\" jsonError.error 0";
        QTest::newRow("no error member") << QByteArray("{\"ok\":1}") << 105
                                         << failed + "\"{\\\"ok\\\":1}\" jsonError.error 0";
        QTest::newRow("not JSON") << QByteArray("hello") << 105 << failed + "\"hello\" jsonError.error 5";
        QTest::newRow("zero byte ends it") << QByteArray("{\"error\":0}\0{", 13) << 0 << "";
        QTest::newRow("no zero byte behind it") << QByteArray::fromRawData("{\"error\":0}{", 11) << 0 << "";
    }

    void repliesAreJudged()
    {
        QFETCH(QByteArray, reply);
        QFETCH(QString, log);
        QTEST(CabinetSender3th::getInstance()->judgeResult(reply) ? 0 : 105, "result");
        QCOMPARE(criticals(), log.isEmpty() ? QStringList() : QStringList(log));
    }

    void fineGrayTakesWhatIsThere_data()
    {
        QTest::addColumn<QByteArray>("reply");
        QTest::addColumn<QString>("outputs");
        QTest::newRow("both") << QByteArray(R"({"error":0,"data":{"level":4,"mode":1,"other":9}})") << "0 4 1";
        QTest::newRow("one, not a number") << QByteArray(R"({"error":0,"data":{"mode":"x"}})") << "0 -1 0";
        QTest::newRow("no data") << QByteArray(R"({"error":0})") << "0 -1 -1";
        QTest::newRow("data is a list") << QByteArray(R"({"error":0,"data":[4]})") << "0 -1 -1";
        QTest::newRow("error") << QByteArray(R"({"error":1,"data":{"level":4}})") << "105 -1 -1";
    }

    void fineGrayTakesWhatIsThere()
    {
        QFETCH(QByteArray, reply);
        m_hub->setScript([reply](const QByteArray&, const QByteArray&) { return HubAnswer{{hubFrame(reply)}}; });
        int level = -1;
        int mode = -1;
        const int result = CabinetSender3th::getInstance()->getFineGrayConfig("a", 1, level, mode);
        QTEST(QString("%1 %2 %3").arg(result).arg(level).arg(mode), "outputs");
    }

    void hubsMisbehave_data()
    {
        QTest::addColumn<SimulatedHub::Script>("script");
        QTest::addColumn<int>("result");
        QTest::addColumn<Failure>("failure");
        const auto row = [](const char* name, Failure failure, int result, const SimulatedHub::Script& script) {
            QTest::newRow(name) << script << result << failure;
        };
        row("header split", Failure::None, 0, [](const QByteArray&, const QByteArray& frame) {
            return HubAnswer{{frame.left(2), frame.mid(2)}};
        });
        row("byte by byte", Failure::None, 0, byteByByte);
        row("two frames glued", Failure::NoReply, 105,
            [](const QByteArray&, const QByteArray& frame) { return HubAnswer{{frame + frame}}; });
        row("huge length", Failure::NoReply, 105,
            [](const QByteArray&, const QByteArray& frame) { return HubAnswer{{"\xff\xff\xff\x7f" + frame}}; });
        row("garbage", Failure::NoReply, 105,
            [](const QByteArray&, const QByteArray&) { return HubAnswer{{"HTTP/1.1 400 Bad Request\r\n\r\n"}}; });
        row("invalid UTF-8", Failure::NotUnderstood, 105, [](const QByteArray&, const QByteArray&) {
            return HubAnswer{{hubFrame("{\"error\":0,\"a\":\"\xff\xfe")}};
        });
        row("non-ASCII text is too short", Failure::NoReply, 105,
            [](const QByteArray&, const QByteArray&) { return HubAnswer{{hubFrame("{\"error\":0,\"a\":\"é\"}")}}; });
        row("an error number", Failure::Refused, 105,
            [](const QByteArray&, const QByteArray&) { return HubAnswer{{hubFrame("{\"error\":7}")}}; });
        row("silence", Failure::NoReply, 105, [](const QByteArray&, const QByteArray&) { return HubAnswer(); });
        row("closes in the middle", Failure::NotConnected, 105, [](const QByteArray&, const QByteArray& frame) {
            return HubAnswer{{frame.left(6)}, true};
        });
    }

    void hubsMisbehave()
    {
        QFETCH(SimulatedHub::Script, script);
        m_hub->setScript(script);
        CabinetSender3th& sender = *CabinetSender3th::getInstance();
        QTEST(sender.uploadNiccMeasure({}, gamut()), "result");
        QTEST(sender.lastFailure().kind, "failure");
        // A new connection serves the next request, whatever was left of the old one.
        m_hub->setScript(nullptr);
        m_session->disServerConnect();
        m_session->connectToServer("127.0.0.1", m_hub->port());
        QCOMPARE(sender.uploadNiccMeasure({}, gamut()), 0);
    }

    void anOperationMeanwhileIsRefusedAndChangesNothing()
    {
        CabinetSender3th& sender = *CabinetSender3th::getInstance();
        int refused = 0;
        m_hub->setScript([&](const QByteArray&, const QByteArray&) { // on the hub's thread
            refused = sender.uploadNiccData({}, gamut());
            return HubAnswer{{hubFrame("{\"error\":0}")}};
        });
        QCOMPARE(sender.uploadNiccMeasure({}, gamut()), 0);
        m_hub->setScript(nullptr); // after which what the script has written may be read
        QCOMPARE(refused, 105);
        QCOMPARE(criticals(), QStringList{"critical default: another operation is waiting for its reply"});
    }

    void withoutASessionOrAConnection()
    {
        CabinetSender3th& sender = *CabinetSender3th::getInstance();
        m_session->disServerConnect();
        QVERIFY(!m_session->isConnected());
        QCOMPARE(sender.uploadNiccData({}, gamut()), 105);
        QCOMPARE(criticals(), QStringList({"critical default: [ClientSession] please connect msghub server",
                                           "critical default: send to server error!"}));
        sender.attachSession(nullptr);
        QCOMPARE(sender.uploadNiccData({}, gamut()), 105);
        QVERIFY(criticals().value(0).startsWith("critical default: result parse failed! \"\""));
        QByteArray earlier = "{\"error\":0}";
        QCOMPARE(sender.sendData("{}", earlier, false), 105); // a success that is still there is none of this call
        QVERIFY(earlier.isEmpty() && criticals().size() == 1);
        QCOMPARE(sender.setColorManageMode({}, gamut()), 0);
        int mode = 5;
        QCOMPARE(sender.getCorrectEffectMode("a", 1, mode), 105);
        QCOMPARE(sender.setCorrectEffectMode({}, 1, true), 105);
        QCOMPARE(sender.gamutCorrectEffectMode({}, true, true), 105);
        QCOMPARE(sender.sendRvcardBin({}, "x"), 105);
        QCOMPARE(mode, 5);
        QCOMPARE(criticals().size(), 4);
    }

    void sessionsAndSendersDieInAnyOrder()
    {
        // The sender first, with a connected session: it takes it along.
        QPointer<ClientSession> taken = connected(m_hub->port()).release();
        CabinetSender3th::getInstance()->attachSession(taken);
        CabinetSender3th::releaseInstance();
        QVERIFY(!taken);
        // With one that is not connected: it is left to its owner.
        ClientSession left;
        CabinetSender3th::getInstance()->attachSession(&left);
        CabinetSender3th::releaseInstance();
        // The session first.
        {
            const auto gone = connected(m_hub->port());
            CabinetSender3th::getInstance()->attachSession(gone.get());
        }
        QCOMPARE(CabinetSender3th::getInstance()->uploadNiccData({}, gamut()), 105);
    }

    void aHubThatRestartsServesAgain()
    {
        CabinetSender3th& sender = *CabinetSender3th::getInstance();
        for (int round = 0; round < 1000; ++round) {
            m_hub->setScript([](const QByteArray&, const QByteArray& frame) {
                return HubAnswer{{frame.left(3)}, true};
            });
            QCOMPARE(sender.uploadNiccMeasure({}, gamut()), 105);
            const quint16 port = m_hub->port();
            m_hub.reset();
            QString error;
            m_hub = SimulatedHub::start(port, error);
            QVERIFY2(m_hub != nullptr, qPrintable(error));
            m_session->disServerConnect();
            m_session->connectToServer("127.0.0.1", port);
            QVERIFY(m_session->isConnected());
            QCOMPARE(sender.uploadNiccMeasure({}, gamut()), 0);
        }
    }

    void aClientInAnotherLanguageTalksToTheHub()
    {
        m_hub->keepRequests();
        m_hub->setScript(byteByByte);
        QProcess python;
        python.start("python3", {EXAMPLES "/hub_client.py", QString::number(m_hub->port())});
        if (!isStarted(python))
            return;
        QVERIFY(python.waitForFinished(20000));
        QVERIFY2(python.exitCode() == 0, python.readAllStandardError().constData());
        QCOMPARE(python.readAllStandardOutput(), QByteArray("level 14, mode 1\nerror 2: unknown command 99\n"));
        QCOMPARE(m_hub->requests().first(), QByteArray("{\"cmd\": 17}"));
    }

    void ourClientTalksToAHubInAnotherLanguage()
    {
        QProcess python;
        python.start("python3", {EXAMPLES "/hub_server.py"});
        if (!isStarted(python))
            return;
        const quint16 port = nextLine(python).toUShort();
        const auto session = connected(port);
        CabinetSender3th::getInstance()->attachSession(session.get());
        int level = -1;
        int mode = -1;
        QCOMPARE(CabinetSender3th::getInstance()->getFineGrayConfig("a", 1, level, mode), 0);
        QCOMPARE(level, 4);
        QCOMPARE(mode, 1);
        QCOMPARE(nextLine(python), QByteArray("12000000 7b0a2020202022636d64223a2031370a7d0a"));
        session->disServerConnect();
        QVERIFY(python.waitForFinished(20000));
    }
};

QTEST_GUILESS_MAIN(CabinetSender3thTest)
#include "tst_cabinetsender3th.moc"
