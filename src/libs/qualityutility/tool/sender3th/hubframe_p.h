#pragma once

#include <QByteArray>
#include <QIODevice>

#include <functional>

/// The message hub's framing: four bytes of length, little-endian, then the payload.
namespace HubFrame {

constexpr int headerLength = 4;

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
class Receiver
{
public:
    /// Takes what `device` has and appends complete payloads to `complete`.
    void receive(QIODevice& device, const std::function<void(const QByteArray& payload)>& complete);

    /// Forgets the frame that is being received.
    void reset();

private:
    bool receiveHeader(QIODevice& device);
    bool receiveBody(QIODevice& device, const std::function<void(const QByteArray& payload)>& complete);

    qint32 m_bodyExpected = 0;
    qint32 m_headerMissing = headerLength;
    QByteArray m_header;
    QByteArray m_body;
};

} // namespace HubFrame
