#pragma once

#include <qualityutility/qualityutility_export.h>

#include <QAbstractSocket>
#include <QByteArray>
#include <QObject>
#include <QString>
#include <QTimer>

#include <atomic>
#include <functional>
#include <memory>

class QTcpSocket;

namespace HubFrame {
class Receiver;
class ReplyQueue;
} // namespace HubFrame

namespace CabinetSenderSpace {

/// A TCP session with the message hub: one framed request at a time, answered by one framed reply. docs/message-hub.md
/// has the frames.
///
/// Used, and destroyed, on the thread that made it; requests are serialised by the caller. One that comes while another
/// waits, also from another thread, fails at once with a critical line. A wait blocks its thread: no timers or events
/// of that thread run meanwhile, only the session's own socket is served. Several threads, each with a session of its
/// own, may work at once; Qt need not have started them.
///
/// Replies are paired with requests first in, first out. One that comes after its request has timed out answers the
/// next request, whose own reply then answers the one after it, and so on for good: after a request without an answer,
/// a host makes a new session. (That is how hubs and clients work together, so it stays.)
class QUALITYUTILITY_EXPORT ClientSession : public QObject
{
    Q_OBJECT

public:
    /// Not connected yet. A child of `parent`, which deletes it.
    explicit ClientSession(QObject* parent = nullptr);
    /// Closes the connection.
    ~ClientSession() override;

    /// Why the last request ended.
    enum class Ending {
        None,     ///< there was none yet
        Answered, ///< with a reply
        Closed,   ///< there was no connection, or it was closed before a reply came
        TimeOver, ///< no reply came in the looks or the time that it had
    };

    /// Connects, blocking for at most the connect wait (500 ms), and for as long as a host's name takes to be looked
    /// up. A connection that needs longer is given up: call again. Always true: whether it is connected isConnected()
    /// says. Does nothing when it is connected already, which it still is when the hub has closed the connection: then
    /// disServerConnect() comes first.
    bool connectToServer(QString host, unsigned short port);
    /// Closes the connection at once; what has not been sent is lost. Always true.
    bool disServerConnect();
    /// True from the first connection to disServerConnect(); a connection that the hub closes does not change it.
    bool isConnected() const;

    /// Sends a request and blocks until a reply is there: for the wait attempts times the read wait (900 times 1 s),
    /// for the time limit when there is one, or without limit. False when it is not connected, when the request cannot
    /// be written, when another request waits, or when no reply came; `reply` then stays as it was.
    bool sendToServerSync(const QByteArray& request, QByteArray& reply, bool waitWithoutLimit);
    /// Why the last request ended, or the last wait of getResultFromCache().
    Ending ending() const;

    /// Shortens the waits, for tests and impatient hosts: of connectToServer, of one look for a reply (both ms), and
    /// how many looks there are.
    void setWaits(int connectWait, int readWait, int attempts);
    /// Bounds the wait for a reply by time instead of by the number of looks, in ms; 0, as it is at first, by looks.
    /// A look takes a second at most then, and an arrival of bytes no more time than it needs. Such a wait is also over
    /// as soon as the connection is closed, and looks for a reply once more at its end. A session with a limit logs its
    /// waiting once a second, however the reply comes in, and neither the arrivals nor a look in vain.
    void setTimeLimit(int limit);

    /// Hears each payload: a request when it is written, a reply when it is complete. Called on the session's thread;
    /// must not block long.
    using Tap = std::function<void(const QByteArray& payload, bool isReceived)>;
    /// Lets `tap` hear this session's messages from now on; empty: nobody.
    void setTap(Tap tap);

    /// The frame of a payload: its length in four bytes, little-endian, and the payload.
    QByteArray GetCompletePack(const QByteArray& payload);
    /// The length that a header of exactly four bytes announces, negative as 0; otherwise 0.
    qint32 GetPackLength(const QByteArray& header);
    /// Takes the oldest reply, waiting for one as sendToServerSync does.
    bool getResultFromCache(QByteArray& result);
    /// Forgets the frame that is being received. Always true.
    bool initPackData();

Q_SIGNALS:
    /// Declared for listeners; never emitted by the session.
    void recvmsgdata(QString msgHubCommunication);

private Q_SLOTS:
    void slot_ReadMessage();
    void slot_SocketError(QAbstractSocket::SocketError socketErr);
    void slot_Connected();
    void slot_DisConnect();
    void slot_ReConnect();

private:
    bool exchange(const QByteArray& request, QByteArray& reply, bool waitWithoutLimit);
    bool isClosed() const;
    bool isTimed() const { return m_timeLimit > 0 && !m_waitWithoutLimit; }
    void waitForArrival(int wait);

    QTcpSocket* m_socket;
    bool m_isConnected = false;
    QString m_host;
    quint16 m_port = 0;
    QTimer m_reconnectTimer;
    std::unique_ptr<HubFrame::Receiver> m_receiver;
    std::unique_ptr<HubFrame::ReplyQueue> m_resultCache;
    int m_reconnectInterval = 5000;
    int m_connectWait = 500;
    int m_readWait = 1000;
    int m_waitAttempts = 900;
    int m_timeLimit = 0;
    bool m_waitWithoutLimit = false;
    Ending m_ending = Ending::None;
    Tap m_tap;
    std::atomic<bool> m_isBusy{false}; ///< a request waits for its reply
};

} // namespace CabinetSenderSpace
