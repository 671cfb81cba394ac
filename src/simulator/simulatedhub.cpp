#include "simulatedhub.h"

#include <QTcpServer>
#include <QTcpSocket>
#include <QTimer>
#include <QtEndian>

namespace Simulator {

namespace {

constexpr int headerLength = 4;
constexpr quint32 maxPayload = 64 * 1024 * 1024;
constexpr int readAtOnce = 64 * 1024; ///< of one client, before the others' turn

/// What crosses the mutex shares nothing: Qt counts references where a thread sanitizer does not see it.
QByteArray deepCopy(const QByteArray& bytes)
{
    return {bytes.constData(), bytes.size()};
}

} // namespace

/// One client: its requests are read, answered and taken from it one by one, as fast as it takes the answers. What it
/// sends meanwhile waits in its own socket, so that a client costs no more than one request and one answer.
class SimulatedHub::Connection : public QObject
{
public:
    Connection(SimulatedHub& hub, QTcpSocket* socket) : QObject(socket), m_hub(hub), m_socket(socket)
    {
        socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
        socket->setReadBufferSize(readAtOnce);
        connect(socket, &QTcpSocket::readyRead, this, &Connection::serve);
        connect(socket, &QTcpSocket::bytesWritten, this, &Connection::serve);
        connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
    }

private:
    void serve();
    bool sendAnswer();
    void pause();
    bool answerRequest();
    bool readMore();

    SimulatedHub& m_hub;
    QTcpSocket* m_socket;
    QByteArray m_received;
    int m_taken = 0;    ///< bytes of `m_received` that are done with
    HubAnswer m_answer; ///< what is still to be written of it
    bool m_isServing = false;
    bool m_isPausing = false;
    bool m_hasPaused = false; ///< for the next chunk
};

void SimulatedHub::Connection::serve()
{
    if (m_isServing || m_isPausing) // writing reports what is written
        return;
    m_isServing = true;
    while (sendAnswer() && (answerRequest() || readMore())) {
    }
    m_isServing = false;
}

/// True when all of it is on its way and the next request may come.
bool SimulatedHub::Connection::sendAnswer()
{
    while (m_socket->bytesToWrite() == 0 && !m_answer.chunks.isEmpty()) {
        if (m_answer.pauseMs > 0 && !std::exchange(m_hasPaused, !m_hasPaused)) {
            pause();
            return false;
        }
        m_socket->write(m_answer.chunks.takeFirst());
        m_socket->flush();
    }
    if (m_socket->bytesToWrite() > 0)
        return false;
    if (m_answer.closes)
        m_socket->disconnectFromHost();
    return m_socket->state() == QAbstractSocket::ConnectedState;
}

void SimulatedHub::Connection::pause()
{
    m_isPausing = true;
    QTimer::singleShot(m_answer.pauseMs, this, [this] {
        m_isPausing = false;
        serve();
    });
}

bool SimulatedHub::Connection::answerRequest()
{
    const int size = m_received.size() - m_taken - headerLength;
    if (size < 0)
        return false;
    const auto length = qFromLittleEndian<quint32>(m_received.constData() + m_taken);
    if (length > maxPayload) {
        m_socket->abort(); // not a client of ours
        return true;       // to where it is seen that it has gone
    }
    if (static_cast<quint32>(size) < length)
        return false;
    const QByteArray request = m_received.mid(m_taken + headerLength, static_cast<int>(length));
    m_taken += headerLength + request.size();
    m_answer = m_hub.answer(request);
    return true;
}

bool SimulatedHub::Connection::readMore()
{
    if (m_taken > 0)
        m_received = m_received.mid(m_taken); // a copy: what a large request took comes back
    m_taken = 0;
    const QByteArray part = m_socket->read(readAtOnce);
    m_received += part;
    return !part.isEmpty();
}

QByteArray hubFrame(const QByteArray& payload)
{
    QByteArray frame(headerLength, Qt::Uninitialized);
    qToLittleEndian(static_cast<quint32>(payload.size()), frame.data());
    return frame + payload;
}

std::unique_ptr<SimulatedHub> SimulatedHub::start(quint16 port, QString& error)
{
    std::unique_ptr<SimulatedHub> hub(new SimulatedHub);
    hub->m_server = new QTcpServer;
    if (!hub->m_server->listen(QHostAddress::LocalHost, port)) {
        error = QStringLiteral("port %1: %2").arg(port).arg(hub->m_server->errorString());
        delete hub->m_server;
        hub->m_server = nullptr;
        return nullptr;
    }
    hub->m_port = hub->m_server->serverPort();
    hub->m_server->moveToThread(&hub->m_thread);
    QObject::connect(hub->m_server, &QTcpServer::newConnection, hub->m_server, [self = hub.get()] { self->accept(); });
    QObject::connect(&hub->m_thread, &QThread::finished, hub->m_server, &QObject::deleteLater);
    hub->m_thread.start();
    return hub;
}

SimulatedHub::~SimulatedHub()
{
    m_thread.quit();
    m_thread.wait();
    setScript(nullptr); // under the mutex: what the script kept on the hub's thread goes in an order that tools see
}

void SimulatedHub::accept()
{
    while (QTcpSocket* socket = m_server->nextPendingConnection())
        new Connection(*this, socket); // the socket's
}

HubAnswer SimulatedHub::answer(const QByteArray& request)
{
    const std::lock_guard lock(m_mutex);
    ++m_requestCount;
    if (m_keepsRequests)
        m_requests.append(deepCopy(request));
    const QByteArray replyFrame = hubFrame(m_commands.execute(request));
    return m_script ? m_script(request, replyFrame) : HubAnswer{{replyFrame}};
}

void SimulatedHub::setScript(Script script)
{
    const std::lock_guard lock(m_mutex);
    m_script = std::move(script);
}

qint64 SimulatedHub::requestCount() const
{
    const std::lock_guard lock(m_mutex);
    return m_requestCount;
}

void SimulatedHub::keepRequests()
{
    const std::lock_guard lock(m_mutex);
    m_keepsRequests = true;
}

QList<QByteArray> SimulatedHub::requests() const
{
    const std::lock_guard lock(m_mutex);
    QList<QByteArray> copies;
    for (const QByteArray& request : m_requests)
        copies.append(deepCopy(request));
    return copies;
}

QJsonObject SimulatedHub::received(int command) const
{
    const std::lock_guard lock(m_mutex);
    return m_commands.received(command);
}

} // namespace Simulator
