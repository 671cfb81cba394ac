#pragma once

#include <gateway/client.h>
#include <gateway/frame.h>

#include <QTcpSocket>
#include <QTimer>

#include <condition_variable>
#include <deque>
#include <unordered_map>

namespace Gateway {

/// The socket of a client, on its thread, and the calls that wait for it or for their answers.
class Client::Connection : public QObject
{
public:
    Connection(const Address& address, const QString& name, Tap tap);

    /// Queues a call and wakes the thread; false when too much waits already. Any thread.
    bool submit(quint64 id, QByteArray frame, const Action::Responder& responder, std::chrono::milliseconds timeout);
    /// Wakes the thread, which connects, and blocks until the gateway has said hello or cannot be had. Any other
    /// thread.
    Common::Result<Hello> waitForHello();
    /// Ends all calls. On the thread.
    void close() { lose(Common::Fault::Kind::Unavailable, QStringLiteral("closed by this program")); }

protected:
    bool event(QEvent* event) override;

private:
    using Clock = std::chrono::steady_clock;
    struct Pending
    {
        Action::Responder responder;
        Clock::time_point deadline;
    };
    enum class State { Lost, Connecting, Greeted };

    void wake();
    void proceed();
    void flush();
    void greet();
    void write(const QByteArray& frame);
    void receive();
    void take(Message message);
    void takeHello(const Hello& hello);
    void end(Return answer);
    /// Ends all calls; the next one connects again.
    void lose(Common::Fault::Kind kind, const QString& reason);
    void dropOverdue();

    const Address m_address;
    const QString m_name;
    const Tap m_tap;
    QTcpSocket* m_socket;
    QTimer* m_giveUp; ///< while there is no hello
    QTimer* m_sweep;
    FrameReader m_received;
    State m_state = State::Lost;

    std::mutex m_mutex; ///< guards what follows
    std::condition_variable m_changed;
    std::unordered_map<quint64, Pending> m_pending;
    std::deque<QByteArray> m_queue;
    qint64 m_queuedBytes = 0;
    bool m_isWoken = false;
    std::optional<Common::Result<Hello>> m_hello;
};

} // namespace Gateway
