#include "hubcall.h"
#include "support/logcapture.h"
#include <simulator/simulatedhub.h>

#include <QEventLoop>
#include <QRegularExpression>
#include <QTest>
#include <QTimer>

#include <array>
#include <thread>

using namespace CabinetSenderSpace;
using Simulator::HubAnswer;
using Simulator::HubCommands;
using Simulator::SimulatedHub;

namespace {

std::unique_ptr<SimulatedHub> startHub()
{
    QString error;
    auto hub = SimulatedHub::start(0, error);
    if (!hub)
        qFatal("%s", qPrintable(error));
    return hub;
}

Model::ColorGamutInfo gamutNamed(const std::string& name)
{
    Model::ColorGamutInfo gamut;
    gamut.name = name;
    return gamut;
}

constexpr int rounds = 20;

/// How many of so many gamuts a hub has taken, through a session and a sender of this thread.
int taken(CabinetSender3th& sender, quint16 port, const std::string& name)
{
    ClientSession session;
    session.setWaits(10000, 1000, 60);
    session.setTimeLimit(60000);
    session.connectToServer("127.0.0.1", port);
    sender.attachSession(&session);
    int result = 0;
    for (int i = 0; i < rounds; ++i)
        result += sender.uploadNiccData({}, gamutNamed(name + std::to_string(i))) == ResultSuccess ? 1 : 0;
    sender.attachSession(nullptr);
    return result;
}

} // namespace

class HubThreadsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyThreadHasItsOwnSessionAndSender()
    {
        LogCapture log;
        std::array<std::unique_ptr<SimulatedHub>, 4> hubs;
        for (auto& hub : hubs)
            hub = startHub();
        hubs.back()->setScript([count = 0](const QByteArray&, const QByteArray& frame) mutable {
            return ++count < rounds ? HubAnswer{{frame}} : HubAnswer{{frame.left(6)}, true};
        });
        std::array<int, 4> found{};
        std::vector<std::thread> threads; // which Qt has not started
        for (std::size_t i = 1; i < hubs.size(); ++i)
            threads.emplace_back([&, i] {
                found[i] = taken(*CabinetSender3th::create(), hubs[i]->port(), "hub " + std::to_string(i) + ", ");
            });
        found[0] = taken(*CabinetSender3th::getInstance(), hubs[0]->port(), "hub 0, "); // the process's, beside them
        for (std::thread& thread : threads)
            thread.join();
        CabinetSender3th::releaseInstance();
        QCOMPARE(found, (std::array<int, 4>{rounds, rounds, rounds, rounds - 1}));
        for (std::size_t i = 0; i < hubs.size(); ++i)
            QCOMPARE(hubs[i]->received(HubCommands::TargetGamut).value("name").toString(),
                     QString("hub %1, %2").arg(i).arg(rounds - 1));
        QCOMPARE(log.take().filter(QRegularExpression("^(warning|critical)")),
                 (QStringList{"critical default: socket error, errcode  QAbstractSocket::RemoteHostClosedError",
                              "critical default: send to server error!"}));
    }

    void aWindowGoesOnWhileItsCallWaits()
    {
        const auto hub = startHub();
        hub->setScript([](const QByteArray&, const QByteArray& frame) { return HubAnswer{{frame}, false, 1500}; });
        int ticks = 0;
        QTimer timer;
        connect(&timer, &QTimer::timeout, [&ticks] { ++ticks; });
        HubCall call("127.0.0.1", hub->port(), gamutNamed("Rec.709"));
        QEventLoop window;
        connect(&call, &QThread::finished, &window, &QEventLoop::quit); // queued: the window's thread is this one
        timer.start(20);
        call.start();
        window.exec();
        QVERIFY2(call.result() == ResultSuccess && ticks > 30, qPrintable(QString::number(ticks))); // of 75
        HubCall late("127.0.0.1", hub->port(), {});
        hub->setScript([](const QByteArray&, const QByteArray&) { return HubAnswer{{}, true}; });
        late.start();
        QVERIFY(late.wait(30000));
        QVERIFY(late.result() == ResultNotDelivered && late.failure().kind == HubFailure::Kind::NotConnected);
    }
};

QTEST_GUILESS_MAIN(HubThreadsTest)
#include "tst_hubthreads.moc"
