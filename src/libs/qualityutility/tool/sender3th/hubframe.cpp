#include "hubframe_p.h"
#include <qualityutility/support/infolog_p.h>

#include <QtEndian>

#include <algorithm>

namespace HubFrame {

namespace {

/// Appends the bytes up to the first zero, decoded as UTF-8 and encoded again; gives the number of characters. ASCII,
/// as payloads are, is the same decoded and encoded.
int appendText(const QByteArray& bytes, QByteArray& body)
{
    const int length = static_cast<int>(qstrnlen(bytes.constData(), static_cast<uint>(bytes.size())));
    const bool isAscii =
        std::all_of(bytes.constData(), bytes.constData() + length, [](char c) { return (c & 0x80) == 0; });
    if (isAscii) {
        body.append(bytes.constData(), length);
        return length;
    }
    const QString text = QString::fromUtf8(bytes.constData(), length);
    body += text.toUtf8();
    return text.size();
}

/// What a queued reply costs, beside its bytes about what a list and an allocation take.
qint64 cost(const QByteArray& reply)
{
    return reply.size() + 64;
}

} // namespace

QByteArray pack(const QByteArray& payload)
{
    QByteArray frame(headerLength, Qt::Uninitialized);
    qToLittleEndian(static_cast<qint32>(payload.size()), frame.data());
    return frame + payload;
}

qint32 payloadLength(const QByteArray& header)
{
    return header.size() == headerLength ? qMax(0, qFromLittleEndian<qint32>(header.constData())) : 0;
}

template <typename... Items>
void Receiver::log(const Items&... items) const
{
    if (m_isLogging)
        Support::logInfo(items...);
}

void Receiver::reset()
{
    m_headerMissing = headerLength;
    m_bodyExpected = 0;
    m_isSpoiled = false;
    m_header.clear();
    m_body.clear();
}

void Receiver::receive(QIODevice& device, const std::function<void(const QByteArray& payload)>& complete)
{
    const auto receivePart = [&] {
        if (m_isSpoiled)
            return dropArrived(device);
        return m_headerMissing > 0 ? receiveHeader(device) : receiveBody(device, complete);
    };
    while (receivePart()) {
    }
    // A frame without payload ends the reading of its arrival: a stream of them would pile up in the device.
    if (device.bytesAvailable() > m_limit) {
        spoil();
        dropArrived(device);
    }
}

bool Receiver::receiveHeader(QIODevice& device)
{
    const QByteArray part = device.read(m_headerMissing);
    m_headerMissing -= part.size();
    m_header += part;
    if (m_header.size() != headerLength)
        return false;
    log("pack header read success");
    m_bodyExpected = payloadLength(m_header);
    log("data length", m_bodyExpected);
    if (m_bodyExpected > m_limit)
        spoil();
    if (m_bodyExpected > 0)
        return true;
    reset(); // a frame without payload is dropped
    return false;
}

bool Receiver::receiveBody(QIODevice& device, const std::function<void(const QByteArray& payload)>& complete)
{
    const int characters = appendText(device.readAll(), m_body);
    if (characters == 0) {
        log("recv empty");
        return false;
    }
    if (m_bodyExpected != characters) {
        m_bodyExpected -= characters;
        if (m_bodyExpected < 0)
            spoil();
        return true;
    }
    complete(m_body);
    reset();
    return true;
}

void Receiver::spoil()
{
    m_isSpoiled = true;
    m_body.clear();
}

bool Receiver::dropArrived(QIODevice& device)
{
    const int size = device.readAll().size();
    if (size == 0) {
        log("recv empty");
        return false;
    }
    log("bytes dropped", size);
    return true;
}

void ReplyQueue::add(const QByteArray& reply)
{
    const QMutexLocker lock(&m_mutex);
    if (!m_replies.isEmpty() && m_bytes + cost(reply) > m_limit) {
        Support::logInfo("reply dropped", reply.size());
        return;
    }
    m_replies.append(reply);
    m_bytes += cost(reply);
}

bool ReplyQueue::take(QByteArray& reply)
{
    const QMutexLocker lock(&m_mutex);
    if (m_replies.isEmpty())
        return false;
    reply = m_replies.takeFirst();
    m_bytes -= cost(reply);
    return true;
}

} // namespace HubFrame
