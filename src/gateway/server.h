#pragma once

#include <suite/action/devices.h>

#include <QHostAddress>
#include <QThread>

#include <memory>

namespace Gateway {

/// Where and for how many a server listens.
struct Listening
{
    QHostAddress address = QHostAddress::LocalHost; ///< nobody is asked who they are: others than loopback see all
    quint16 port = 0;                               ///< 0: the system chooses
    int maxConnections = 200;                       ///< for one more an idle one is closed
    std::chrono::milliseconds patience{30'000};     ///< with who says no hello, sends half a message, takes no answer
};

/// Serves devices over TCP, on a thread of its own. Each client costs bounded memory, and harms no other, whatever it
/// sends or does not take.
class Server
{
public:
    /// Starts one. It uses the devices from its thread. Fault: unavailable, with the reason.
    static Common::Result<std::unique_ptr<Server>> start(Action::Devices devices, const Listening& listening);
    /// Closes all connections; what the transport answers later is dropped.
    ~Server();
    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;

    quint16 port() const { return m_port; }
    /// Requests that were handed on or read, so far. Any thread.
    qint64 requestCount() const;

    class Core;

private:
    Server() = default;

    QThread m_thread;
    Core* m_core = nullptr; ///< lives on the thread
    quint16 m_port = 0;
};

} // namespace Gateway
