#include "support/calibrationsetup.h"
#include <calibration/hubclient.h>
#include <simulator/simulatedhub.h>

#include <QTcpServer>
#include <QTest>

using namespace Calibration;
using Simulator::HubAnswer;
using Simulator::SimulatedHub;
using Kind = Outcome::Kind;
using CabinetSenderSpace::CabinetSender3th;

namespace {

Outcome outcome(const QString& step, Kind kind, int arrived, const QString& error = {})
{
    Outcome result;
    result.step = step;
    result.device = "a";
    result.cabinets = 2;
    result.kind = kind;
    result.arrived = arrived;
    result.error = error;
    return result;
}

/// Counts what it hears.
class Counter : public Observer
{
public:
    void sent(const Outcome&) override { ++m_sent; }
    int m_sent = 0;
};

} // namespace

Q_DECLARE_METATYPE(std::vector<Outcome>)
Q_DECLARE_METATYPE(HubAnswer)

class DestinationsTest : public QObject
{
    Q_OBJECT

private:
    void startHub()
    {
        QString error;
        m_hub = SimulatedHub::start(0, error);
        QVERIFY2(m_hub, qPrintable(error));
    }
    HubAddress address(double timeout = 10.0) const { return {"127.0.0.1", m_hub->port(), timeout}; }

    const Content m_content = exampleContent();
    std::unique_ptr<SimulatedHub> m_hub;

private Q_SLOTS:
    void cleanup()
    {
        Action::setTimeoutUnit(std::chrono::seconds(1));
        m_hub.reset();
    }

    void aWallsDeviceIsServedUntilAStepFails_data()
    {
        QTest::addColumn<QString>("fault");
        QTest::addColumn<int>("sent");
        QTest::newRow("none") << "" << 6;
        QTest::newRow("error") << "Unavailable: binary to b: device \"b\" reports an error (simulated)" << 1;
        QTest::newRow("silence") << "Timeout: binary to b: timeout: " << 1;
        QTest::newRow("partial") << "Difference: binary to b: 1 of 2 cabinets hold it" << 6;
    }

    void aWallsDeviceIsServedUntilAStepFails()
    {
        QFETCH(QString, fault);
        const QByteArray kind = QTest::currentDataTag();
        if (kind == "silence")
            Action::setTimeoutUnit(std::chrono::milliseconds(1));
        const TestWall wall(kind == "none" ? R"({"latencyMs": 0})" : failingBy(kind));
        const auto destination = wallDestination("w", wall.targets, m_content, wall.cabinets.get());
        Counter counter;
        const DeviceRecord record = destination->serve("b", counter);
        QTEST(counter.m_sent, "sent");
        QCOMPARE(record.isDone(), fault.isEmpty());
        const auto found = faultOf(record.outcomes, false);
        QVERIFY2(found ? !fault.isEmpty() && faultText(*found).startsWith(fault) : fault.isEmpty(),
                 found ? qPrintable(faultText(*found)) : "no fault");
        const DeviceRecord kept = recordFromJson(toJson(record)); // as a journal keeps it
        QVERIFY(kept.outcomes[0].kind == record.outcomes[0].kind && kept.isDone() == record.isDone());
        QCOMPARE(kept.held.front().coefficients, record.held.front().coefficients);
        QVERIFY(record.known == Known::ReadBack && kept.known == Known::ReadBack);
        // Whoever cannot read the cabinets believes the device, also where one of them does not hold it.
        const DeviceRecord believed = wallDestination("w", wall.targets, m_content, nullptr)->serve("b", counter);
        QCOMPARE(believed.isDone(), kind == "none" || kind == "partial");
        QCOMPARE(believed.held.size(), believed.isDone() ? 1 : 0);
        QVERIFY(recordFromJson(toJson(believed)).known == Known::Acknowledged);
    }

    void aStepHasArrivedWhereACabinetHoldsIt()
    {
        Action::CabinetState before;
        before.mode = 3;
        Action::CabinetState now = before;
        const auto arrived = [&](const Step& step) { return step.hasArrived(before, now); };
        const std::vector<Step> steps = stepsOf(m_content);
        for (const Step& step : steps)
            QVERIFY2(!arrived(step), qPrintable(step.name));
        now.mode = 11;
        now.grayTable = std::make_shared<Action::GrayTable>(m_content.table);
        now.targetGamut = std::make_shared<Model::ColorGamutInfo>(m_content.target);
        now.measuredGamut = std::make_shared<Model::ColorGamutInfo>(m_content.measured);
        now.coefficients = m_content.target.coeff.getCoeffs();
        now.binary = std::make_shared<QByteArray>(m_content.binary->bytes);
        for (const Step& step : steps)
            QVERIFY2(arrived(step), qPrintable(step.name));
        QVERIFY(!arrived(modeStep(true, false)) && !arrived(modeStep(false, true)));
        now.mode = 8;
        QVERIFY(arrived(modeStep(true, false)) && !arrived(modeStep(true, true)));
        Action::GrayTable slower = m_content.table;
        slower.freq = 50;
        QVERIFY(!arrived(grayStep(slower, "%1")) && grayStep(slower, "%2").summary.startsWith("gray table %2, 256 "));
    }

