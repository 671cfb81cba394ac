#include "support/logcapture.h"
#include "support/threadedinstances.h"
#include <qualityutility/resource/picqualityresource.h>

#include <QCoreApplication>
#include <QFile>
#include <QProcess>
#include <QSemaphore>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <cstring>

using Resource = PicQualityResource;

namespace {

// A host that is left while its tables load. The loading thread is held in its first line until all static objects are
// gone; where the process waits for the thread they stay, and it goes on after a moment.

constexpr char hostArgument[] = "--leave";

std::atomic<bool> s_isHost{false};
std::atomic<bool> s_areStaticsGone{false};
std::atomic<int> s_tablesRead{0};

template <typename Condition>
void waitFor(const Condition& condition, std::chrono::milliseconds limit)
{
    const auto end = std::chrono::steady_clock::now() + limit;
    while (!condition() && std::chrono::steady_clock::now() < end)
        std::this_thread::yield();
}

void holdFirstLine(QtMsgType, const QMessageLogContext&, const QString& text)
{
    if (text.startsWith(QLatin1String("read done")) && s_tablesRead++ == 0)
        waitFor([] { return s_areStaticsGone.load(); }, std::chrono::milliseconds(200));
}

[[gnu::destructor]] void afterAllStaticObjects()
{
    s_areStaticsGone = true;
    if (s_isHost)
        waitFor([] { return s_tablesRead == 15; }, std::chrono::seconds(5));
}

void loadOnAnotherThread(bool isAsked = true)
{
    if (isAsked)
        std::thread([] { Resource::getInstance()->initResourceFile(); }).detach();
    else
        Resource::getInstance()->start();
    waitFor([] { return s_tablesRead > 0; }, std::chrono::seconds(10));
}

struct LoadingInDestructor
{
    bool isWanted = false;
    ~LoadingInDestructor()
    {
        if (isWanted)
            loadOnAnotherThread();
    }
} s_loadingInDestructor;

int runHost(int argc, char** argv)
{
    s_isHost = true;
    qInstallMessageHandler(holdFirstLine);
    const QByteArray way = argv[2];
    if (way == "static destructor") {
        s_loadingInDestructor.isWanted = true;
        return 0;
    }
    if (way == "no application") {
        loadOnAnotherThread();
        return 0;
    }
    const QCoreApplication application(argc, argv);
    if (way == "main ends" || way == "started only") {
        loadOnAnotherThread(way == "main ends");
        return 0;
    }
    QTimer timer; // "handler exits"
    QObject::connect(&timer, &QTimer::timeout, [] {
        if (s_tablesRead > 0)
            std::exit(0);
    });
    timer.start(1);
    Resource::getInstance()->initResourceFile();
    return 1;
}

// For the tests in this process.

QSemaphore s_ticks;   // of a timer on the main thread
QSemaphore s_waiting; // log lines of other threads that wait for one
std::atomic<bool> s_isLoopAlive{true};

void waitForTick(QtMsgType, const QMessageLogContext&, const QString&)
{
    if (QThread::currentThread() == QCoreApplication::instance()->thread())
        return;
    s_waiting.release();
    s_isLoopAlive = s_ticks.tryAcquire(1, 5000) && s_isLoopAlive;
    s_waiting.acquire();
}

} // namespace

class ResourceLoadingTest : public QObject
{
    Q_OBJECT

    QScopedPointer<QTemporaryDir> m_folder;
    QScopedPointer<LogCapture> m_log; // keeps the many lines of loading off the terminal

private Q_SLOTS:
    void init()
    {
        m_folder.reset(new QTemporaryDir);
        m_log.reset(new LogCapture);
        qputenv("SUITE_COMPANY_DIR", m_folder->path().toLocal8Bit());
    }

    void cleanup()
    {
        Resource::releaseInstance();
        m_log.reset();
    }

