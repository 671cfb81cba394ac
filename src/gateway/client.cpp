#include "client.h"

#include "cabinetparameters.h"
#include "clientconnection_p.h"

#include <future>

namespace Gateway {

namespace {

using Common::Fault;
using Common::Result;
using namespace std::chrono_literals;

constexpr auto askTime = 10s;
constexpr auto silentTime = 60s;

/// Hands the first answer to a thread that waits for it.
class Waiting : public Action::AnswerSink
{
public:
    void deliver(Action::Answer answer) override
    {
        if (!m_isAnswered.exchange(true))
            m_answer.set_value(std::move(answer.content));
    }
    std::future<std::variant<Parameters, QString>> future() { return m_answer.get_future(); }

private:
    std::promise<std::variant<Parameters, QString>> m_answer;
    std::atomic<bool> m_isAnswered{false};
};

} // namespace

Client::Client(const Address& address, Tap tap)
    : m_name(QStringLiteral("gateway %1:%2").arg(address.host, QString::number(address.port))),
      m_connection(new Connection(address, m_name, std::move(tap)))
{
    m_connection->moveToThread(&m_thread);
    QObject::connect(&m_thread, &QThread::finished, m_connection, &QObject::deleteLater);
    m_thread.start();
}

Client::~Client()
{
    QMetaObject::invokeMethod(m_connection, [connection = m_connection] {
        connection->close();
        QThread::currentThread()->quit();
    });
    m_thread.wait();
}

Result<std::shared_ptr<Client>> Client::connect(const Address& address, Tap tap)
{
    std::shared_ptr<Client> client(new Client(address, std::move(tap)));
    const auto hello = client->m_connection->waitForHello();
    if (!hello)
        return hello.fault();
    client->m_hello = *hello;
    return client;
}

void Client::send(const Action::Request& request, const Action::Responder& responder)
{
    const quint64 id = ++m_lastId;
    auto frame = frameOf(id, request);
    if (!frame)
        responder.fail(QStringLiteral("%1: %2").arg(m_name, frame.fault().found));
    else if (!m_connection->submit(id, std::move(*frame), responder, request.timeout))
        responder.fail(QStringLiteral("%1: too many requests wait for it").arg(m_name));
}

/// Asks and waits.
std::variant<Parameters, QString> Client::ask(Call call) const
{
    call.id = ++m_lastId;
    call.timeout = askTime;
    const auto waiting = std::make_shared<Waiting>();
    auto answer = waiting->future();
    auto frame = frameOf(call);
    if (!frame)
        return frame.fault().found;
    if (!m_connection->submit(call.id, std::move(*frame), Action::Responder(waiting, call.id), askTime))
        return QStringLiteral("%1: too many requests wait for it").arg(m_name);
    if (answer.wait_for(askTime) == std::future_status::ready)
        return answer.get();
    return QStringLiteral("%1: no answer within %2 s").arg(m_name).arg(askTime.count());
}

Result<QByteArray> Client::wall() const
{
    Call call;
    call.method = Call::Method::List;
    const auto answer = ask(call);
    if (const auto* text = std::get_if<QString>(&answer))
        return Fault{Fault::Kind::Unavailable, {}, {}, *text};
    const auto* document = std::get<Parameters>(answer).arguments().find<std::string>("wall");
    if (!document)
        return Fault{Fault::Kind::Protocol, m_name, QStringLiteral("a wall document"), QStringLiteral("none")};
    return QByteArray::fromStdString(*document);
}

bool Client::isSilent(const std::string& device) const
{
    const std::lock_guard lock(m_mutex);
    const auto found = m_silent.find(device);
    return found != m_silent.end() && std::chrono::steady_clock::now() < found->second;
}

std::optional<Action::CabinetState> Client::cabinet(const std::string& deviceId, unsigned long long cid) const
{
    Call call;
    call.method = Call::Method::Read;
    call.device = deviceId;
    call.parameters.insert("cids", std::vector<unsigned long long>{cid});
    if (isSilent(deviceId))
        return std::nullopt;
    const auto answer = ask(call);
    const auto* reply = std::get_if<Parameters>(&answer);
    const std::lock_guard lock(m_mutex);
    if (!reply) {
        m_silent[deviceId] = std::chrono::steady_clock::now() + silentTime;
        return std::nullopt;
    }
    auto state = onlyCabinet(*reply, m_lastRead);
    if (state)
        m_lastRead = *state;
    return state;
}

} // namespace Gateway
