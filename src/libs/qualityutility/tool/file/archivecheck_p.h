#pragma once

#include <QHash>
#include <QString>

#include <optional>

class QIODevice;
class QTextCodec;

/// What an archive says it holds, before anything is extracted.
struct ArchiveListing
{
    int entries = 0;
    QHash<QString, quint64> sizes;   ///< bytes by cleaned name; the last of several entries of a name
    QTextCodec* nameCodec = nullptr; ///< of the names that do not say that they are UTF-8
};

/// Why an archive is not extracted.
struct ArchiveRefusal
{
    QString reason;
    QString entry; ///< the entry's name; empty where the archive as a whole is refused
};

/// An archive holds at most so many entries and so many bytes.
inline constexpr int maxArchiveEntries = 4096;
inline constexpr quint64 mebibyte = quint64{1024} * 1024;
inline constexpr quint64 maxArchiveBytes = 256 * mebibyte;

/// Looks at every entry of a zip archive. Refused are: what is no archive, has a damaged list or is over the limits; an
/// entry whose name would lead out of the folder, or that no folder can hold; symbolic links; encrypted entries and
/// unknown methods. Names that are not UTF-8 are taken for GB 18030.
std::optional<ArchiveRefusal> checkArchive(QIODevice& archive, ArchiveListing& listing);
