#include "support/logcapture.h"
#include <qualityutility/tool/sender4th/cabinetsender4th.h>
#include <suite/action/action.h>
#include <suite/service/modelservice.h>

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QTest>
#include <QTimer>

#include <thread>

using namespace CabinetSenderSpace;

namespace {

/// One request as the rogue action library below keeps it: its callbacks may be called whenever and wherever a test
/// likes.
struct Kept
{
    std::function<void(Parameters, std::string)> onResult;
    std::function<void(const QString&)> onError;
};

using OnSend = std::function<void(const Kept&)>;

std::vector<Kept> s_kept;
OnSend s_onSend;

void confirm(const Kept& request)
{
    Parameters reply;
    reply.insert("cids", std::vector<unsigned long long>{1});
    request.onResult(reply, "a");
}

} // namespace

// In place of the bundled library's: it promises nothing. Only put is needed.
namespace Action {

std::shared_ptr<RequestHandle> put(const std::string&, const std::string&, const Parameters&,
                                   const std::function<void(Parameters, std::string)>& onResult,
                                   const std::function<void(const QString&)>& onError, bool, PackagePriority)
{
    s_kept.push_back({onResult, onError});
    if (s_onSend)
        s_onSend(s_kept.back());
    return nullptr;
}

} // namespace Action

/// How an answer arrives: given what answers a request and what looks at the outcome right afterwards.
using Arrival = std::function<OnSend(const OnSend& answer, const std::function<void()>& look)>;

Q_DECLARE_METATYPE(OnSend)
Q_DECLARE_METATYPE(Arrival)

class SenderWaitingTest : public QObject
{
    Q_OBJECT

private:
    static int send(const CabinetTargetMap& targets)
    {
        CabinetSender4th sender(nullptr);
        return sender.setGrayScaleTable(targets, {}, {}, {}, {}, 60);
    }

    bool isMarked() const { return m_cabinet->getDisplayEffectPara().getFineGrayValid(); }

    std::shared_ptr<Model::Cabinet> m_cabinet;
    QScopedPointer<LogCapture> m_log; // keeps the expected error lines off the terminal

private Q_SLOTS:
    void init()
    {
        m_log.reset(new LogCapture);
        s_kept.clear();
        s_onSend = nullptr;
        m_cabinet = std::make_shared<Model::Cabinet>(1);
        Service::DeviceEntry entry{std::make_shared<Model::Device>(), {m_cabinet}};
        entry.device->getBase().setId("a");
        Service::ModelService::setDevices({entry});
    }

    void cleanup() { m_log.reset(); }

    void theFirstAnswerCountsWhereverItComesFrom_data()
    {
        QTest::addColumn<OnSend>("onSend");
        QTest::addColumn<int>("result");
        const auto queued = [](const OnSend& answer) {
            return OnSend([answer](const Kept& request) { QTimer::singleShot(0, [=] { answer(request); }); });
        };
        const auto fromThread = [](const OnSend& answer) {
            return OnSend([answer](const Kept& request) { std::thread([=] { answer(request); }).detach(); });
        };
        const OnSend fail = [](const Kept& request) { request.onError("no"); };
        const OnSend twice = [fail](const Kept& request) {
            confirm(request);
            confirm(request);
            fail(request);
        };
        const OnSend failThenConfirm = [fail](const Kept& request) {
            fail(request);
            confirm(request);
        };
        QTest::newRow("inside the call, twice") << twice << 0;
        QTest::newRow("inside the call, error first") << failThenConfirm << 15;
        QTest::newRow("queued, twice") << queued(twice) << 0;
        QTest::newRow("queued, error first") << queued(failThenConfirm) << 15;
        QTest::newRow("another thread, twice") << fromThread(twice) << 0;
        QTest::newRow("another thread, error first") << fromThread(failThenConfirm) << 15;
    }

    void theFirstAnswerCountsWhereverItComesFrom()
    {
        QFETCH(OnSend, onSend);
        QFETCH(int, result);
        s_onSend = onSend;
        for (int i = 0; i < 50; ++i) // an answer from a thread may come before, while or after the wait begins
            QCOMPARE(send({{"a", {1}}}), result);
        QCOMPARE(isMarked(), result == 0);
    }

