#pragma once

#include <QByteArray>

#include <optional>

/// Device actions over TCP: requests, answers and what carries them; docs/device-gateway.md has the protocol.
namespace Gateway {

/// Bytes before a payload: its length, little-endian.
inline constexpr int headerLength = 4;

/// The longest payload, 64 MiB: a receiving-card binary of 48 MB in Base64, or 200 gray tables.
inline constexpr int maxPayload = 64 * 1024 * 1024;

/// Cuts what arrives into payloads, however it comes in pieces. Keeps no more than what was appended.
class FrameReader
{
public:
    void append(const QByteArray& bytes);

    /// The next whole payload; its bytes are the reader's and hold until the next call. Nothing while it is not
    /// there yet, or when the peer has announced one that is too long.
    std::optional<QByteArray> next();

    /// A payload of more than maxPayload bytes was announced: nothing more will come out.
    bool isTooLong() const { return m_isTooLong; }

    /// Bytes that are kept and not yet given out.
    int size() const { return m_bytes.size() - m_taken; }

private:
    QByteArray m_bytes;
    int m_taken = 0; ///< bytes at the front that are done with
    bool m_isTooLong = false;
};

} // namespace Gateway
