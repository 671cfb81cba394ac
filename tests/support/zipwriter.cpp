#include "zipwriter.h"

#include <QtEndian>

namespace {

quint32 crc32(const QByteArray& content)
{
    quint32 crc = ~0u;
    for (const char c : content) {
        crc ^= static_cast<unsigned char>(c);
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc >> 1) ^ ((crc & 1) != 0 ? 0xedb88320u : 0u);
    }
    return ~crc;
}

/// Appends little-endian numbers of the given widths.
template <typename... Numbers>
void append(QByteArray& out, Numbers... numbers)
{
    const auto one = [&out](auto number) {
        number = qToLittleEndian(number);
        out.append(reinterpret_cast<const char*>(&number), sizeof number);
    };
    (one(numbers), ...);
}

QByteArray packed(const ZipEntry& entry)
{
    if (entry.method != 8)
        return entry.content;
    const QByteArray zlib = qCompress(entry.content); // length, zlib header, deflated data, checksum
    return zlib.mid(6, zlib.size() - 10);
}

/// What local header and central directory share: flags to the length of the extra field.
void appendCommon(QByteArray& out, const ZipEntry& entry, const QByteArray& data)
{
    append(out, entry.flags, entry.method, quint16{0}, quint16{0x21}, crc32(entry.content) + entry.crcError,
           static_cast<quint32>(data.size()), static_cast<quint32>(entry.content.size()) + entry.sizeError,
           static_cast<quint16>(entry.name.size()), quint16{0});
}

} // namespace

QByteArray zipArchive(const QList<ZipEntry>& entries)
{
    QByteArray out;
    QByteArray directory;
    for (const ZipEntry& entry : entries) {
        const QByteArray data = packed(entry);
        append(directory, quint32{0x02014b50}, quint16{0x0314}, quint16{20});
        appendCommon(directory, entry, data);
        append(directory, quint16{0}, quint16{0}, quint16{0}, entry.unixMode << 16, static_cast<quint32>(out.size()));
        directory += entry.name;
        append(out, quint32{0x04034b50}, quint16{20});
        appendCommon(out, entry, data);
        out += entry.name + data;
    }
    const auto count = static_cast<quint16>(entries.size());
    const auto start = static_cast<quint32>(out.size());
    out += directory;
    append(out, quint32{0x06054b50}, quint16{0}, quint16{0}, count, count, static_cast<quint32>(directory.size()),
           start, quint16{0});
    return out;
}
