// One exchange with a message hub on loopback, beside a raw blocking exchange of the same bytes with the same peer; the
// decimal text of a gray table, beside appending number by number; and four hubs that take their time at once, beside
// one of them.

#include <calibration/serving.h>
#include <qualityutility/tool/sender3th/clientsession.h>
#include <qualityutility/tool/sender3th/decimaltext_p.h>
#include <simulator/simulatedhub.h>

#include <arpa/inet.h>
#include <benchmark/benchmark.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QLoggingCategory>

#include <thread>

namespace {

/// A peer that sends every frame back, in plain POSIX; one connection at a time.
class Echo
{
public:
    Echo()
    {
        m_listener = socket(AF_INET, SOCK_STREAM, 0);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof(address);
        if (bind(m_listener, reinterpret_cast<sockaddr*>(&address), size) != 0 || listen(m_listener, 1) != 0)
            qFatal("the benchmark's peer cannot listen");
        getsockname(m_listener, reinterpret_cast<sockaddr*>(&address), &size);
        m_port = ntohs(address.sin_port);
        m_thread = std::thread([this] { run(); });
    }
    ~Echo()
    {
        shutdown(m_listener, SHUT_RDWR);
        m_thread.join();
        close(m_listener);
    }
    Echo(const Echo&) = delete;
    Echo& operator=(const Echo&) = delete;

    quint16 port() const { return m_port; }

    static bool readAll(int from, char* data, size_t size)
    {
        while (size > 0) {
            const ssize_t got = read(from, data, size);
            if (got <= 0)
                return false;
            data += got;
            size -= static_cast<size_t>(got);
        }
        return true;
    }

    static void writeAll(int to, const char* data, size_t size)
    {
        while (size > 0) {
            const ssize_t put = write(to, data, size);
            if (put <= 0)
                return;
            data += put;
            size -= static_cast<size_t>(put);
        }
    }

    static void lowDelay(int of)
    {
        const int on = 1;
        setsockopt(of, IPPROTO_TCP, TCP_NODELAY, &on, sizeof(on));
    }

private:
    void run() const
    {
        for (;;) {
            const int client = accept(m_listener, nullptr, nullptr);
            if (client < 0)
                return;
            lowDelay(client);
            serve(client);
            close(client);
        }
    }

    static void serve(int client)
    {
        quint32 length = 0;
        std::vector<char> frame;
        while (readAll(client, reinterpret_cast<char*>(&length), sizeof(length))) {
            frame.resize(sizeof(length) + length);
            std::copy_n(reinterpret_cast<const char*>(&length), sizeof(length), frame.data());
            if (!readAll(client, frame.data() + sizeof(length), length))
                return;
            writeAll(client, frame.data(), frame.size());
        }
    }