    void outcomesAmountToOneFault_data()
    {
        QTest::addColumn<std::vector<Outcome>>("outcomes");
        QTest::addColumn<QString>("fault");
        const Outcome fine = outcome("gray", Kind::Answered, 2);
        const Outcome part = outcome("mode", Kind::Answered, 1);
        const Outcome failed = outcome("measure", Kind::Failed, 0, "no");
        const Outcome late = outcome("gamut", Kind::TimedOut, 0, "late");
        const Outcome unsent = outcome("mode", Kind::NotSent, 0);
        QTest::newRow("good") << std::vector{fine} << "";
        QTest::newRow("a failure before a part") << std::vector{part, failed} << "Unavailable: measure to a: no";
        QTest::newRow("a part") << std::vector{part, fine} << "Difference: mode to a: 1 of 2 cabinets hold it";
        QTest::newRow("the first decides")
            << std::vector{late, failed} << "Timeout: gamut to a: late; measure to a: no";
        QTest::newRow("not its turn") << std::vector{failed, unsent} << "Unavailable: measure to a: no";
        QTest::newRow("unanswered") << std::vector{outcome("mode", Kind::Unanswered, 0)}
                                    << "Unavailable: mode to a: no answer when interrupted";
    }

    void outcomesAmountToOneFault()
    {
        QFETCH(std::vector<Outcome>, outcomes);
        const auto fault = faultOf(outcomes, false);
        QTEST(fault ? faultText(*fault) : QString(), "fault");
        outcomes.push_back(outcome("last", Kind::NotSent, 0));
        const QString interrupted = faultText(*faultOf(outcomes, true));
        QVERIFY2(interrupted.startsWith("Interrupted: interrupted; failed: ") && interrupted.endsWith("last to a"),
                 qPrintable(interrupted));
    }

    void aHubsFailuresAreToldApart_data()
    {
        QTest::addColumn<HubAnswer>("answer");
        QTest::addColumn<QString>("fault");
        QTest::newRow("silence") << HubAnswer{} << "Timeout: no reply within 0.2 s";
        QTest::newRow("closed") << HubAnswer{{}, true} << "Unavailable: the connection was closed before the reply";
        QTest::newRow("not the protocol")
            << HubAnswer{{QByteArray("\x05\0\0\0hello", 9)}, false} << "Protocol: the reply is not the hub's protocol";
        QTest::newRow("error number") << HubAnswer{{Simulator::hubFrame("{\"error\":7}")}, false}
                                      << "Unavailable: the hub answered with error number 7";
    }

    void aHubsFailuresAreToldApart()
    {
        QFETCH(HubAnswer, answer);
        QFETCH(QString, fault);
        startHub();
        m_hub->setScript([answer](const QByteArray&, const QByteArray&) { return answer; });
        const auto client = good(HubClient::connect(address(0.2)));
        const auto sent = client->run([](CabinetSender3th& sender) { return sender.uploadNiccData({}, {}); });
        QCOMPARE(faultText(sent), fault.replace(": ", ": " + client->name() + ": "));
    }

    void aHubIsConnectedToOnce() // it may serve one client and no more
    {
        QTcpServer server;
        QVERIFY(server.listen(QHostAddress::LocalHost));
        const auto hub = good(HubClient::connect({"127.0.0.1", server.serverPort(), 1.0}));
        QVERIFY(server.waitForNewConnection(5000) && server.nextPendingConnection());
        QVERIFY(!server.waitForNewConnection(50));
    }

    void aHubIsServedAsOneDevice()
    {
        startHub();
        const auto destination = hubDestination({{"hub", address()}}, m_content);
        Counter counter;
        const DeviceRecord record = destination->serve("hub", counter);
        QVERIFY(record.isDone() && counter.m_sent == destination->stepCount() && destination->stepCount() == 3);
        QVERIFY(record.known == Known::Acknowledged);
        QCOMPARE(record.held.front().coefficients, signedCoefficients(m_content.target.coeff.getCoeffs()));
        QCOMPARE(m_hub->received(Simulator::HubCommands::MeasuredGamut).value("rLxy")["lum"].toDouble(), 834.2);
        // One that holds no gamut of its own makes nothing of it.
        const auto other = hubDestination({{"hub", address(), [] { return HubHoldings(); }}}, m_content);
        const DeviceRecord read = other->serve("hub", counter);
        QVERIFY(read.held.front().coefficients == Colour::Coefficients{} && read.known == Known::ReadBack);
    }

    void aHubThatFailsHalfWayIsToldSo()
    {
        startHub();
        m_hub->setScript([count = 0](const QByteArray&, const QByteArray& frame) mutable {
            return ++count == 1 ? HubAnswer{{frame}, false} : HubAnswer{{}, true};
        });
        Counter counter;
        const DeviceRecord record = hubDestination({{"hub", address()}}, m_content)->serve("hub", counter);
        QVERIFY(!record.isDone() && record.held.isEmpty() && counter.m_sent == 2);
        QVERIFY(record.outcomes[0].isGood() && record.outcomes[2].kind == Kind::NotSent);
        QCOMPARE(faultText(*faultOf(record.outcomes, false)),
                 "Unavailable: measure to hub: the connection was closed before the reply");
    }
};

QTEST_GUILESS_MAIN(DestinationsTest)
#include "tst_destinations.moc"