    void anAnswerIsAppliedAsItArrives_data()
    {
        QTest::addColumn<Arrival>("arrival");
        const Arrival inside = [](const OnSend& answer, const auto& look) {
            return [=](const Kept& request) {
                answer(request);
                look();
            };
        };
        const Arrival queued = [inside](const OnSend& answer, const auto& look) {
            return [=](const Kept& request) { QTimer::singleShot(0, [=] { inside(answer, look)(request); }); };
        };
        // The outer request starts an inner one, which sees to the answer of the outer before it gets its own.
        const auto nested = [](const Arrival& outer) {
            return Arrival([outer](const OnSend& answer, const auto& look) {
                return [=](const Kept&) {
                    if (s_kept.size() == 1) {
                        QTimer::singleShot(0, [] { send({{"a", {}}}); });
                        return;
                    }
                    outer(answer, look)(s_kept.front());
                    QTimer::singleShot(0, [] { s_kept.back().onResult({}, "a"); });
                };
            });
        };
        QTest::newRow("inside the call") << inside;
        QTest::newRow("queued") << queued;
        QTest::newRow("inside an inner call") << nested(inside);
        QTest::newRow("during an inner wait") << nested(queued);
    }

    void anAnswerIsAppliedAsItArrives()
    {
        QFETCH(Arrival, arrival);
        bool wasMarked = false;
        s_onSend = arrival(confirm, [&] { wasMarked = isMarked(); });
        QCOMPARE(send({{"a", {1}}}), 0);
        QVERIFY(wasMarked);

        s_kept.clear();
        m_log->take();
        QStringList log;
        s_onSend = arrival([](const Kept& request) { request.onError("no"); }, [&] { log = m_log->take(); });
        QCOMPARE(send({{"a", {1}}}), 15);
        QCOMPARE(log, QStringList({"critical default: put error!!!", "spdlog error: setGrayScaleTable error:no"}));
    }

    void whatIsThrownIsAnErrorOfItsDevice_data()
    {
        QTest::addColumn<OnSend>("onSend");
        QTest::addColumn<QString>("text");
        const OnSend queued = [](const Kept& request) { QTimer::singleShot(0, [=] { confirm(request); }); };
        const OnSend throws = [](const Kept&) { throw 7; };
        QTest::newRow("by the action library") << throws << "unknown exception";
        QTest::newRow("by an observer inside the call") << OnSend(confirm) << "no window";
        QTest::newRow("by an observer in the wait") << queued << "no window";
    }

    void whatIsThrownIsAnErrorOfItsDevice()
    {
        QFETCH(OnSend, onSend);
        QFETCH(QString, text);
        s_onSend = onSend;
        m_cabinet->getDisplayEffectPara().setObserver([](auto) { throw std::runtime_error("no window"); });
        QCOMPARE(send({{"a", {1}}}), 15);
        QCOMPARE(m_log->take().last(), "spdlog error: setGrayScaleTable error:" + text);
        confirm(s_kept.front()); // nothing of the operation is left for it to touch
    }

    void aCallbackThatOutlivesItsOperationChangesNothing()
    {
        s_onSend = [](const Kept& request) { request.onError("no"); };
        QCOMPARE(send({{"a", {1}}}), 15);
        confirm(s_kept.front());
        std::thread([] { confirm(s_kept.front()); }).join();
        s_kept.front().onError("again");
        QVERIFY(!isMarked());
    }

    void anAnswerToAnEarlierDeviceDoesNotEndTheNextWait()
    {
        s_onSend = [](const Kept& request) {
            if (s_kept.size() == 1) {
                request.onError("no");
                return;
            }
            QTimer::singleShot(0, [] { confirm(s_kept.front()); }); // late, for the first device
            QTimer::singleShot(20, [] { s_kept.back().onError("second"); });
        };
        QCOMPARE(send({{"a", {1}}, {"b", {1}}}), 15);
        QVERIFY(!isMarked());
    }

    void toldToQuitInTheMiddleTheOperationReturnsAndWaitsNoMore()
    {
        // Inside an outer loop, as in an application: after quit() every further nested loop of this thread returns at
        // once.
        int result = -1;
        qint64 elapsed = -1;
        QTimer::singleShot(0, [&] {
            s_onSend = [](const Kept&) {
                if (s_kept.size() == 1)
                    QTimer::singleShot(0, &QCoreApplication::quit);
            };
            QElapsedTimer timer;
            timer.start();
            result = send({{"a", {1}}, {"b", {1}}, {"c", {1}}});
            elapsed = timer.elapsed();
        });
        QCoreApplication::exec();
        QCOMPARE(result, 1);
        QVERIFY2(elapsed < 1000, "a wait that cannot wait was repeated");
        QCOMPARE(s_kept.size(), size_t(3));
        confirm(s_kept.front());
        QVERIFY(!isMarked());
    }
};

QTEST_GUILESS_MAIN(SenderWaitingTest)
#include "tst_senderwaiting.moc"
