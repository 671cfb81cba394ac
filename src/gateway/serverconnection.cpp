#include "serverconnection_p.h"

namespace Gateway {

namespace {

constexpr int readAtOnce = 256 * 1024;
constexpr int turns = 64;                               ///< of one client, before the others
constexpr int maxCalls = 1024;                          ///< of one client in flight
constexpr qint64 maxBytes = qint64{16} * 1024 * 1024;   ///< likewise; one call may be larger
constexpr qint64 maxUntaken = qint64{1} * 1024 * 1024;  ///< answers that it has not taken
constexpr qint64 worthAsking = qint64{1} * 1024 * 1024; ///< held before all are counted

} // namespace

ServerConnection::ServerConnection(Server::Core& core, QTcpSocket* socket)
    : QObject(&core), m_core(core), m_socket(socket)
{
    socket->setParent(this);
    socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
    socket->setSocketOption(QAbstractSocket::KeepAliveOption, 1);
    socket->setReadBufferSize(readAtOnce);
    connect(socket, &QTcpSocket::readyRead, this, &ServerConnection::serve);
    connect(socket, &QTcpSocket::bytesWritten, this, [this] {
        m_lastMoved = Clock::now();
        serve();
    });
    connect(socket, &QTcpSocket::disconnected, this, &ServerConnection::close);
}

ServerConnection::~ServerConnection()
{
    m_socket->disconnect(this);
    if (!m_isClosing) // otherwise it is forgotten already, and the core perhaps gone
        m_core.forget(this);
}

void ServerConnection::close()
{
    if (std::exchange(m_isClosing, true))
        return;
    m_core.forget(this);
    m_socket->abort();
    deleteLater();
}

bool ServerConnection::isStuck() const
{
    const bool isDue = !m_isGreeted || m_received.size() > 0 || m_socket->bytesToWrite() > 0;
    return isDue && m_callsInFlight == 0 && Clock::now() - m_lastMoved > m_core.listening().patience;
}

bool ServerConnection::mayAsk() const
{
    return !m_isClosing && m_socket->bytesToWrite() < maxUntaken && m_callsInFlight < maxCalls &&
           m_bytesInFlight < maxBytes;
}

void ServerConnection::serve()
{
    if (m_isServing) // an answer inside the call, or written at once
        return;
    m_isServing = true;
    int turn = 0;
    while (turn < turns && mayAsk() && (takeMessage() || readMore()))
        ++turn;
    m_isServing = false;
    if (turn == turns)
        QMetaObject::invokeMethod(this, &ServerConnection::serve, Qt::QueuedConnection);
    if (held() > worthAsking)
        m_core.checkMemory();
}

bool ServerConnection::takeMessage()
{
    const auto payload = m_received.next();
    if (!payload) {
        if (m_received.isTooLong())
            close();
        return false;
    }
    auto message = parseMessage(*payload);
    if (message && std::holds_alternative<Hello>(*message)) {
        m_isGreeted = true;
        write(frameOf(m_core.hello())); // the client judges the versions
    } else if (message && m_isGreeted && std::holds_alternative<Call>(*message)) {
        m_hasAsked = true;
        ++m_callsInFlight;
        m_bytesInFlight += payload->size();
        m_core.serve(*this, std::move(std::get<Call>(*message)), payload->size());
    } else {
        close(); // no client of ours
    }
    return true;
}

bool ServerConnection::readMore()
{
    const QByteArray part = m_isClosing ? QByteArray() : m_socket->read(readAtOnce);
    if (part.isEmpty())
        return false;
    m_lastMoved = Clock::now();
    m_received.append(part);
    return true;
}

void ServerConnection::write(const QByteArray& frame)
{
    if (!m_isClosing)
        m_socket->write(frame);
}

void ServerConnection::end(quint64 id, std::variant<Parameters, QString> content, int bytes)
{
    --m_callsInFlight;
    m_bytesInFlight -= bytes;
    m_lastMoved = Clock::now();
    auto frame = frameOf(Return{id, std::move(content)});
    if (!frame)
        frame = frameOf(Return{id, frame.fault().found});
    write(*frame);
    serve();
}

} // namespace Gateway
