#pragma once

#include <QHash>
#include <QString>

#include <limits>
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

/// Why an archive is not packed or not extracted.
struct ArchiveRefusal
{
    QString reason;
    QString entry;              ///< the entry's name; empty where the archive as a whole is refused
    bool isOfTheSystem = false; ///< the disk or a folder stands in the way, not the archive
};

/// An archive holds at most so many entries.
inline constexpr int maxArchiveEntries = 4096;

/// How many bytes an archive may hold. What is large beside the archive itself is a bomb, once it is large at all.
struct ArchiveLimits
{
    static constexpr quint64 mebibyte = quint64{1024} * 1024;

    quint64 freeBytes = std::numeric_limits<quint64>::max(); ///< where it is extracted
    quint64 harmlessBytes = 256 * mebibyte;                  ///< held by an archive of any size
    quint64 maxRatio = 200;                                  ///< of the bytes held to the archive's own, beyond that

    /// The limits for what is written to a folder that exists.
    static ArchiveLimits of(const QString& folder);

    bool isBomb(quint64 bytes, quint64 archiveBytes) const;
    /// Why so many bytes do not fit; nothing when they do. `where` names the folder.
    std::optional<ArchiveRefusal> refuseSpace(quint64 bytes, const QString& where) const;
};

/// What is wrong with an entry's name; empty for a good one.
QString archiveNameFault(const QString& name);

/// Looks at every entry of a zip archive. Refused are: what is no archive, has a damaged list or one longer than it
/// says, or is over the limits; an entry whose name would lead out of the folder, that no folder can hold or that could
/// not be packed; two names that become one; symbolic links; encrypted entries and unknown methods. Names that are not
/// UTF-8 are taken for GB 18030.
std::optional<ArchiveRefusal> checkArchive(QIODevice& archive, ArchiveListing& listing, const ArchiveLimits& limits);
