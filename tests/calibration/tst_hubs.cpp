#include "support/calibrationsetup.h"
#include <simulator/simulatedhub.h>

#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <map>

using namespace Calibration;
using Simulator::HubAnswer;
using Simulator::SimulatedHub;

namespace {

/// What a hub does, and what its record says then; "" where it is served.
struct Behaviour
{
    SimulatedHub::Script script;
    QString error;
};

SimulatedHub::Script answering(const HubAnswer& answer)
{
    return [answer](const QByteArray&, const QByteArray&) { return answer; };
}

SimulatedHub::Script dripping(int pauseMs)
{
    return [pauseMs](const QByteArray&, const QByteArray& frame) {
        HubAnswer answer;
        for (const char byte : frame)
            answer.chunks << QByteArray(1, byte);
        answer.pauseMs = pauseMs;
        return answer;
    };
}

std::vector<Behaviour> behaviours()
{
    return {{nullptr, {}},
            {[](const QByteArray&, const QByteArray& frame) {
                 return HubAnswer{{frame.left(6)}, true};
             },
             "the connection was closed before the reply"},
            {answering({{Simulator::hubFrame("{\"error\":7}")}}), "the hub answered with error number 7"},
            {answering({}), "no reply within 1.5 s"},
            {dripping(1), {}},
            {dripping(500), "no reply within 1.5 s"},
            {answering({{Simulator::hubFrame("hello")}}), "the reply is not the hub's protocol"}};
}

} // namespace

class HubsTest : public QObject
{
    Q_OBJECT

private:
    quint16 start(quint16 port = 0)
    {
        QString error;
        m_hubs.push_back(SimulatedHub::start(port, error));
        if (!m_hubs.back())
            qFatal("%s", qPrintable(error));
        return m_hubs.back()->port();
    }

    /// A port at which nobody listens.
    quint16 deadPort()
    {
        const quint16 port = start();
        m_hubs.pop_back();
        return port;
    }

    static HubTarget target(quint16 port, const HubReader& reader = nullptr)
    {
        const HubAddress address{"127.0.0.1", port, 1.5};
        return {address.name(), address, reader};
    }

    Common::Result<RunResult> calibrate(const std::vector<HubTarget>& hubs, const RunOptions& options = {}) const
    {
        const auto folder = good(Folder::open(out()));
        const auto figures = good(figuresOf(m_content.measured, m_content.target));
        const auto destination = hubDestination(hubs, m_content);
        Observer nobody;
        return Calibration::run(m_content, figures, *destination, inputsOf(m_content, *destination), *folder, options,
                                nobody);
    }

    QString out(const QString& name = {}) const { return m_folder->filePath("out/" + name); }

    Content m_content = exampleContent();
    std::unique_ptr<QTemporaryDir> m_folder;
    std::vector<std::unique_ptr<SimulatedHub>> m_hubs;

private Q_SLOTS:
    void init() { m_folder = std::make_unique<QTemporaryDir>(); }
    void cleanup() { m_hubs.clear(); }

    void anAddressIsReadOrRefused_data()
    {
        QTest::addColumn<QString>("name");
        QTest::newRow("192.0.2.7:9000") << "hub 192.0.2.7:9000";
        QTest::newRow("Hall-3.example:65535") << "hub hall-3.example:65535";
        QTest::newRow("[::1]:9000") << "hub [::1]:9000";
        QTest::newRow("[0:0:0:0:0:0:0:1]:9000") << "hub [::1]:9000";
        for (const char* wrong : {"", ":9000", "hall", "hall:", "hall:0", "hall:65536", "hall:+1", "::1:9000", "[::1]",
                                  "[hall]:9000", "[127.0.0.1]:9000", "http://hall:9000", "a b:9000", "hall:9000 "})
            QTest::newRow(wrong) << "";
    }

    void anAddressIsReadOrRefused()
    {
        const QString text = QTest::currentDataTag();
        const auto address = parseHubAddress(text);
        QTEST(address ? address->name() : QString(), "name");
        QVERIFY(address || (address.fault().kind == Fault::Kind::Usage && address.fault().expected.contains("[::1]:") &&
                            address.fault().found == (text.isEmpty() ? "nothing" : text)));
    }

