#include "support/calibrationsetup.h"
#include <calibration/journal.h>
#include <calibration/serving.h>

#include <sys/resource.h>

#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <condition_variable>
#include <set>
#include <thread>

using namespace Calibration;

namespace {

/// Devices that answer once so many of them are served at the same time.
class MeetingDevices : public Destination
{
public:
    MeetingDevices(int devices, int meeting) : m_meeting(meeting)
    {
        for (int i = 0; i < devices; ++i)
            m_devices.push_back(std::to_string(i));
    }

    QString name() const override { return "devices that meet"; }
    std::vector<std::string> devices() const override { return m_devices; }
    int stepCount() const override { return 1; }

    DeviceRecord serve(const std::string& device, Observer& observer) override
    {
        std::unique_lock lock(m_mutex);
        m_threads.insert(std::this_thread::get_id());
        m_most = std::max(m_most, ++m_served);
        m_changed.notify_all();
        if (!m_changed.wait_for(lock, std::chrono::seconds(60), [this] { return m_most >= m_meeting; }))
            qFatal("%d at once, expected %d", m_most, m_meeting);
        lock.unlock();
        const DeviceRecord record = notServed(device);
        observer.sent(record.outcomes.front());
        lock.lock();
        --m_served;
        if (device == m_throwing)
            throw std::runtime_error("thrown");
        return record;
    }

    DeviceRecord notServed(const std::string& device) const override
    {
        DeviceRecord record;
        record.device = QString::fromStdString(device);
        record.outcomes.emplace_back();
        return record;
    }

    std::string m_throwing;
    std::set<std::thread::id> m_threads;
    int m_most = 0;

private:
    const int m_meeting;
    std::vector<std::string> m_devices;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    int m_served = 0;
};

/// Wants an end once it has heard something, if it is told so; lives on one thread.
class Ear : public Observer
{
public:
    void sent(const Outcome&) override
    {
        ++m_sent;
        m_isOnItsThread = m_isOnItsThread && std::this_thread::get_id() == m_thread;
        if (m_isQuitting)
            QCoreApplication::quit();
    }
    bool isStopWanted() override { return m_isStopping && m_sent > 0; }

    const std::thread::id m_thread = std::this_thread::get_id();
    int m_sent = 0;
    bool m_isOnItsThread = true;
    bool m_isStopping = false;
    bool m_isQuitting = false;
};

/// A wall of devices d0, d1, ... of two cabinets each.
TestWall::Document wallOf(int count, const std::function<QByteArray(int)>& simulation)
{
    QByteArray devices;
    for (int i = 0; i < count; ++i)
        devices += (i == 0 ? "" : ",") +
                   (R"({"id": "d)" + QByteArray::number(i) + R"(", "type": "G4", "simulation": )") + simulation(i) +
                   R"(, "cabinets": [{"cid": 1, "effectMode": 3}, {"cid": 2, "effectMode": 4}]})";
    return {"{\"devices\": [" + devices + "]}"};
}

/// Without the times, which differ.
QJsonObject timeless(DeviceRecord record)
{
    for (Outcome& outcome : record.outcomes)
        outcome.seconds = 0.0;
    return toJson(record);
}

/// A limit on the files that this process may open, while it lives.
class OpenFilesLimit
{
public:
    explicit OpenFilesLimit(rlim_t files)
    {
        getrlimit(RLIMIT_NOFILE, &m_before);
        const rlimit limit{files, m_before.rlim_max};
        setrlimit(RLIMIT_NOFILE, &limit);
    }
    ~OpenFilesLimit() { setrlimit(RLIMIT_NOFILE, &m_before); }
    OpenFilesLimit(const OpenFilesLimit&) = delete;
    OpenFilesLimit& operator=(const OpenFilesLimit&) = delete;

private:
    rlimit m_before{};
};

int rounds()
{
    return qMax(1, qEnvironmentVariableIntValue("QUALITYUTILITY_ROUNDS"));
}

} // namespace

class ServingTest : public QObject
{
    Q_OBJECT

private:
    QString out() const { return m_folder->filePath("out"); }

    Content m_content = exampleContent();
    std::unique_ptr<QTemporaryDir> m_folder;

private Q_SLOTS:
    void initTestCase()
    {
        m_content.binary.reset(); // whose time limit is long
    }

    void init() { m_folder = std::make_unique<QTemporaryDir>(); }
    void cleanup() { Action::setTimeoutUnit(std::chrono::seconds(1)); }

    void soManyAreServedAtOnce_data()
    {
        QTest::addColumn<int>("devices");
        QTest::addColumn<int>("atOnce");
        QTest::addColumn<int>("expected");
        QTest::addColumn<int>("files"); ///< that may be open
        QTest::newRow("none") << 0 << 4 << 0 << 1024;
        QTest::newRow("one by one") << 5 << 1 << 1 << 1024;
        QTest::newRow("some") << 20 << 3 << 3 << 1024;
        QTest::newRow("all") << 5 << defaultAtOnce << 5 << 1024;
        QTest::newRow("as many as may be") << maxAtOnce + 20 << maxAtOnce * 10 << maxAtOnce << 1024;
        QTest::newRow("as few files as may be open") << 200 << maxAtOnce << 16 << 64;
    }

