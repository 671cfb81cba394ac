#pragma once

#include <gateway/message.h>
#include <gateway/server.h>

#include <QTcpServer>
#include <QTimer>

#include <atomic>
#include <deque>
#include <mutex>
#include <unordered_map>

namespace Gateway {

class ServerConnection;

/// Where a server's transport leaves its answers, from any thread, for as long as it may.
class Outbox : public Action::AnswerSink
{
public:
    explicit Outbox(QObject* owner) : m_owner(owner) {}

    void deliver(Action::Answer answer) override;
    std::deque<Action::Answer> take();
    /// Answers are dropped from now on.
    void close();

private:
    std::mutex m_mutex;
    QObject* m_owner; ///< null once closed
    std::deque<Action::Answer> m_answers;
};

/// A server on its thread: the connections, and the requests that their devices have not answered.
class Server::Core : public QObject
{
public:
    Core(Action::Devices devices, const Listening& listening);
    ~Core() override;

    /// Empty, or why it cannot listen.
    QString listen();
    quint16 port() const { return m_server->serverPort(); }
    qint64 requestCount() const { return m_requestCount; }

    /// Serves a call of a connection: the answer comes through ServerConnection::end, perhaps inside this call.
    void serve(ServerConnection& connection, Call call, int bytes);
    /// A connection has gone; so have its calls.
    void forget(ServerConnection* connection);
    const Listening& listening() const { return m_listening; }
    Hello hello() const;
    /// Closes the connection that holds most, when together they hold too much.
    void checkMemory();

protected:
    bool event(QEvent* event) override;

private:
    using Clock = std::chrono::steady_clock;
    struct InFlight
    {
        ServerConnection* connection;
        quint64 id; ///< the client's
        int bytes;
        Clock::time_point deadline;
    };

    void accept();
    void makeRoom();
    void sweep();
    std::variant<Parameters, QString> list() const;
    std::variant<Parameters, QString> read(const Call& call) const;

    const Action::Devices m_devices;
    const Listening m_listening;
    QTcpServer* m_server;
    QTimer* m_sweep;
    std::shared_ptr<Outbox> m_outbox;
    std::vector<ServerConnection*> m_connections;
    std::unordered_map<quint64, InFlight> m_inFlight;
    quint64 m_lastRequest = 0;
    std::atomic<qint64> m_requestCount{0};
};

} // namespace Gateway