    int m_listener;
    quint16 m_port;
    std::thread m_thread;
};

void rawExchange(benchmark::State& state)
{
    const Echo echo;
    const int client = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(echo.port());
    if (connect(client, reinterpret_cast<sockaddr*>(&address), sizeof(address)) != 0)
        qFatal("the benchmark's peer does not answer");
    Echo::lowDelay(client);
    const auto length = static_cast<quint32>(state.range(0));
    std::vector<char> frame(sizeof(length) + length, 'x');
    std::copy_n(reinterpret_cast<const char*>(&length), sizeof(length), frame.data());
    std::vector<char> reply(frame.size());
    for (auto _ : state) {
        Echo::writeAll(client, frame.data(), frame.size());
        if (!Echo::readAll(client, reply.data(), reply.size()))
            state.SkipWithError("no reply");
    }
    close(client);
}

void discard(QtMsgType, const QMessageLogContext&, const QString&) {}

void sessionExchange(benchmark::State& state, bool logs)
{
    const Echo echo;
    QLoggingCategory::setFilterRules(logs ? QString() : QStringLiteral("default.info=false"));
    const auto handler = qInstallMessageHandler(discard);
    {
        CabinetSenderSpace::ClientSession session;
        session.connectToServer(QStringLiteral("127.0.0.1"), echo.port());
        const QByteArray request(static_cast<int>(state.range(0)), 'x');
        QByteArray reply;
        for (auto _ : state) {
            if (!session.sendToServerSync(request, reply, false) || reply.size() != request.size())
                state.SkipWithError("no reply");
        }
    }
    qInstallMessageHandler(handler);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

const QList<unsigned char>& numbers()
{
    static const QList<unsigned char> list = [] {
        QList<unsigned char> all;
        for (int i = 0; i < 65536; ++i)
            all.append(static_cast<unsigned char>(i));
        return all;
    }();
    return list;
}

void appendNumbers(benchmark::State& state)
{
    for (auto _ : state) {
        QString text;
        for (const unsigned char number : numbers()) {
            if (!text.isEmpty())
                text += QLatin1Char(',');
            text += QString::number(number);
        }
        benchmark::DoNotOptimize(text);
    }
}

void decimalText(benchmark::State& state)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(listToString(numbers()));
}

/// So many hubs that take 150 ms for each of two commands, as a calibration serves them.
void serveHubs(benchmark::State& state, int count)
{
    const auto handler = qInstallMessageHandler(discard);
    std::vector<std::unique_ptr<Simulator::SimulatedHub>> hubs;
    std::vector<Calibration::HubTarget> targets;
    for (int i = 0; i < count; ++i) {
        QString error;
        hubs.push_back(Simulator::SimulatedHub::start(0, error));
        if (!hubs.back())
            qFatal("%s", qPrintable(error));
        hubs.back()->setScript([](const QByteArray&, const QByteArray& frame) {
            return Simulator::HubAnswer{{frame}, false, 150};
        });
        const Calibration::HubAddress address{QStringLiteral("127.0.0.1"), hubs.back()->port()};
        targets.push_back({address.name(), address});
    }
    const auto destination = Calibration::hubDestination(targets, {});
    const auto devices = destination->devices();
    Calibration::Observer nobody;
    for (auto _ : state) {
        const auto take = [&state](std::size_t, const Calibration::DeviceRecord& record) {
            if (!record.isDone())
                state.SkipWithError("a hub was not served");
            return Common::Result<void>();
        };
        if (!Calibration::serveDevices(*destination, devices, Calibration::defaultAtOnce, nobody, take))
            state.SkipWithError("not all hubs were served");
    }
    qInstallMessageHandler(handler);
}

BENCHMARK_CAPTURE(serveHubs, one, 1)
    ->Name("hubs of 300 ms/baseline: one")
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK_CAPTURE(serveHubs, four, 4)
    ->Name("hubs of 300 ms/ours: four at once")
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK(rawExchange)
    ->Name("exchange/baseline: raw POSIX/bytes")
    ->Arg(64)
    ->Arg(4096)
    ->Arg(262144)
    ->Unit(benchmark::kMicrosecond)
    ->UseRealTime();
BENCHMARK_CAPTURE(sessionExchange, quiet, false)
    ->Name("exchange/ours: session, info level off/bytes")
    ->Arg(64)
    ->Arg(4096)
    ->Arg(262144)
    ->Unit(benchmark::kMicrosecond)
    ->UseRealTime();
BENCHMARK_CAPTURE(sessionExchange, logging, true)
    ->Name("exchange/ours: session, lines discarded/bytes")
    ->Arg(64)
    ->Arg(4096)
    ->Arg(262144)
    ->Unit(benchmark::kMicrosecond)
    ->UseRealTime();
BENCHMARK(appendNumbers)->Name("decimal text of 65,536/baseline: += number by number")->Unit(benchmark::kMicrosecond);
BENCHMARK(decimalText)->Name("decimal text of 65,536/ours: listToString")->Unit(benchmark::kMicrosecond);

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