    void soManyAreServedAtOnce()
    {
        QFETCH(int, devices);
        QFETCH(int, expected);
        MeetingDevices destination(devices, expected);
        Ear ear;
        std::vector<QString> names(static_cast<std::size_t>(devices));
        QFETCH(int, atOnce);
        QFETCH(int, files);
        const OpenFilesLimit limit(static_cast<rlim_t>(files));
        QVERIFY(good(serveDevices(destination, destination.devices(), atOnce, ear, [&](std::size_t i, DeviceRecord r) {
            names[i] = r.device;
            ear.m_isOnItsThread = ear.m_isOnItsThread && std::this_thread::get_id() == ear.m_thread;
            return Common::Result<void>();
        })));
        for (int i = 0; i < devices; ++i)
            QCOMPARE(names[static_cast<std::size_t>(i)], QString::number(i));
        QVERIFY(ear.m_isOnItsThread && ear.m_sent == devices);
        QVERIFY(destination.m_most == expected && destination.m_threads.size() <= static_cast<std::size_t>(expected));
        QCOMPARE(destination.m_threads.count(ear.m_thread), expected == 1 ? 1U : 0U);
    }

    void whatEndsARunFinishesWhatWasBegun_data()
    {
        QTest::addColumn<QString>("found");
        QTest::newRow("the observer") << "not all";
        QTest::newRow("the application") << "not all";
        QTest::newRow("a record that cannot be kept") << "InputOutput: 1: full";
        QTest::newRow("an exception") << "thrown";
    }

    void whatEndsARunFinishesWhatWasBegun()
    {
        const QByteArray row = QTest::currentDataTag();
        MeetingDevices destination(5, 2);
        Ear ear;
        ear.m_isStopping = row == "the observer";
        ear.m_isQuitting = row == "the application";
        destination.m_throwing = row == "an exception" ? "1" : "";
        std::set<std::size_t> taken;
        const auto take = [&](std::size_t device, const DeviceRecord& record) -> Common::Result<void> {
            taken.insert(device);
            if (row == "a record that cannot be kept")
                return Fault{Fault::Kind::InputOutput, device == 1 ? record.device : "1", {}, "full"};
            return {};
        };
        QString found;
        QTimer::singleShot(0, [&] { // in an event handler of an application, which can be told to quit
            try {
                const auto all = serveDevices(destination, destination.devices(), 2, ear, take);
                found = all ? QString(*all ? "all" : "not all") : faultText(all.fault());
            } catch (const std::runtime_error& thrown) {
                found = thrown.what();
            }
            QCoreApplication::quit();
        });
        QCoreApplication::exec();
        QTEST(found, "found");
        if (row != "an exception") {
            QVERIFY(taken == (std::set<std::size_t>{0, 1}));
            QCOMPARE(ear.m_sent, 2);
        }
    }

    void everyDevicesResultIsItsOwn()
    {
        static const std::array<QByteArray, 9> kinds{"none", "error",   "silence", "slow",        "double-answer",
                                                     "late", "no-cids", "partial", "other-thread"};
        const auto simulation = [](int i) {
            const QByteArray kind = kinds[static_cast<std::size_t>(i) % kinds.size()];
            return kind == "none"   ? QByteArray(R"({"latencyMs": 1})")
                   : kind == "slow" ? QByteArray(R"({"faults": [{"kind": "slow", "delayMs": 20}]})")
                                    : failingBy(kind);
        };
        Action::setTimeoutUnit(std::chrono::milliseconds(250)); // 2 s for a table to two cabinets
        for (int round = 0; round < rounds(); ++round) {
            QDir(out()).removeRecursively();
            const TestWall wall(wallOf(200, simulation));
            const RunResult result = good(calibrate(wall, m_content, out()));
            int done = 0;
            for (const DeviceRecord& record : result.records) {
                const QByteArray kind = kinds[record.device.mid(1).toUInt() % kinds.size()];
                const Outcome& first = record.outcomes.front();
                const QString what = QString("%1, %2: %3").arg(record.device, QString(kind), describe(first));
                const bool isLate = kind == "silence" || kind == "late";
                QVERIFY2(record.isDone() == !(isLate || kind == "error" || kind == "partial"), qPrintable(what));
                QVERIFY2((first.kind == Outcome::Kind::TimedOut) == isLate && first.device == record.device,
                         qPrintable(what));
                QVERIFY2(first.arrived == (kind == "partial"           ? 1
                                           : kind == "error" || isLate ? 0
                                                                       : 2) ||
                             isLate,
                         qPrintable(what));
                if (kind == "error")
                    QCOMPARE(first.error, QString("device \"%1\" reports an error (simulated)").arg(record.device));
                done += record.isDone() ? 1 : 0;
            }
            for (const auto& [device, cids] : wall.targets)
                wall.cabinets->setBehaviour(device, {});
            RunOptions resume;
            resume.resume = true;
            const RunResult resumed = good(calibrate(wall, m_content, out(), resume));
            QVERIFY(resumed.isDone() && resumed.resumed.size() == done && done > 100);
            QCOMPARE(good(Journal::read(out() + "/calibration.jsonl")).records().size(), 200);
        }
    }

    void recordsAreWhatTheyAreOneByOne()
    {
        const TestWall::Document document = wallOf(60, [](int) {
            QByteArray faults;
            for (const QByteArray kind : {"error", "partial", "no-cids", "double-answer", "other-thread"})
                faults += (faults.isEmpty() ? "" : ", ") + (R"({"kind": ")" + kind + R"(", "chance": 0.1})");
            return R"({"latencyMs": 0, "faults": [)" + faults + "]}";
        });
        std::array<QList<QJsonObject>, 2> found;
        for (const bool isAtOnce : {false, true}) {
            RunOptions options;
            options.atOnce = isAtOnce ? 16 : 1;
            const RunResult result =
                good(calibrate(TestWall(document), m_content, out() + QString::number(options.atOnce), options));
            for (const DeviceRecord& record : result.records)
                found[isAtOnce ? 1 : 0] << timeless(record);
            QVERIFY(!result.isDone());
        }
        QCOMPARE(found[1], found[0]);
    }
};

QTEST_GUILESS_MAIN(ServingTest)
#include "tst_serving.moc"
