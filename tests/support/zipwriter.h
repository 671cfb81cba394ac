#pragma once

#include <QByteArray>
#include <QList>

/// One entry of a crafted archive.
struct ZipEntry
{
    QByteArray name; ///< as bytes: any encoding, any control character
    QByteArray content;
    quint16 flags = 0;
    quint16 method = 0;         ///< 0 stored, 8 deflated
    quint32 unixMode = 0100644; ///< 0120777 is a symbolic link
    quint32 crcError = 0;       ///< added to the right checksum
    quint32 sizeError = 0;      ///< added to the right size of the content
};

/// A zip archive of these entries, byte by byte, with whatever is wrong in them.
QByteArray zipArchive(const QList<ZipEntry>& entries);
