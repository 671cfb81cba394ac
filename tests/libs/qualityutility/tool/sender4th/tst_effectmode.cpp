#include "support/logcapture.h"
#include "support/recordedsender.h"
#include <qualityutility/tool/sender4th/cabinetsender.h>

#include <QTest>

using namespace CabinetSenderSpace;
using Service::ModelService;
using CabinetList = std::vector<unsigned long long>;
using Recorded = Simulator::RecordingTransport::Recorded;

Q_DECLARE_METATYPE(CabinetTargetMap)

class EffectModeTest : public QObject, private RecordedSender
{
    Q_OBJECT

private Q_SLOTS:
    void init() { connectRecorder(); }
    void cleanup() { disconnectRecorder(); }

    void effectModeToSend_data()
    {
        QTest::addColumn<int>("current");
        QTest::addColumn<int>("mode");
        QTest::addColumn<bool>("enable");
        QTest::addColumn<int>("sent");
        QTest::newRow("bits are added") << 3 << 8 << true << 11;
        QTest::newRow("mask keeps bits") << 11 << -9 << true << 3;
        QTest::newRow("positive, not enabled") << 3 << 8 << false << 8;
        QTest::newRow("negative, not enabled") << 11 << -9 << false << 0;
        QTest::newRow("zero, enabled") << 11 << 0 << true << 0;
        QTest::newRow("zero, not enabled") << 11 << 0 << false << 0;
    }

    void effectModeToSend()
    {
        QFETCH(int, current);
        QFETCH(int, mode);
        QFETCH(bool, enable);
        effect("a", 2).setEffectMode(static_cast<unsigned int>(current));
        QCOMPARE(m_sender.setCorrectEffectMode({{"a", {2, 1}}, {"b", {1}}}, mode, enable), 0);
        // The first cabinet's mode decides for all devices, whatever the first reply changed.
        for (size_t i = 0; i < 2; ++i) {
            QCOMPARE(keys(request(i).parameters), QStringList({"cids", "mode", "switches"}));
            QTEST(request(i).parameters.get<int>("mode"), "sent");
            const auto switches = request(i).parameters.get<std::vector<Parameters>>("switches");
            QCOMPARE(switches.size(), size_t(1));
            QCOMPARE(switches.front().get<bool>("enable"), enable);
            QCOMPARE(switches.front().get<int>("switchMode"), 5);
            QCOMPARE(keys(switches.front()), QStringList({"enable", "switchMode"}));
        }
        QCOMPARE(request(0).action, std::string("Device_CabinetsCorrectionChildSwitchV2"));
        QCOMPARE(request(0).method, Action::Request::Method::Post);
        QVERIFY(request(0).headers.isEmpty());
        QCOMPARE(request(1).action, std::string("Device_CabinetsCorrect"));
        QCOMPARE(request(1).method, Action::Request::Method::Put);
    }

    void gamutSwitchSendsOnlyItsBit()
    {
        CabinetSender::gamutCorrectEffectMode({{"a", {1}}}, true, true);
        CabinetSender::gamutCorrectEffectMode({{"a", {1}}}, false, true);
        CabinetSender::gamutCorrectEffectMode({{"a", {1}}}, true, false);
        CabinetSender::gamutCorrectEffectMode({{"a", {1}}}, false, false);
        QList<int> modes;
        for (const Recorded& sent : m_transport->requests())
            modes << sent.parameters.get<int>("mode");
        QCOMPARE(modes, QList<int>({11, 3, 8, 0})); // each from what the reply before left in the model
    }

    void effectModeOfUnusableTargets_data()
    {
        QTest::addColumn<CabinetTargetMap>("targets");
        QTest::addColumn<int>("result");
        QTest::addColumn<QStringList>("log");
        QTest::addColumn<int>("requests");
        QTest::newRow("none") << CabinetTargetMap{} << 103 << QStringList("critical default: param invalid!!!") << 0;
        QTest::newRow("first without cabinets") << CabinetTargetMap{{"a", {}}, {"b", {1}}} << 103 << QStringList() << 0;
        QTest::newRow("first cabinet unknown") << CabinetTargetMap{{"a", {9}}} << 103 << QStringList() << 0;
        QTest::newRow("last device unknown") << CabinetTargetMap{{"a", {1}}, {"x", {1}}} << 1 << QStringList() << 1;
    }

    void effectModeOfUnusableTargets()
    {
        QFETCH(CabinetTargetMap, targets);
        LogCapture log;
        QTEST(CabinetSender::gamutCorrectEffectMode(targets, true, true), "result");
        QTEST(log.take(), "log");
        QTEST(static_cast<int>(m_transport->requests().size()), "requests");
    }

    void modelTakesTheModeOfTheReply()
    {
        answerWith([](const Recorded& sent) {
            Parameters reply;
            reply.insert("cids", CabinetList{2, 77});
            reply.insert("mode", -1);
            sent.responder.reply(reply);
        });
        QCOMPARE(m_sender.setCorrectEffectMode({{"a", {1}}}, 8, true), 0);
        QCOMPARE(effect("a", 1).getEffectMode(), 3u);
        QCOMPARE(effect("a", 2).getEffectMode(), 4294967295u);
    }

    void readersOfTheLocalModel()
    {
        int first = -5;
        int second = -6;
        ModelService::getCabByCid("a", 1, true)->getBase().setGrayScaleSeries(16);
        QCOMPARE(CabinetSender::getFineGrayConfig("a", 9, first, second), 103);
        QCOMPARE(m_sender.getCorrectEffectMode("x", 1, first), 103);
        QCOMPARE(first, -5);
        QCOMPARE(second, -6);
        QCOMPARE(CabinetSender::getFineGrayConfig("a", 1, first, second), 0);
        QCOMPARE(first, 16);
        QCOMPARE(second, 0);
        QCOMPARE(m_sender.getCorrectEffectMode("a", 1, first), 0);
        QCOMPARE(first, 3);
        QVERIFY(m_transport->requests().empty());
    }
};

QTEST_GUILESS_MAIN(EffectModeTest)
#include "tst_effectmode.moc"
