#pragma once

#include "hubcommands.h"

#include <QList>
#include <QThread>

#include <functional>
#include <memory>
#include <mutex>

class QTcpServer;

namespace Simulator {

/// What a hub does on the wire when a request has come in.
struct HubAnswer
{
    QList<QByteArray> chunks; ///< written one after the other, each on its way before the next
    bool closes = false;      ///< the connection is closed after them
    int pauseMs = 0;          ///< before each chunk
};

/// The frame of a payload.
QByteArray hubFrame(const QByteArray& payload);

/// A message hub on 127.0.0.1, served on a thread of its own, so that blocking clients of the same process can talk to
/// it. Each client gets its answers in order, whatever the others do; one that does not take them is not read from
/// meanwhile. All functions may be called from any thread.
class SimulatedHub
{
public:
    /// Decides the answer: gets the request's payload and the frame of the hub's own reply to it. Called on the hub's
    /// thread.
    using Script = std::function<HubAnswer(const QByteArray& request, const QByteArray& replyFrame)>;

    /// Starts a hub; port 0 lets the system choose. On failure gives null and says why.
    static std::unique_ptr<SimulatedHub> start(quint16 port, QString& error);
    ~SimulatedHub();
    SimulatedHub(const SimulatedHub&) = delete;
    SimulatedHub& operator=(const SimulatedHub&) = delete;

    quint16 port() const { return m_port; }

    /// Replaces the script; by default every request gets the hub's own reply.
    void setScript(Script script);

    /// How many requests have come so far.
    qint64 requestCount() const;
    /// From now on the payloads of requests are kept, for as long as the hub lives.
    void keepRequests();
    /// The payloads that were kept, oldest first.
    QList<QByteArray> requests() const;
    /// The "data" that a command has brought last.
    QJsonObject received(int command) const;

private:
    class Connection;

    SimulatedHub() = default;
    void accept();
    HubAnswer answer(const QByteArray& request);

    QThread m_thread;
    QTcpServer* m_server = nullptr; ///< lives on the thread
    quint16 m_port = 0;
    mutable std::mutex m_mutex; ///< guards what follows
    HubCommands m_commands;
    Script m_script;
    qint64 m_requestCount = 0;
    bool m_keepsRequests = false;
    QList<QByteArray> m_requests;
};

} // namespace Simulator
