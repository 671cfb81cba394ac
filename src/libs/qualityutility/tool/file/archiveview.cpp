#include "archiveview_p.h"

#include <QtEndian>

#include <algorithm>

namespace {

constexpr int endLength = 22;         ///< of the end record, whose last two bytes are the length of the comment
constexpr int wideLocatorLength = 20; ///< of what stands before it in an archive with 64-bit numbers
constexpr int wideEndLength = 56;     ///< of the end record of such an archive, before the locator
constexpr int entryLength = 46;       ///< of a listed entry, before its name, extra field and comment
constexpr int maxCommentLength = 0xffff;

template <typename Number>
Number numberAt(const QByteArray& bytes, int at)
{
    return qFromLittleEndian<Number>(bytes.constData() + at);
}

/// Where the end record stands in the last bytes of an archive; negative if nowhere. Better one whose comment reaches
/// the end exactly than one before other bytes.
int findEndRecord(const QByteArray& tail)
{
    int best = -1;
    for (int at = tail.size() - endLength; at >= 0 && (at = tail.lastIndexOf("PK\x05\x06", at)) >= 0; --at) {
        if (at + endLength + numberAt<quint16>(tail, at + endLength - 2) == tail.size())
            return at;
        best = std::max(best, at);
    }
    return best;
}

} // namespace

ArchiveView::ArchiveView(QIODevice& archive) : m_archive(archive), m_size(archive.size())
{
    open(ReadOnly | Unbuffered);
    findEnd();
}

void ArchiveView::findEnd()
{
    const qint64 tailAt = std::max(qint64{0}, m_size - endLength - maxCommentLength);
    const int end = findEndRecord(bytesAt(tailAt, endLength + maxCommentLength));
    if (end < 0)
        return;
    m_size = tailAt + end + endLength;
    m_hasEnd = true;
}

bool ArchiveView::isEmptyArchive() const
{
    return m_hasEnd && m_size == endLength && m_archive.seek(0) &&
           m_archive.read(endLength - 2) == QByteArray("PK\x05\x06") + QByteArray(endLength - 6, '\0');
}

int ArchiveView::countListed(int limit)
{
    if (!m_hasEnd)
        return 0;
    qint64 listEnd = m_size - endLength;
    const QByteArray end = bytesAt(listEnd, endLength);
    quint64 listSize = numberAt<quint32>(end, 12);
    const QByteArray wideEnd = bytesAt(listEnd - wideLocatorLength - wideEndLength, wideEndLength);
    if (wideEnd.size() == wideEndLength && wideEnd.startsWith("PK\x06\x06")) {
        listEnd -= wideLocatorLength + wideEndLength;
        listSize = numberAt<quint64>(wideEnd, 40);
    }
    if (listSize > static_cast<quint64>(listEnd))
        return 0;
    int count = 0;
    for (qint64 at = listEnd - static_cast<qint64>(listSize); count < limit; ++count) {
        const QByteArray entry = bytesAt(at, entryLength);
        if (entry.size() < entryLength || !entry.startsWith("PK\x01\x02"))
            break;
        at += entryLength + numberAt<quint16>(entry, 28) + numberAt<quint16>(entry, 30) + numberAt<quint16>(entry, 32);
    }
    return count;
}

QByteArray ArchiveView::bytesAt(qint64 position, int count)
{
    return position >= 0 && m_archive.seek(position) ? m_archive.read(count) : QByteArray();
}

bool ArchiveView::seek(qint64 position)
{
    m_position = position;
    return QIODevice::seek(position);
}

qint64 ArchiveView::readData(char* data, qint64 maxSize)
{
    const qint64 wanted = std::min(maxSize, m_size - m_position);
    if (wanted <= 0 || !m_archive.seek(m_position))
        return wanted <= 0 ? 0 : -1;
    const qint64 count = m_archive.read(data, wanted);
    // The comment is not there, so its length is none.
    for (qint64 at = std::max(m_position, m_size - 2); m_hasEnd && at < m_position + count; ++at)
        data[at - m_position] = '\0';
    m_position += std::max(qint64{0}, count);
    return count;
}

qint64 ArchiveView::writeData(const char*, qint64)
{
    return -1;
}