    void everyHubsFaultIsItsOwn()
    {
        std::vector<HubTarget> hubs{target(deadPort())};
        std::map<QString, QString> expected{{hubs.front().name, "connection refused"}};
        for (const Behaviour& behaviour : behaviours()) {
            hubs.push_back(target(start()));
            m_hubs.back()->setScript(behaviour.script);
            expected[hubs.back().name] = behaviour.error;
        }
        RunOptions options;
        QStringList served;
        for (const bool isResumed : {false, true}) { // the second time those that failed, which fail again
            options.resume = isResumed;
            const RunResult result = good(calibrate(hubs, options));
            QCOMPARE(result.records.size(), expected.size());
            QCOMPARE(result.resumed, served);
            served.clear();
            for (const DeviceRecord& record : result.records) {
                const Outcome& first = record.outcomes.front();
                QCOMPARE(record.device + first.error, record.device + expected.at(record.device));
                QCOMPARE(record.isDone(), first.error.isEmpty());
                QCOMPARE(first.kind == Outcome::Kind::TimedOut, first.error.startsWith("no reply"));
                if (record.isDone())
                    served << record.device;
            }
            QVERIFY(served.size() == 2 && result.fault()->kind != Fault::Kind::Difference);
        }
        start(hubs.front().address.port);
        for (const auto& hub : m_hubs)
            hub->setScript(nullptr);
        std::reverse(hubs.begin(), hubs.end()); // in whatever order they are given
        const RunResult resumed = good(calibrate(hubs, options));
        QVERIFY2(resumed.isDone(), qPrintable(resumed.fault() ? faultText(*resumed.fault()) : QString()));
        QCOMPARE(resumed.resumed, served);
        for (const auto& hub : m_hubs)
            QCOMPARE(hub->received(Simulator::HubCommands::MeasuredGamut).value("rLxy")["lum"].toDouble(), 834.2);
    }

    void whereNoHubIsReachedNothingChanges()
    {
        const std::vector<HubTarget> dead{target(deadPort())};
        const QString refused = "Unavailable: gray to " + dead.front().name + ": connection refused";
        QCOMPARE(faultText(calibrate(dead)), refused);
        QVERIFY(QDir(out()).isEmpty());
        const std::vector<HubTarget> alive{target(start())};
        QVERIFY(good(calibrate(alive)).isDone());
        const QByteArray before = readFile(out("calibration.jsonl")) + readFile(out("screen.nicc"));
        RunOptions force;
        force.force = true;
        QCOMPARE(faultText(calibrate(dead, force)), refused);
        QCOMPARE(readFile(out("calibration.jsonl")) + readFile(out("screen.nicc")), before);
    }

    void whereNoJournalCanBeMadeNothingIsSent()
    {
        QVERIFY(QDir().mkpath(out("calibration.jsonl"))); // no journal can be made there
        const std::vector<HubTarget> hubs{target(start()), target(start())};
        RunOptions force;
        force.force = true;
        QVERIFY(!calibrate(hubs, force));
        QVERIFY(m_hubs[0]->requestCount() + m_hubs[1]->requestCount() == 0);
    }

    void theWindowGoesOnWhileOneHubIsServed_data()
    {
        QTest::addColumn<int>("atOnce");
        QTest::newRow("at once") << defaultAtOnce;
        QTest::newRow("one after the other") << 1;
    }

    void theWindowGoesOnWhileOneHubIsServed()
    {
        const std::vector<HubTarget> hubs{target(start())};
        m_hubs.front()->setScript([](const QByteArray&, const QByteArray& frame) {
            return HubAnswer{{frame}, false, 100};
        });
        int ticks = 0;
        QTimer timer;
        connect(&timer, &QTimer::timeout, [&ticks] { ++ticks; });
        timer.start(10);
        RunOptions options;
        QFETCH(int, atOnce);
        options.atOnce = atOnce;
        QVERIFY(good(calibrate(hubs, options)).isDone());
        QVERIFY2(ticks >= 10, qPrintable(QString::number(ticks))); // of 30
    }
};

QTEST_GUILESS_MAIN(HubsTest)
#include "tst_hubs.moc"