    void tablesLoadOnceWhileTheEventLoopLives()
    {
        Resource& resource = *Resource::getInstance();
        // Each log line of the loading thread waits for a tick of this thread's timer: a loop that stood still would be
        // noticed.
        s_isLoopAlive = true;
        const auto earlier = qInstallMessageHandler(waitForTick);
        bool returnedAtOnce = true;
        QTimer timer;
        connect(&timer, &QTimer::timeout, [&] {
            if (s_waiting.available() == 0)
                return;
            // The loading thread is in the middle, and stays there until the tick.
            returnedAtOnce = returnedAtOnce && !resource.initResourceFile();
            s_ticks.release();
        });
        timer.start(1);
        const bool isLoaded = resource.initResourceFile();
        qInstallMessageHandler(earlier);
        QVERIFY(isLoaded && s_isLoopAlive && returnedAtOnce);
        for (int bits = 10; bits <= 16; ++bits) {
            for (const bool low : {false, true}) {
                const int index = 2 * (bits - 10) + (low ? 1 : 0);
                if (index >= Resource::GrayTableCount)
                    continue;
                const auto& table = resource.grayTable(static_cast<Resource::GrayTable>(index));
                QCOMPARE(table.size(), 1 << bits);
                QCOMPARE(int(table.first()), 0);
                QCOMPARE(int(table.last()), (1 << bits) - 1);
                QVERIFY(std::is_sorted(table.begin(), table.end()));
            }
        }
        QCOMPARE(int(resource.grayTable(Resource::Gray10).at(512)), 147); // 1023 * (512 / 1023) ^ 2.8
        QVERIFY(resource.workingGrayTable() == resource.grayTable(Resource::Gray10Low));
        QCOMPARE(resource.lutIndexTable().last(), 65535u);
        QCOMPARE(resource.whiteGrayTable().size(), 256);
        QVERIFY(resource.initResourceFile() && resource.waitForReadResource());
        QCOMPARE(resource.lutIndexTable().size(), 1024); // not loaded a second time
    }

    void tablesLoadOnceWhenThreadsMeet()
    {
        constexpr int connections = 5000; // looking through them holds the others up on their way into the loading
        for (int round = 0; round < 20; ++round) {
            Resource& resource = *Resource::getInstance();
            const QObject receiver;
            const QObject stranger;
            for (int i = 0; i < connections; ++i)
                connect(&resource, &QObject::objectNameChanged, &receiver, [] {});
            std::atomic<int> loaded{0};
            std::vector<std::thread> threads;
            for (int i = 0; i < 4; ++i)
                threads.emplace_back([&] { loaded += resource.waitForReadResource() ? 1 : 100; });
            while (loaded < 4)
                disconnect(&resource, &QObject::objectNameChanged, &stranger, nullptr);
            for (std::thread& thread : threads)
                thread.join();
            QVERIFY(resource.waitForReadResource());
            QCOMPARE(loaded.load(), 4);
            QCOMPARE(resource.lutIndexTable().size(), 1024);
            Resource::releaseInstance();
        }
    }

    void aHandlerMayReleaseTheInstance()
    {
        const auto earlier = qInstallMessageHandler(waitForTick);
        QTimer::singleShot(0, [] {
            s_ticks.release(15);
            Resource::releaseInstance();
        });
        const bool isLoaded = Resource::getInstance()->initResourceFile();
        qInstallMessageHandler(earlier);
        QVERIFY(!isLoaded);
        QVERIFY(Resource::getInstance()->initResourceFile());
        QCOMPARE(Resource::getInstance()->lutIndexTable().size(), 1024);
    }

    void leavingTheProcessWaitsForTheTables_data()
    {
        QTest::addColumn<QString>("way");
        for (const char* way : {"handler exits", "main ends", "started only", "no application", "static destructor"})
            QTest::newRow(way) << way;
    }

    void leavingTheProcessWaitsForTheTables()
    {
        QFETCH(QString, way);
        QProcess process;
        process.start(QCoreApplication::applicationFilePath(), {hostArgument, way});
        QVERIFY(process.waitForFinished(30000));
        QCOMPARE(process.exitStatus(), QProcess::NormalExit);
        QCOMPARE(process.exitCode(), 0);
    }

    void sixteenThreadsGetOneInstance()
    {
        const auto found = threadedInstances([] {
            Resource* resource = Resource::getInstance();
            // What is reached through it is complete.
            return resource->getFineGrayCacheFile().isEmpty() ? nullptr : resource;
        });
        QCOMPARE(found, std::set<Resource*>{Resource::getInstance()});
    }

    void startsAndReleasesKeepTheTablesInPlace()
    {
        QVERIFY(Resource::getInstance()->initResourceFile());
        std::atomic<bool> isOver{false};
        std::atomic<bool> isMissed{false};
        std::thread reader([&] {
            while (!isOver)
                isMissed = !QFile::exists(Resource::grayTablePath(Resource::Gray10)) || isMissed;
        });
        for (int i = 0; i < 60; ++i) {
            Resource::releaseInstance();
            QVERIFY(Resource::getInstance()->initResourceFile());
        }
        isOver = true;
        reader.join();
        QVERIFY(!isMissed);
        Resource::releaseInstance();
        Resource::releaseInstance();
    }
};

int main(int argc, char** argv)
{
    if (argc > 2 && std::strcmp(argv[1], hostArgument) == 0)
        return runHost(argc, argv);
    QCoreApplication application(argc, argv);
    ResourceLoadingTest test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_picqualityresourceloading.moc"
