#include "frame.h"

#include <QtEndian>

namespace Gateway {

void FrameReader::append(const QByteArray& bytes)
{
    if (m_taken > 0) {
        m_bytes = m_bytes.mid(m_taken); // a copy: what a large payload took comes back
        m_taken = 0;
    }
    m_bytes += bytes;
}

std::optional<QByteArray> FrameReader::next()
{
    if (m_taken == m_bytes.size())
        m_bytes.resize(m_taken = 0);
    const int size = m_bytes.size() - m_taken - headerLength;
    if (size < 0 || m_isTooLong)
        return std::nullopt;
    const auto length = qFromLittleEndian<quint32>(m_bytes.constData() + m_taken);
    m_isTooLong = length > static_cast<quint32>(maxPayload);
    if (m_isTooLong || static_cast<quint32>(size) < length)
        return std::nullopt;
    const int start = m_taken + headerLength;
    m_taken = start + static_cast<int>(length);
    return QByteArray::fromRawData(m_bytes.constData() + start, static_cast<int>(length));
}

} // namespace Gateway
