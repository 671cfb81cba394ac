#include "simulatedhub.h"

#include <QTcpServer>
#include <QTcpSocket>
#include <QtEndian>

namespace Simulator {

namespace {

constexpr int headerLength = 4;
constexpr quint32 maxPayload = 64 * 1024 * 1024;

/// What crosses the mutex shares nothing: Qt counts references where a thread sanitizer does not see it.
QByteArray deepCopy(const QByteArray& bytes)
{
    return {bytes.constData(), bytes.size()};
}

} // namespace

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
    while (QTcpSocket* socket = m_server->nextPendingConnection()) {
        socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
        const auto buffer = std::make_shared<QByteArray>();
        QObject::connect(socket, &QTcpSocket::readyRead, socket, [this, socket, buffer] { readFrom(socket, *buffer); });
        QObject::connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
    }
}

void SimulatedHub::readFrom(QTcpSocket* socket, QByteArray& buffer)
{
    buffer += socket->readAll();
    while (buffer.size() >= headerLength) {
        const auto length = qFromLittleEndian<quint32>(buffer.constData());
        if (length > maxPayload) { // not a client of ours
            socket->abort();
            return;
        }
        if (static_cast<quint32>(buffer.size() - headerLength) < length)
            return;
        const QByteArray request = buffer.mid(headerLength, static_cast<int>(length));
        buffer.remove(0, headerLength + static_cast<int>(length));
        answer(socket, request);
    }
}

void SimulatedHub::answer(QTcpSocket* socket, const QByteArray& request)
{
    HubAnswer answer;
    {
        const std::lock_guard lock(m_mutex);
        m_requests.append(deepCopy(request));
        const QByteArray replyFrame = hubFrame(m_commands.execute(request));
        answer = m_script ? m_script(request, replyFrame) : HubAnswer{{replyFrame}};
    }
    for (const QByteArray& chunk : qAsConst(answer.chunks)) {
        socket->write(chunk);
        while (socket->bytesToWrite() > 0 && socket->waitForBytesWritten()) {
        }
    }
    if (answer.closes)
        socket->disconnectFromHost();
}

void SimulatedHub::setScript(Script script)
{
    const std::lock_guard lock(m_mutex);
    m_script = std::move(script);
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
