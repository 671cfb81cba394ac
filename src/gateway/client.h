#pragma once

#include <gateway/message.h>
#include <suite/action/cabinetreader.h>

#include <QThread>

#include <atomic>
#include <functional>
#include <mutex>
#include <unordered_map>

namespace Gateway {

/// Where a gateway is.
struct Address
{
    QString host;
    quint16 port = 0;
};

/// Hears each message of a connection, without its frame, on the connection's thread; must not block long.
using Tap = std::function<void(const QByteArray& payload, bool isReceived)>;

/// Devices behind a gateway, as a transport of the action library. One connection carries all requests, many at once,
/// on a thread of its own. When it is lost, what it carried ends with an error that names the gateway, and the next
/// request takes it up again. All functions may be called from any thread.
class Client : public Action::Transport, public Action::CabinetReader
{
public:
    /// Connects; blocks for at most five seconds. Faults: unavailable, with the reason; protocol for a peer that is no
    /// gateway or speaks another version. `tap` may be empty.
    static Common::Result<std::shared_ptr<Client>> connect(const Address& address, Tap tap = nullptr);
    /// Ends what is on its way with an error.
    ~Client() override;

    /// "gateway 127.0.0.1:9100"
    QString name() const { return m_name; }
    /// What the gateway said of itself when the connection was made.
    Hello hello() const { return m_hello; }
    /// The wall document of what the gateway has. Blocks for at most ten seconds. Fault: unavailable.
    Common::Result<QByteArray> wall() const;

    /// Copies the request and returns. A request that is too large or of which too many wait is refused at once.
    void send(const Action::Request& request, const Action::Responder& responder) override;

    /// Blocks for at most ten seconds; nothing, too, when the gateway does not answer. A device whose cabinets it could
    /// not tell is not asked again for a minute: a wall of hundreds would wait for hours.
    std::optional<Action::CabinetState> cabinet(const std::string& deviceId, unsigned long long cid) const override;

private:
    class Connection;

    Client(const Address& address, Tap tap);
    std::variant<Parameters, QString> ask(Call call) const;
    bool isSilent(const std::string& device) const;

    const QString m_name;
    Hello m_hello;
    QThread m_thread;
    Connection* m_connection; ///< lives on the thread
    mutable std::atomic<quint64> m_lastId{0};
    mutable std::mutex m_mutex;
    mutable Action::CabinetState m_lastRead; ///< guarded; what the next cabinet may share
    /// Guarded; until when devices are not asked.
    mutable std::unordered_map<std::string, std::chrono::steady_clock::time_point> m_silent;
};

} // namespace Gateway
