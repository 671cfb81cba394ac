#include "clientsession.h"

#include "hubframe_p.h"
#include <qualityutility/support/infolog_p.h>

#include <QAbstractEventDispatcher>
#include <QElapsedTimer>
#include <QTcpSocket>
#include <QThread>

#include <limits>
#include <utility>

namespace CabinetSenderSpace {

namespace {

constexpr int secondMs = 1000;

} // namespace

ClientSession::ClientSession(QObject* parent)
    : QObject(parent), m_socket(new QTcpSocket), m_receiver(std::make_unique<HubFrame::Receiver>()),
      m_resultCache(std::make_unique<HubFrame::ReplyQueue>())
{
    connect(m_socket, &QTcpSocket::connected, this, &ClientSession::slot_Connected);
    connect(m_socket, &QTcpSocket::disconnected, this, &ClientSession::slot_DisConnect);
    connect(m_socket, &QTcpSocket::readyRead, this, &ClientSession::slot_ReadMessage);
    connect(m_socket, &QTcpSocket::errorOccurred, this, &ClientSession::slot_SocketError);
    connect(&m_reconnectTimer, &QTimer::timeout, this, &ClientSession::slot_ReConnect);
}

ClientSession::~ClientSession()
{
    // Closing would call back into what is being taken down.
    m_socket->disconnect(this);
    disServerConnect();
    m_socket->deleteLater();
}

bool ClientSession::connectToServer(QString host, unsigned short port)
{
    if (m_isConnected) {
        Support::logInfo("server ", host, "connected");
        return true;
    }
    m_host = std::move(host);
    m_port = port;
    m_socket->connectToHost(m_host, m_port, QIODevice::ReadWrite, QAbstractSocket::AnyIPProtocol);
    m_socket->waitForConnected(m_connectWait);
    return true;
}

bool ClientSession::disServerConnect()
{
    if (!isClosed())
        m_socket->close();
    // Closing waits for what is not sent yet or not connected yet; a new connection could not begin meanwhile.
    if (!isClosed())
        m_socket->abort();
    m_isConnected = false;
    return true;
}

bool ClientSession::isConnected() const
{
    return m_isConnected;
}

void ClientSession::setWaits(int connectWait, int readWait, int attempts)
{
    m_connectWait = connectWait;
    m_readWait = readWait;
    m_waitAttempts = attempts;
}

void ClientSession::setTimeLimit(int limit)
{
    m_timeLimit = limit;
    m_receiver->setLogging(limit <= 0);
}

void ClientSession::setTap(Tap tap)
{
    m_tap = std::move(tap);
}

ClientSession::Ending ClientSession::ending() const
{
    return m_ending;
}

bool ClientSession::sendToServerSync(const QByteArray& request, QByteArray& reply, bool waitWithoutLimit)
{
    if (m_isBusy.exchange(true)) {
        qCritical() << "[ClientSession] another request is waiting for its reply";
        return false;
    }
    const bool isAnswered = exchange(request, reply, waitWithoutLimit);
    m_isBusy = false;
    return isAnswered;
}

bool ClientSession::exchange(const QByteArray& request, QByteArray& reply, bool waitWithoutLimit)
{
    m_waitWithoutLimit = waitWithoutLimit;
    m_ending = Ending::Closed;
    if (!m_isConnected) {
        qCritical() << "[ClientSession] please connect msghub server";
        return false;
    }
    Support::logInfo("send data ", request);
    // One write: header and body sent apart would wait for each other's acknowledgement.
    const QByteArray frame = GetCompletePack(request);
    if (m_socket->write(frame) != HubFrame::headerLength + request.size()) {
        Support::logInfo("send data error");
        return false;
    }
    if (m_tap)
        m_tap(request, false);
    QByteArray received;
    const bool isAnswered = getResultFromCache(received);
    if (isAnswered)
        reply = received;
    else
        Support::logInfo("get failed");
    Support::logInfo("recv data ", received);
    initPackData();
    return isAnswered;
}

bool ClientSession::getResultFromCache(QByteArray& result)
{
    const int attempts = isTimed() || m_waitWithoutLimit ? std::numeric_limits<int>::max() : m_waitAttempts;
    QElapsedTimer clock;
    clock.start();
    qint64 logged = -1;
    for (int i = 0; i < attempts; ++i) {
        const qint64 number = isTimed() ? clock.elapsed() / secondMs : i;
        if (std::exchange(logged, number) != number)
            Support::logInfo("wait for ", number, "second...");
        if (m_resultCache->take(result)) {
            Support::logInfo("success");
            m_waitWithoutLimit = false;
            m_ending = Ending::Answered;
            return true;
        }
        const qint64 left = isTimed() ? m_timeLimit - clock.elapsed() : m_readWait;
        if (isTimed() && (left <= 0 || isClosed()))
            break;
        waitForArrival(static_cast<int>(isTimed() ? qMin<qint64>(left, secondMs) : left));
    }
    m_ending = isClosed() ? Ending::Closed : Ending::TimeOver;
    return false;
}

bool ClientSession::isClosed() const
{
    return m_socket->state() == QAbstractSocket::UnconnectedState;
}

void ClientSession::waitForArrival(int wait)
{
    // A socket that is closed returns at once: a bounded wait is then over soon, an unbounded one must not spin.
    if (!m_socket->waitForReadyRead(wait) && m_waitWithoutLimit && isClosed())
        QThread::msleep(static_cast<unsigned long>(wait));
}

QByteArray ClientSession::GetCompletePack(const QByteArray& payload)
{
    return HubFrame::pack(payload);
}

qint32 ClientSession::GetPackLength(const QByteArray& header)
{
    return HubFrame::payloadLength(header);
}

bool ClientSession::initPackData()
{
    m_receiver->reset();
    return true;
}

void ClientSession::slot_ReadMessage()
{
    m_receiver->receive(*m_socket, [this](const QByteArray& payload) {
        if (m_tap)
            m_tap(payload, true);
        m_resultCache->add(payload);
    });
}

void ClientSession::slot_SocketError(QAbstractSocket::SocketError socketErr)
{
    if (m_isConnected && isTimed() && socketErr == QAbstractSocket::SocketTimeoutError)
        return; // a look in vain, of which the wait knows
    qCritical() << "socket error, errcode " << socketErr;
}

void ClientSession::slot_Connected()
{
    m_reconnectTimer.stop();
    m_socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
    m_isConnected = true;
    Support::logInfo("connected");
}

void ClientSession::slot_DisConnect()
{
    // The connected flag stays: callers take it for "was connected and not given up".
    if (QAbstractEventDispatcher::instance()) // without one Qt warns that no timer can run
        m_reconnectTimer.start(m_reconnectInterval);
}

// The timer goes on until a connection stops it; connecting anew is the owner's decision.
void ClientSession::slot_ReConnect() {}

} // namespace CabinetSenderSpace
