#include "clientconnection_p.h"

#include <QCoreApplication>
#include <QEvent>

namespace Gateway {

namespace {

using Common::Fault;
using namespace std::chrono_literals;

constexpr auto helloTime = 5s;
constexpr auto sweepTime = 1s;
constexpr qint64 maxQueuedBytes = qint64{256} * 1024 * 1024;
constexpr std::size_t maxPending = 1'000'000;
constexpr qint64 writtenAhead = qint64{4} * 1024 * 1024; ///< handed to the socket before it has sent it

const QEvent::Type wakeType = static_cast<QEvent::Type>(QEvent::registerEventType());

} // namespace

Client::Connection::Connection(const Address& address, const QString& name, Tap tap)
    : m_address(address), m_name(name), m_tap(std::move(tap)), m_socket(new QTcpSocket(this)),
      m_giveUp(new QTimer(this)), m_sweep(new QTimer(this))
{
    m_giveUp->setSingleShot(true);
    m_giveUp->setInterval(helloTime);
    m_sweep->setInterval(sweepTime);
    connect(m_giveUp, &QTimer::timeout, this,
            [this] { lose(Fault::Kind::Unavailable, QStringLiteral("no hello within %1 s").arg(helloTime.count())); });
    connect(m_sweep, &QTimer::timeout, this, [this] { dropOverdue(); });
    connect(m_socket, &QTcpSocket::connected, this, [this] { greet(); });
    connect(m_socket, &QTcpSocket::readyRead, this, [this] { receive(); });
    connect(m_socket, &QTcpSocket::bytesWritten, this, [this] { flush(); });
    connect(m_socket, &QTcpSocket::errorOccurred, this,
            [this] { lose(Fault::Kind::Unavailable, m_socket->errorString()); });
}

bool Client::Connection::submit(quint64 id, QByteArray frame, const Action::Responder& responder,
                                std::chrono::milliseconds timeout)
{
    {
        const std::lock_guard lock(m_mutex);
        const bool isFull = m_queuedBytes > 0 && m_queuedBytes + frame.size() > maxQueuedBytes;
        if (isFull || m_pending.size() >= maxPending)
            return false;
        m_queuedBytes += frame.size();
        m_queue.push_back(std::move(frame));
        m_pending.emplace(id, Pending{responder, Clock::now() + timeout});
    }
    wake();
    return true;
}

Common::Result<Hello> Client::Connection::waitForHello()
{
    wake();
    std::unique_lock lock(m_mutex);
    m_changed.wait(lock, [this] { return m_hello.has_value(); }); // the thread gives up in time
    return *m_hello;
}

void Client::Connection::wake()
{
    {
        const std::lock_guard lock(m_mutex);
        if (std::exchange(m_isWoken, true))
            return;
    }
    QCoreApplication::postEvent(this, new QEvent(wakeType));
}

bool Client::Connection::event(QEvent* event)
{
    if (event->type() != wakeType)
        return QObject::event(event);
    {
        const std::lock_guard lock(m_mutex);
        m_isWoken = false;
    }
    proceed();
    return true;
}

void Client::Connection::proceed()
{
    if (m_state == State::Greeted) {
        flush();
    } else if (m_state == State::Lost) {
        m_state = State::Connecting;
        m_received = {};
        m_giveUp->start();
        m_sweep->start();
        m_socket->connectToHost(m_address.host, m_address.port);
    }
}

void Client::Connection::greet()
{
    m_socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
    m_socket->setSocketOption(QAbstractSocket::KeepAliveOption, 1);
    write(frameOf(Hello{}));
}

void Client::Connection::write(const QByteArray& frame)
{
    m_socket->write(frame);
    if (m_tap)
        m_tap(frame.mid(headerLength), false);
}

void Client::Connection::flush()
{
    while (m_state == State::Greeted && m_socket->bytesToWrite() < writtenAhead) {
        std::unique_lock lock(m_mutex);
        if (m_queue.empty())
            return;
        const QByteArray frame = std::move(m_queue.front());
        m_queue.pop_front();
        m_queuedBytes -= frame.size();
        lock.unlock();
        write(frame);
    }
}

void Client::Connection::receive()
{
    while (m_state != State::Lost && m_socket->bytesAvailable() > 0) {
        m_received.append(m_socket->readAll());
        while (const auto payload = m_received.next()) {
            if (m_tap)
                m_tap(*payload, true);
            auto message = parseMessage(*payload);
            if (!message)
                return lose(Fault::Kind::Protocol, message.fault().message());
            take(std::move(*message));
            if (m_state == State::Lost)
                return;
        }
        if (m_received.isTooLong())
            return lose(Fault::Kind::Protocol, QStringLiteral("it announces a frame that is too long"));
    }
}

void Client::Connection::take(Message message)
{
    if (const auto* hello = std::get_if<Hello>(&message))
        takeHello(*hello);
    else if (auto* answer = std::get_if<Return>(&message))
        end(std::move(*answer));
    else
        lose(Fault::Kind::Protocol, QStringLiteral("it asks instead of answering"));
}

void Client::Connection::takeHello(const Hello& hello)
{
    if (hello.protocol != protocolVersion)
        return lose(Fault::Kind::Protocol, QStringLiteral("it speaks version %1 of the protocol, we speak %2")
                                               .arg(hello.protocol)
                                               .arg(protocolVersion));
    m_giveUp->stop();
    m_state = State::Greeted;
    {
        const std::lock_guard lock(m_mutex);
        m_hello = hello;
    }
    m_changed.notify_all();
    flush();
}

void Client::Connection::end(Return answer)
{
    std::unique_lock lock(m_mutex);
    const auto found = m_pending.find(answer.id);
    if (found == m_pending.end())
        return; // twice, or after its time
    const Action::Responder responder = found->second.responder;
    m_pending.erase(found);
    lock.unlock();
    if (auto* reply = std::get_if<Parameters>(&answer.content))
        responder.reply(std::move(*reply));
    else
        responder.fail(std::get<QString>(answer.content));
}

void Client::Connection::lose(Fault::Kind kind, const QString& reason)
{
    if (m_state == State::Lost)
        return;
    m_state = State::Lost;
    m_giveUp->stop();
    m_sweep->stop();
    m_socket->abort();
    std::unordered_map<quint64, Pending> ended;
    {
        const std::lock_guard lock(m_mutex);
        ended.swap(m_pending);
        m_queue.clear();
        m_queuedBytes = 0;
        m_hello = Fault{kind, m_name, {}, reason};
    }
    m_changed.notify_all();
    for (const auto& [id, pending] : ended)
        pending.responder.fail(QStringLiteral("%1: %2").arg(m_name, reason));
}

/// The asker has ended these itself.
void Client::Connection::dropOverdue()
{
    const std::lock_guard lock(m_mutex);
    for (auto it = m_pending.begin(); it != m_pending.end();)
        it = it->second.deadline < Clock::now() ? m_pending.erase(it) : std::next(it);
}

} // namespace Gateway
