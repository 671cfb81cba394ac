#include "support/logcapture.h"
#include <suite/action/action.h>

#include <QCoreApplication>
#include <QEventLoop>
#include <QTest>
#include <QTimer>

#include <thread>

namespace {

using namespace std::chrono_literals;

/// Keeps the responders of its requests, for the test to answer when it likes; or answers inside the call.
class HeldTransport : public Action::Transport
{
public:
    void send(const Action::Request& request, const Action::Responder& responder) override
    {
        timeout = request.timeout;
        responders.push_back(responder);
        if (insideCall)
            insideCall(responder);
    }

    std::function<void(const Action::Responder&)> insideCall;
    std::vector<Action::Responder> responders;
    std::chrono::milliseconds timeout{};
};

/// What the callbacks of one request were given, in order.
struct Endings
{
    QStringList texts;
    bool isOnAskingThread = true;
    std::thread::id asking = std::this_thread::get_id();

    void add(const QString& text)
    {
        texts << text;
        isOnAskingThread = isOnAskingThread && std::this_thread::get_id() == asking;
    }
};

std::shared_ptr<Action::RequestHandle> ask(Endings& endings, int timeout = 30)
{
    Parameters params;
    params.options().insert("timeout", timeout);
    return Action::put(
        "Device_Test", "left", params,
        [&endings](Parameters reply, const std::string& device) {
            endings.add(
                QStringLiteral("reply %1 from %2").arg(reply.get<int>("n")).arg(QString::fromStdString(device)));
        },
        [&endings](const QString& text) { endings.add(text); }, true, PackagePriority::Normal);
}

Parameters numbered(int n)
{
    Parameters reply;
    reply.insert("n", n);
    return reply;
}

/// Lets everything that is queued be delivered.
void settle()
{
    for (int i = 0; i < 10; ++i)
        QCoreApplication::processEvents();
}

using Events = std::function<void(HeldTransport&)>;

} // namespace

Q_DECLARE_METATYPE(Events)

class ActionTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_transport = std::make_shared<HeldTransport>();
        Action::setTransport(m_transport);
        Action::setTimeoutUnit(1ms);
        settle();
    }

    void cleanup()
    {
        Action::setTransport(nullptr);
        settle();
    }

    void firstValueOfAKeyWins()
    {
        Parameters params;
        QVERIFY(params.insert("key", 1));
        QVERIFY(!params.insert("key", 2));
        QVERIFY(!params.insert<std::string>("key", "text"));
        QCOMPARE(params.get<int>("key"), 1);
        QVERIFY(params.options().insert("key", 5)); // the maps are independent
        QCOMPARE(params.get<int>("key"), 1);
    }

    void getOfAMissingKeyOrAnotherTypeGivesTheDefaultAndLogs()
    {
        Parameters inner;
        inner.insert("enable", true);
        Parameters params;
        params.insert("n", 7);
        params.insert("list", std::vector<Parameters>{inner});
        LogCapture log;
        QCOMPARE(params.get<int>("absent"), 0);
        QCOMPARE(params.get<bool>("n"), false);
        QCOMPARE(params.get<std::string>("n"), std::string());
        QVERIFY(params.get<std::vector<unsigned char>>("n").empty());
        QCOMPARE(log.take(), QStringList({"critical default: Parameters get error, key: absent",
                                          "critical default: Parameters get error, key: n",
                                          "critical default: Parameters get error, key: n",
                                          "critical default: Parameters get error, key: n"}));
        QVERIFY(params.get<std::vector<Parameters>>("list").front().get<bool>("enable"));
        QCOMPARE(log.take(), QStringList());
    }

    void everyOrderOfEventsEndsARequestOnce_data()
    {
        QTest::addColumn<Events>("events");
        QTest::addColumn<QString>("ending");
        QTest::addColumn<int>("dropped");
        const auto reply = [](int n) { return [n](HeldTransport& t) { t.responders.front().reply(numbered(n)); }; };
        const auto fail = [](HeldTransport& t) { t.responders.front().fail(QStringLiteral("broken")); };
        const auto lose = [](HeldTransport&) { Action::setTransport(nullptr); };
        const auto expire = [](HeldTransport&) { QTest::qWait(40); };
        const auto fromThread = [](const Events& event) {
            return [event](HeldTransport& t) { std::thread([&] { event(t); }).join(); };
        };
        const auto row = [](const char* name, std::initializer_list<Events> events, const char* ending, int dropped) {
            const std::vector<Events> all(events);
            QTest::newRow(name) << Events([all](HeldTransport& t) {
                for (const Events& event : all)
                    event(t);
            }) << QString::fromLatin1(ending)
                                << dropped;
        };
        constexpr auto timeout = "timeout: no answer for Device_Test to device left within 0.02 s";
        row("reply", {reply(1)}, "reply 1 from left", 0);
        row("error", {fail}, "broken", 0);
        row("timeout", {expire}, timeout, 0);
        row("transport lost", {lose}, "transport lost before the answer came", 0);
        row("reply from another thread", {fromThread(reply(1))}, "reply 1 from left", 0);
        row("error from another thread", {fromThread(fail)}, "broken", 0);
        row("reply twice", {reply(1), reply(2)}, "reply 1 from left", 1);
        row("reply then error", {reply(1), fail}, "reply 1 from left", 1);
        row("error then reply", {fail, reply(1)}, "broken", 1);
        row("reply then timeout", {reply(1), expire}, "reply 1 from left", 0);
        row("timeout then reply", {expire, reply(1)}, timeout, 1);
        row("timeout then error from a thread", {expire, fromThread(fail)}, timeout, 1);
        row("reply then lost", {reply(1), lose}, "reply 1 from left", 0);
        row("lost then settled then reply", {lose, expire, reply(1)}, "transport lost before the answer came", 1);
        row("three threads", {fromThread(reply(1)), fromThread(reply(2)), fromThread(fail)}, "reply 1 from left", 2);
    }

    void everyOrderOfEventsEndsARequestOnce()
    {
        QFETCH(Events, events);
        QFETCH(QString, ending);
        QFETCH(int, dropped);
        const auto droppedBefore = Action::droppedAnswers();
        Endings endings;
        const auto handle = ask(endings, 20);
        QVERIFY(!handle->isEnded());
        events(*m_transport);
        QTRY_VERIFY(handle->isEnded());
        settle();
        QTest::qWait(25); // past the timeout: nothing more may come
        QCOMPARE(endings.texts, QStringList(ending));
        QVERIFY(endings.isOnAskingThread);
        QCOMPARE(Action::droppedAnswers() - droppedBefore, static_cast<quint64>(dropped));
    }

    void anAnswerInsideTheCallEndsTheRequestThere()
    {
        m_transport->insideCall = [](const Action::Responder& responder) {
            responder.reply(numbered(1));
            responder.reply(numbered(2));
        };
        Endings endings;
        QVERIFY(ask(endings)->isEnded());
        QCOMPARE(endings.texts, QStringList("reply 1 from left"));
        settle();
        QCOMPARE(endings.texts.size(), 1);
    }

    void aTransportThatIsAbsentOrThrowsEndsTheRequestAtOnce()
    {
        Endings endings;
        m_transport->insideCall = [](const Action::Responder&) { throw std::runtime_error("no cable"); };
        QVERIFY(ask(endings)->isEnded());
        m_transport->insideCall = [](const Action::Responder&) { throw 7; };
        QVERIFY(ask(endings)->isEnded());
        Action::setTransport(nullptr);
        QVERIFY(ask(endings)->isEnded());
        QCOMPARE(endings.texts, QStringList({"transport failed: no cable", "transport failed: unknown exception",
                                             "no transport for Device_Test to device left"}));
    }

    void whereNoTimerRunsARequestEndsAtOnce()
    {
        // A thread that Qt did not start has none before its first event loop; its end ends a request that is left.
        LogCapture log; // keeps Qt's own warning off the terminal
        Endings endings;
        std::thread([&] {
            endings.asking = std::this_thread::get_id();
            ask(endings);
        }).join();
        QCOMPARE(endings.texts, QStringList("no timer for Device_Test to device left: its thread has no event loop"));
        QVERIFY(endings.isOnAskingThread);
    }

    void timeoutsAreInSecondsAndThirtyWithoutOne_data()
    {
        QTest::addColumn<int>("given");
        QTest::addColumn<int>("expectedMs");
        QTest::newRow("12") << 12 << 12000;
        QTest::newRow("more than a timer holds") << 2147484 << 2147483647;
        QTest::newRow("none for an empty list") << 0 << 30000;
        QTest::newRow("negative") << -3 << 30000;
    }

    void timeoutsAreInSecondsAndThirtyWithoutOne()
    {
        QFETCH(int, given);
        QFETCH(int, expectedMs);
        Action::setTimeoutUnit(1s);
        Parameters params;
        params.options().insert("timeout", given);
        const auto handle = Action::put("Device_Test", "left", params, {}, {}, true, PackagePriority::Normal);
        QCOMPARE(m_transport->timeout, std::chrono::milliseconds(expectedMs));
        settle();
        QVERIFY(!handle->isEnded());
        Action::put("Device_Test", "left", {}, {}, {}, true, PackagePriority::Normal);
        QCOMPARE(m_transport->timeout, 30000ms);
    }

    void aCallbackMayWaitForTheAnswerOfAnotherRequest()
    {
        // Both answers are in the mailbox when the first callback begins to wait for the second.
        QStringList order;
        bool secondCame = false;
        const auto onSecond = [&](const Parameters&, const std::string&) {
            secondCame = true;
            order << QStringLiteral("second");
        };
        const auto onFirst = [&](const Parameters&, const std::string&) {
            order << QStringLiteral("first begins");
            QTRY_VERIFY_WITH_TIMEOUT(secondCame, 1000);
            order << QStringLiteral("first ends");
        };
        Parameters params;
        params.options().insert("timeout", 5000);
        const auto first = Action::put("A", "left", params, onFirst, {}, true, PackagePriority::Normal);
        const auto second = Action::put("B", "left", params, onSecond, {}, true, PackagePriority::Normal);
        m_transport->responders[0].reply({});
        m_transport->responders[1].reply({});
        QTRY_VERIFY(first->isEnded() && order.size() == 3);
        QCOMPARE(order, QStringList({"first begins", "second", "first ends"}));
    }

    void aWaitThatBeginsBeforeAnAnswerIsDeliveredLosesNeither()
    {
        // The outer answer is on its way when an event of the application begins an inner wait, whose answer is there
        // at once.
        m_transport->insideCall = [](const Action::Responder& responder) {
            std::thread([&] { responder.reply(numbered(1)); }).join();
        };
        Endings outer;
        Endings inner;
        const auto waitFor = [](Endings& endings) {
            QEventLoop loop;
            const auto handle = Action::put(
                "Device_Test", "left", {},
                [&](const Parameters&, const std::string&) {
                    endings.add("reply");
                    loop.quit();
                },
                [&](const QString& text) {
                    endings.add(text);
                    loop.quit();
                },
                true, PackagePriority::Normal);
            if (!handle->isEnded())
                loop.exec();
        };
        Action::setTimeoutUnit(100ms); // 3 s: a lost answer shows as a timeout
        QTimer::singleShot(0, [&] { waitFor(inner); });
        waitFor(outer);
        QCOMPARE(outer.texts, QStringList("reply"));
        QCOMPARE(inner.texts, QStringList("reply"));
    }

    void theEndOfTheAskingThreadEndsItsRequestsThere()
    {
        Endings endings;
        std::thread asker([&] {
            endings.asking = std::this_thread::get_id();
            const QEventLoop bringsTimers;
            ask(endings, 5000);
        });
        asker.join();
        QCOMPARE(endings.texts, QStringList("shut down: the asking thread has ended"));
        QVERIFY(endings.isOnAskingThread);
        const auto droppedBefore = Action::droppedAnswers();
        m_transport->responders.front().reply({}); // its thread is gone
        QCOMPARE(Action::droppedAnswers() - droppedBefore, quint64(1));
    }

private:
    std::shared_ptr<HeldTransport> m_transport;
};

QTEST_GUILESS_MAIN(ActionTest)
#include "tst_action.moc"
