#pragma once

#include <gateway/frame.h>
#include <gateway/servercore_p.h>

#include <QTcpSocket>

namespace Gateway {

/// One client of a server. It is read from as long as it takes its answers and not too many calls are on their way;
/// what it sends meanwhile waits in its own socket.
class ServerConnection : public QObject
{
public:
    using Clock = std::chrono::steady_clock;

    /// The socket becomes its own.
    ServerConnection(Server::Core& core, QTcpSocket* socket);
    ~ServerConnection() override;

    /// Ends one of its calls.
    void end(quint64 id, std::variant<Parameters, QString> content, int bytes);
    void close();

    bool hasAsked() const { return m_hasAsked; }
    /// Nothing of it is on its way.
    bool isIdle() const { return m_callsInFlight == 0 && m_socket->bytesToWrite() == 0; }
    Clock::time_point lastMoved() const { return m_lastMoved; }
    /// Whether it should have moved by now.
    bool isStuck() const;
    /// Bytes that it makes the server keep.
    qint64 held() const { return m_received.size() + m_bytesInFlight + m_socket->bytesToWrite(); }

private:
    void serve();
    bool mayAsk() const;
    bool takeMessage();
    bool readMore();
    void write(const QByteArray& frame);

    Server::Core& m_core;
    QTcpSocket* m_socket;
    FrameReader m_received;
    bool m_isGreeted = false;
    bool m_hasAsked = false;
    bool m_isServing = false;
    bool m_isClosing = false;
    int m_callsInFlight = 0;
    qint64 m_bytesInFlight = 0;
    Clock::time_point m_lastMoved = Clock::now();
};

} // namespace Gateway
