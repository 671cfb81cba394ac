#pragma once

#include "hubcommands.h"

#include <QList>
#include <QThread>

#include <functional>
#include <memory>
#include <mutex>

class QTcpServer;
class QTcpSocket;

namespace Simulator {

/// What a hub does on the wire when a request has come in.
struct HubAnswer
{
    QList<QByteArray> chunks; ///< written one after the other, each on its way before the next
    bool closes = false;      ///< the connection is closed after them
};

/// The frame of a payload.
QByteArray hubFrame(const QByteArray& payload);

/// A message hub on 127.0.0.1, served on a thread of its own, so that blocking clients of the same process can talk to
/// it. It keeps what it receives. All functions may be called from any thread.
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

    /// The payloads of all requests so far.
    QList<QByteArray> requests() const;
    /// The "data" that a command has brought last.
    QJsonObject received(int command) const;

private:
    SimulatedHub() = default;
    void accept();
    void readFrom(QTcpSocket* socket, QByteArray& buffer);
    void answer(QTcpSocket* socket, const QByteArray& request);

    QThread m_thread;
    QTcpServer* m_server = nullptr; ///< lives on the thread
    quint16 m_port = 0;
    mutable std::mutex m_mutex; ///< guards what follows
    HubCommands m_commands;
    Script m_script;
    QList<QByteArray> m_requests;
};

} // namespace Simulator
