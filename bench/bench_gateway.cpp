// A gray table through a device gateway on loopback, beside a raw blocking exchange of the same bytes; and many small
// requests at once, beside one after the other.

#include <gateway/client.h>
#include <gateway/message.h>
#include <gateway/server.h>

#include <arpa/inet.h>
#include <benchmark/benchmark.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

#include <QCoreApplication>

#include <condition_variable>
#include <thread>

namespace {

using Bytes = std::vector<unsigned char>;

constexpr int requestCount = 10'000;

/// Answers at once, as a device without latency.
class Answering : public Action::Transport
{
public:
    void send(const Action::Request& request, const Action::Responder& responder) override
    {
        Parameters reply;
        reply.insert("cids", *request.parameters.arguments().find<std::vector<unsigned long long>>("cids"));
        responder.reply(std::move(reply));
    }
};

/// Counts answers; one thread waits for them.
class Counting : public Action::AnswerSink
{
public:
    void deliver(Action::Answer answer) override
    {
        const std::lock_guard lock(m_mutex);
        m_failed = m_failed || std::holds_alternative<QString>(answer.content);
        ++m_count;
        m_changed.notify_one();
    }
    bool waitFor(int count)
    {
        std::unique_lock lock(m_mutex);
        m_changed.wait(lock, [&] { return m_count >= count; });
        m_count = 0;
        return !m_failed;
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    int m_count = 0;
    bool m_failed = false;
};

Parameters smallRequest()
{
    Parameters parameters;
    parameters.insert("cids", std::vector<unsigned long long>{1, 2, 3, 4});
    parameters.insert("mode", 8);
    return parameters;
}

Parameters grayTable()
{
    Parameters parameters = smallRequest();
    for (const char* key : {"rGrayCoeffs", "gGrayCoeffs", "bGrayCoeffs", "magnitude"})
        parameters.insert(key, Bytes(65536, 0xa5));
    return parameters;
}

/// A gateway and its client in this process.
class Exchange
{
public:
    Exchange()
    {
        Action::Devices devices;
        devices.transport = std::make_shared<Answering>();
        devices.wall = [] { return QByteArray(); };
        auto server = Gateway::Server::start(devices, {});
        if (!server)
            qFatal("the benchmark's gateway cannot listen");
        m_server = std::move(*server);
        auto client = Gateway::Client::connect({QStringLiteral("127.0.0.1"), m_server->port()});
        if (!client)
            qFatal("the benchmark's gateway does not answer");
        m_client = *client;
    }

    void send(const Parameters& parameters)
    {
        const std::string action = "Device_CorrectionGrayCoeff";
        const std::string device = "left";
        m_client->send({Action::Request::Method::Put,
                        action,
                        device,
                        parameters,
                        {},
                        true,
                        PackagePriority::Normal,
                        std::chrono::seconds(30)},
                       Action::Responder(m_answers, 1));
    }
    bool waitFor(int count) { return m_answers->waitFor(count); }

private:
    std::unique_ptr<Gateway::Server> m_server;
    std::shared_ptr<Gateway::Client> m_client;
    std::shared_ptr<Counting> m_answers = std::make_shared<Counting>();
};

void gatewayTable(benchmark::State& state)
{
    Exchange exchange;
    const Parameters table = grayTable();
    for (auto _ : state) {
        exchange.send(table);
        if (!exchange.waitFor(1))
            state.SkipWithError("refused");
    }
}

void oneByOne(benchmark::State& state)
{
    Exchange exchange;
    const Parameters request = smallRequest();
    for (auto _ : state) {
        for (int i = 0; i < requestCount; ++i) {
            exchange.send(request);
            if (!exchange.waitFor(1))
                state.SkipWithError("refused");
        }
    }
}

void atOnce(benchmark::State& state)
{
    Exchange exchange;
    const Parameters request = smallRequest();
    for (auto _ : state) {
        for (int i = 0; i < requestCount; ++i)
            exchange.send(request);
        if (!exchange.waitFor(requestCount))
            state.SkipWithError("refused");
    }
}

bool readAll(int from, char* data, std::size_t size)
{
    while (size > 0) {
        const ssize_t got = read(from, data, size);
        if (got <= 0)
            return false;
        data += got;
        size -= static_cast<std::size_t>(got);
    }
    return true;
}

void writeAll(int to, const char* data, std::size_t size)
{
    while (size > 0) {
        const ssize_t put = write(to, data, size);
        if (put <= 0)
            return;
        data += put;
        size -= static_cast<std::size_t>(put);
    }
}

/// Two connected sockets on loopback.
std::pair<int, int> connectedPair()
{
    const int listener = socket(AF_INET, SOCK_STREAM, 0);
    const int client = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof(address);
    auto* const where = reinterpret_cast<sockaddr*>(&address);
    if (bind(listener, where, size) != 0 || listen(listener, 1) != 0 || getsockname(listener, where, &size) != 0 ||
        connect(client, where, size) != 0)
        qFatal("the benchmark's sockets cannot be connected");
    const int server = accept(listener, nullptr, nullptr);
    close(listener);
    const int on = 1;
    for (const int end : {client, server})
        setsockopt(end, IPPROTO_TCP, TCP_NODELAY, &on, sizeof(on));
    return {client, server};
}

/// The same bytes there, and those of the reply back.
void rawTable(benchmark::State& state)
{
    Gateway::Call call;
    call.parameters = grayTable();
    const QByteArray frame = *frameOf(call);
    const QByteArray answer = *frameOf(Gateway::Return{1, smallRequest()});
    const auto [client, server] = connectedPair();
    std::thread peer([&frame, &answer, end = server] {
        std::vector<char> received(static_cast<std::size_t>(frame.size()));
        while (readAll(end, received.data(), received.size()))
            writeAll(end, answer.constData(), static_cast<std::size_t>(answer.size()));
    });
    std::vector<char> reply(static_cast<std::size_t>(answer.size()));
    for (auto _ : state) {
        writeAll(client, frame.constData(), static_cast<std::size_t>(frame.size()));
        if (!readAll(client, reply.data(), reply.size()))
            state.SkipWithError("no reply");
    }
    close(client);
    peer.join();
    close(server);
}

BENCHMARK(rawTable)
    ->Name("a gray table through a gateway/baseline: raw POSIX")
    ->Unit(benchmark::kMicrosecond)
    ->UseRealTime();
BENCHMARK(gatewayTable)
    ->Name("a gray table through a gateway/ours: Gateway::Client")
    ->Unit(benchmark::kMicrosecond)
    ->UseRealTime();
BENCHMARK(oneByOne)
    ->Name("10,000 requests through a gateway/baseline: one by one")
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK(atOnce)
    ->Name("10,000 requests through a gateway/ours: at once")
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
