#include "cabinetparameters.h"
#include "frame.h"
#include "serverconnection_p.h"
#include "servercore_p.h"

#include <QCoreApplication>
#include <QEvent>

#include <algorithm>

namespace Gateway {

namespace {

using namespace std::chrono_literals;

constexpr auto sweepTime = 250ms;
constexpr qint64 maxHeld = qint64{512} * 1024 * 1024; ///< by all connections together

constexpr std::size_t maxCabinets = 4096; ///< read in one call

/// Bytes of what may be large in a cabinet.
qint64 largePartsOf(const Action::CabinetState& state)
{
    const auto sizeOf = [](const auto& list) { return static_cast<qint64>(list.size()); };
    qint64 bytes = state.binary ? state.binary->size() : 0;
    if (const auto& table = state.grayTable)
        bytes += sizeOf(table->red) + sizeOf(table->green) + sizeOf(table->blue) + sizeOf(table->magnitude);
    return bytes;
}

const QEvent::Type answersType = static_cast<QEvent::Type>(QEvent::registerEventType());

} // namespace

void Outbox::deliver(Action::Answer answer)
{
    const std::lock_guard lock(m_mutex);
    if (!m_owner)
        return;
    m_answers.push_back(std::move(answer));
    if (m_answers.size() == 1)
        QCoreApplication::postEvent(m_owner, new QEvent(answersType));
}

std::deque<Action::Answer> Outbox::take()
{
    const std::lock_guard lock(m_mutex);
    return std::exchange(m_answers, {});
}

void Outbox::close()
{
    const std::lock_guard lock(m_mutex);
    m_owner = nullptr;
    m_answers.clear();
}

Server::Core::Core(Action::Devices devices, const Listening& listening)
    : m_devices(std::move(devices)), m_listening(listening), m_server(new QTcpServer(this)), m_sweep(new QTimer(this)),
      m_outbox(std::make_shared<Outbox>(this))
{
    connect(m_server, &QTcpServer::newConnection, this, [this] { accept(); });
    connect(m_sweep, &QTimer::timeout, this, [this] { sweep(); });
}

Server::Core::~Core()
{
    m_outbox->close();
    while (!m_connections.empty())
        delete m_connections.back();
}

QString Server::Core::listen()
{
    m_sweep->start(sweepTime);
    return m_server->listen(m_listening.address, m_listening.port) ? QString() : m_server->errorString();
}

Hello Server::Core::hello() const
{
    return {protocolVersion, m_devices.isSimulated, m_devices.reader != nullptr};
}

void Server::Core::accept()
{
    while (QTcpSocket* socket = m_server->nextPendingConnection()) {
        if (m_connections.size() >= static_cast<std::size_t>(m_listening.maxConnections))
            makeRoom();
        m_connections.push_back(new ServerConnection(*this, socket)); // this's
    }
}

/// Closes who is idle longest, first of those that have asked nothing yet: who has may be about to ask again. A client
/// takes its connection up again when it needs it.
void Server::Core::makeRoom()
{
    const auto rank = [](const ServerConnection* connection) {
        return std::make_tuple(connection->hasAsked(), !connection->isIdle(), connection->lastMoved());
    };
    (*std::min_element(m_connections.begin(), m_connections.end(), [&](const auto* a, const auto* b) {
        return rank(a) < rank(b);
    }))->close();
}

void Server::Core::forget(ServerConnection* connection)
{
    m_connections.erase(std::remove(m_connections.begin(), m_connections.end(), connection), m_connections.end());
    for (auto it = m_inFlight.begin(); it != m_inFlight.end();)
        it = it->second.connection == connection ? m_inFlight.erase(it) : std::next(it);
}

void Server::Core::checkMemory()
{
    qint64 held = 0;
    for (const ServerConnection* connection : m_connections)
        held += connection->held();
    if (held > maxHeld)
        (*std::max_element(m_connections.begin(), m_connections.end(), [](const auto* a, const auto* b) {
            return a->held() < b->held();
        }))->close();
}

void Server::Core::serve(ServerConnection& connection, Call call, int bytes)
{
    ++m_requestCount;
    switch (call.method) {
    case Call::Method::List:
        return connection.end(call.id, list(), bytes);
    case Call::Method::Read:
        if (!m_devices.reader)
            return connection.end(call.id, QStringLiteral("these devices cannot be read"), bytes);
        return connection.end(call.id, read(call), bytes);
    case Call::Method::Put:
    case Call::Method::Post:
        break;
    }
    const auto method = call.method == Call::Method::Put ? Action::Request::Method::Put : Action::Request::Method::Post;
    const quint64 request = ++m_lastRequest;
    m_inFlight.emplace(request, InFlight{&connection, call.id, bytes, Clock::now() + call.timeout});
    m_devices.transport->send({method, call.action, call.device, call.parameters, call.headers, call.isAcknowledged,
                               call.priority, call.timeout},
                              Action::Responder(m_outbox, request));
}

std::variant<Parameters, QString> Server::Core::list() const
{
    if (!m_devices.wall)
        return QStringLiteral("these devices have no wall document");
    const auto document = m_devices.wall();
    if (!document)
        return document.fault().message();
    Parameters reply;
    reply.insert("wall", document->toStdString());
    return reply;
}

/// What the cabinets hold, or why they are too many: the reply must fit into a frame, and its parts into memory before.
std::variant<Parameters, QString> Server::Core::read(const Call& call) const
{
    const auto* cids = call.parameters.arguments().find<std::vector<unsigned long long>>("cids");
    if (!cids || cids->size() > maxCabinets)
        return QStringLiteral("expected cids, at most %1").arg(maxCabinets);
    std::vector<Parameters> cabinets;
    qint64 bytes = 0;
    for (const unsigned long long cid : *cids) {
        const auto state = m_devices.reader->cabinet(call.device, cid);
        bytes += state ? largePartsOf(*state) : 0;
        if (bytes > maxPayload)
            return QStringLiteral("these cabinets hold more than fits into a frame: ask for fewer");
        cabinets.push_back(state ? toParameters(*state) : Parameters());
    }
    Parameters reply;
    reply.insert("cabinets", cabinets);
    return reply;
}

bool Server::Core::event(QEvent* event)
{
    if (event->type() != answersType)
        return QObject::event(event);
    for (Action::Answer& answer : m_outbox->take()) {
        const auto found = m_inFlight.find(answer.request);
        if (found == m_inFlight.end())
            continue; // twice, late, or its client has gone
        const InFlight call = found->second;
        m_inFlight.erase(found);
        call.connection->end(call.id, std::move(answer.content), call.bytes);
    }
    return true;
}

void Server::Core::sweep()
{
    std::vector<InFlight> overdue;
    for (auto it = m_inFlight.begin(); it != m_inFlight.end();) {
        const bool isOverdue = it->second.deadline < Clock::now();
        if (isOverdue)
            overdue.push_back(it->second);
        it = isOverdue ? m_inFlight.erase(it) : std::next(it);
    }
    for (const InFlight& call : overdue) {
        const auto still = std::find(m_connections.begin(), m_connections.end(), call.connection);
        if (still != m_connections.end())
            (*still)->end(call.id, QStringLiteral("timeout: no answer of the device"), call.bytes);
    }
    for (ServerConnection* connection : std::vector(m_connections)) {
        if (connection->isStuck())
            connection->close();
    }
    m_server->resumeAccepting(); // it pauses where the system gave no socket
}

} // namespace Gateway
