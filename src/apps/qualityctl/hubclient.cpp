#include "hubclient.h"

#include "hostlog.h"

#include <QElapsedTimer>
#include <QTcpSocket>

namespace {

using CabinetSenderSpace::CabinetSender3th;

constexpr int connectMs = 2000;

QString hubName(const QString& host, int port)
{
    return QStringLiteral("hub %1:%2").arg(host).arg(port);
}

/// Says why a hub cannot be reached before a session tries: a session only logs it.
void requireReachable(const QString& host, int port)
{
    QTcpSocket probe;
    probe.connectToHost(host, static_cast<quint16>(port));
    if (probe.waitForConnected(connectMs))
        return;
    const QString reason = probe.error() == QAbstractSocket::ConnectionRefusedError
                               ? QStringLiteral("connection refused")
                           : probe.error() == QAbstractSocket::SocketTimeoutError ? QStringLiteral("unreachable")
                                                                                  : probe.errorString();
    throw CommandError{ExitCode::Unavailable, QStringLiteral("%1: %2").arg(hubName(host, port), reason)};
}

} // namespace

HubClient::HubClient(const HubAddress& address, const Output& output)
    : m_timeout(address.timeout), m_host(QString::fromStdString(address.host)), m_port(address.port)
{
    if (m_host.isEmpty() && m_port == 0)
        startSimulated(output);
    else if (m_host.isEmpty())
        m_host = QStringLiteral("127.0.0.1");
    HostLog::install(output.quiet);
    requireReachable(m_host, m_port);
    const int timeLimit = qMax(1, qRound(m_timeout * 1000.0));
    m_session.setWaits(connectMs, timeLimit, 1);
    m_session.setTimeLimit(timeLimit);
    m_session.connectToServer(m_host, static_cast<quint16>(m_port));
    m_sender->attachSession(&m_session);
}

HubClient::~HubClient()
{
    m_sender->attachSession(nullptr);
    CabinetSender3th::releaseInstance();
}

QString HubClient::name() const
{
    return hubName(m_host, m_port);
}

double HubClient::run(const std::function<int(CabinetSender3th&)>& operation)
{
    HostLog::takeCriticalLine();
    QElapsedTimer timer;
    timer.start();
    const int result = operation(*m_sender);
    const double seconds = static_cast<double>(timer.nsecsElapsed()) / 1e9;
    if (result == CabinetSenderSpace::ResultSuccess)
        return seconds;
    throw failure(HostLog::takeCriticalLine());
}

void HubClient::startSimulated(const Output& output)
{
    QString error;
    m_simulated = Simulator::SimulatedHub::start(0, error);
    if (!m_simulated)
        throw CommandError{ExitCode::Unavailable, QStringLiteral("simulated hub: %1").arg(error)};
    m_host = QStringLiteral("127.0.0.1");
    m_port = m_simulated->port();
    output.note(QStringLiteral("qualityctl: no address: using a simulated hub in this process"));
}

CommandError HubClient::failure(const QString& line) const
{
    if (line.startsWith(QLatin1String("result parse failed!")))
        return {ExitCode::Protocol, QStringLiteral("%1: the reply is not the hub's protocol: %2").arg(name(), line)};
    if (line.startsWith(QLatin1String("result error!")))
        return {ExitCode::Unavailable, QStringLiteral("%1: the hub answered with error number %2")
                                           .arg(name(), line.section(QLatin1Char(' '), -1))};
    if (m_session.ending() == CabinetSenderSpace::ClientSession::Ending::Closed)
        return {ExitCode::Unavailable, QStringLiteral("%1: the connection was closed before the reply").arg(name())};
    return {ExitCode::Timeout, QStringLiteral("%1: no reply within %2 s").arg(name()).arg(m_timeout)};
}
