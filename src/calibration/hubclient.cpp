#include "hubclient.h"

#include <QElapsedTimer>
#include <QTcpSocket>

namespace Calibration {

namespace {

using CabinetSenderSpace::CabinetSender3th;
using CabinetSenderSpace::HubFailure;
using Common::Fault;
using Common::Result;

constexpr int connectMs = 2000;

/// Why a hub could not be reached, which a session does not tell. Only asked then: a hub may serve one connection and
/// no more.
QString reachFault(const HubAddress& address)
{
    QTcpSocket probe;
    probe.connectToHost(address.host, address.port);
    if (probe.waitForConnected(connectMs))
        return QStringLiteral("connected too late");
    if (probe.error() == QAbstractSocket::ConnectionRefusedError)
        return QStringLiteral("connection refused");
    return probe.error() == QAbstractSocket::SocketTimeoutError ? QStringLiteral("unreachable") : probe.errorString();
}

} // namespace

HubClient::HubClient(const HubAddress& address) : m_address(address), m_sender(CabinetSender3th::create()) {}

HubClient::~HubClient()
{
    m_sender->attachSession(nullptr); // which it would delete
}

Result<std::unique_ptr<HubClient>> HubClient::connect(const HubAddress& address,
                                                      const CabinetSenderSpace::ClientSession::Tap& tap)
{
    std::unique_ptr<HubClient> client(new HubClient(address));
    const int timeLimit = qMax(1, qRound(address.timeout * 1000.0));
    client->m_session.setWaits(connectMs, timeLimit, 1);
    client->m_session.setTimeLimit(timeLimit);
    client->m_session.setTap(tap);
    client->m_session.connectToServer(address.host, address.port);
    if (!client->m_session.isConnected())
        return Fault{Fault::Kind::Unavailable, client->name(), {}, reachFault(address)};
    client->m_sender->attachSession(&client->m_session);
    return client;
}

Result<double> HubClient::run(const std::function<int(CabinetSender3th&)>& operation)
{
    QElapsedTimer timer;
    timer.start();
    if (operation(*m_sender) == CabinetSenderSpace::ResultSuccess)
        return static_cast<double>(timer.nsecsElapsed()) / 1e9;
    return failure();
}

Fault HubClient::failure() const
{
    const HubFailure& last = m_sender->lastFailure();
    switch (last.kind) {
    case HubFailure::Kind::NotUnderstood:
        return {Fault::Kind::Protocol, name(), {}, QStringLiteral("the reply is not the hub's protocol")};
    case HubFailure::Kind::Refused:
        return {Fault::Kind::Unavailable,
                name(),
                {},
                QStringLiteral("the hub answered with error number %1").arg(last.number, 0, 'g', 17)};
    case HubFailure::Kind::NoReply:
        return {Fault::Kind::Timeout, name(), {}, QStringLiteral("no reply within %1 s").arg(m_address.timeout)};
    case HubFailure::Kind::NotConnected:
    case HubFailure::Kind::None:
        break;
    }
    return {Fault::Kind::Unavailable, name(), {}, QStringLiteral("the connection was closed before the reply")};
}

int sendGrayTable(CabinetSender3th& sender, const Action::GrayTable& table)
{
    const auto list = [](const std::vector<unsigned char>& bytes) {
        return QList<unsigned char>(bytes.begin(), bytes.end());
    };
    return sender.setGrayScaleTable({}, list(table.red), list(table.green), list(table.blue), list(table.magnitude),
                                    table.freq);
}

} // namespace Calibration
