#pragma once

#include <QByteArray>
#include <QIODevice>
#include <QList>
#include <QMutex>

#include <functional>

/// The message hub's framing: four bytes of length, little-endian, then the payload.
namespace HubFrame {

constexpr int headerLength = 4;

/// What a peer may make this process keep, in bytes: no reply of a hub comes near it.
constexpr qint32 maxKept = 64 * 1024 * 1024;

/// Header and payload.
QByteArray pack(const QByteArray& payload);

/// The length that a header announces, negative as 0; 0 unless it is exactly four bytes.
qint32 payloadLength(const QByteArray& header);

/// Reassembles framed replies, apart from the socket.
///
/// A body is counted in decoded characters (UTF-16 code units), not in bytes, and everything that is there is read as
/// body: payloads are expected to be ASCII, and bytes of a following frame that arrive in the same read spoil the body
/// they are taken into. The count then runs past zero and nothing more is queued until reset(). Hubs and earlier
/// clients depend on each other's frames being exchanged one at a time, so this stays.
///
/// The same spoils a frame that announces more than may be kept. What belongs to a spoiled frame is read, logged and
/// dropped, so that a peer that streams for minutes costs no more memory than one arrival.
class Receiver
{
public:
    /// `limit`: the largest payload that is kept, and how much an arrival may leave unread.
    explicit Receiver(qint32 limit = maxKept) : m_limit(limit) {}

    /// Takes what `device` has and gives complete payloads to `complete`.
    void receive(QIODevice& device, const std::function<void(const QByteArray& payload)>& complete);

    /// Forgets the frame that is being received.
    void reset();

    /// Whether what arrives is logged, as it is at first: some lines a frame and one an arrival, however small it is.
    void setLogging(bool isOn) { m_isLogging = isOn; }

    /// The memory that the body of the unfinished frame takes, in bytes.
    int keptBytes() const { return m_body.capacity(); }

private:
    bool receiveHeader(QIODevice& device);
    bool receiveBody(QIODevice& device, const std::function<void(const QByteArray& payload)>& complete);
    bool dropArrived(QIODevice& device);
    void spoil();
    template <typename... Items>
    void log(const Items&... items) const;

    qint32 m_limit;
    qint32 m_bodyExpected = 0;
    qint32 m_headerMissing = headerLength;
    bool m_isSpoiled = false;
    bool m_isLogging = true;
    QByteArray m_header;
    QByteArray m_body;
};

/// Complete replies, oldest first, shared by reception and the wait for a reply. All functions may be called from any
/// thread.
class ReplyQueue
{
public:
    /// `limit`: the bytes that it holds; one reply is taken whatever its size.
    explicit ReplyQueue(qint64 limit = maxKept) : m_limit(limit) {}

    /// Appends a reply. One for which there is no room is logged and dropped: nobody asks for that many.
    void add(const QByteArray& reply);
    /// Takes the oldest; false when there is none.
    bool take(QByteArray& reply);

private:
    qint64 m_limit;
    qint64 m_bytes = 0;
    QList<QByteArray> m_replies;
    QMutex m_mutex;
};

} // namespace HubFrame
