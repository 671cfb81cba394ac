#include "archivecheck_p.h"
#include "archiveview_p.h"

#include <quazip/quazip.h>

#include <QDir>
#include <QStorageInfo>
#include <QTextCodec>

#include <algorithm>

namespace {

constexpr int utf8Flag = 0x800;
constexpr int storedMethod = 0;
constexpr int deflatedMethod = 8;

bool isControl(QChar c)
{
    return c.category() == QChar::Other_Control;
}

bool hasDriveLetter(const QString& name)
{
    return name.size() >= 2 && name.at(1) == QLatin1Char(':') && name.at(0).unicode() < 0x80 && name.at(0).isLetter();
}

/// Whether a name is not in the encoding that it was read in.
bool isForeign(const QuaZipFileInfo64& entry)
{
    return (entry.flags & utf8Flag) == 0 && entry.name.contains(QChar::ReplacementCharacter);
}

QString entryFault(const QuaZipFileInfo64& entry)
{
    if (entry.isSymbolicLink())
        return QStringLiteral("a symbolic link");
    if (entry.isEncrypted())
        return QStringLiteral("encrypted");
    if (entry.method != storedMethod && entry.method != deflatedMethod)
        return QStringLiteral("an unknown compression method");
    return archiveNameFault(entry.name);
}

/// Whether a name that did not decode is the same text as an earlier one: two files would become one.
bool isMergedName(const QuaZipFileInfo64& entry, const ArchiveListing& listing)
{
    return isForeign(entry) && listing.sizes.contains(QDir::cleanPath(entry.name));
}

/// One pass over the entries, of which as many as the end record says. `hasForeignNames` says whether a name did not
/// decode.
std::optional<ArchiveRefusal> checkEntries(QuaZip& zip, ArchiveListing& listing, quint64& bytes, bool& hasForeignNames)
{
    constexpr quint64 noFileIsLarger = quint64{1} << 50; // so that the sum of all does not overflow
    const int expected = zip.getEntriesCount();
    for (bool more = zip.goToFirstFile(); more; more = zip.goToNextFile()) {
        QuaZipFileInfo64 entry;
        if (!zip.getCurrentFileInfo(&entry))
            break;
        hasForeignNames = hasForeignNames || isForeign(entry);
        const QString fault = isMergedName(entry, listing) ? QStringLiteral("two names, in no known encoding, are one")
                                                           : entryFault(entry);
        if (!fault.isEmpty())
            return ArchiveRefusal{fault, entry.name};
        bytes += std::min(entry.uncompressedSize, noFileIsLarger);
        listing.sizes.insert(QDir::cleanPath(entry.name), entry.uncompressedSize);
        ++listing.entries;
    }
    if (listing.entries != expected)
        return ArchiveRefusal{
            QStringLiteral("a damaged list, %1 of %2 entries can be read").arg(listing.entries).arg(expected), {}};
    return std::nullopt;
}

/// Compares the number of entries that the end record says with the limit and with the list itself.
std::optional<ArchiveRefusal> checkCount(int said, ArchiveView& archive)
{
    if (said > maxArchiveEntries)
        return ArchiveRefusal{QStringLiteral("%1 entries, over %2").arg(said).arg(maxArchiveEntries), {}};
    if (archive.countListed(said + 1) > said)
        return ArchiveRefusal{QStringLiteral("a damaged list, longer than the %1 entries that it says").arg(said), {}};
    return std::nullopt;
}

std::optional<ArchiveRefusal> checkWithCodec(ArchiveView& archive, ArchiveListing& listing, const char* codec,
                                             quint64& bytes, bool& hasForeignNames)
{
    listing = {0, {}, QTextCodec::codecForName(codec)};
    bytes = 0;
    QuaZip zip(&archive);
    zip.setAutoClose(false);
    zip.setFileNameCodec(listing.nameCodec);
    if (!zip.open(QuaZip::mdUnzip))
        return ArchiveRefusal{QStringLiteral("not a zip archive, or a truncated one"), {}};
    const auto refusal = checkCount(zip.getEntriesCount(), archive);
    return refusal ? refusal : checkEntries(zip, listing, bytes, hasForeignNames);
}

} // namespace

ArchiveLimits ArchiveLimits::of(const QString& folder)
{
    ArchiveLimits limits;
    const qint64 available = QStorageInfo(folder).bytesAvailable();
    if (available >= 0) // some file systems do not say
        limits.freeBytes = static_cast<quint64>(available);
    return limits;
}

bool ArchiveLimits::isBomb(quint64 bytes, quint64 archiveBytes) const
{
    return bytes > harmlessBytes && bytes / maxRatio > archiveBytes;
}

std::optional<ArchiveRefusal> ArchiveLimits::refuseSpace(quint64 bytes, const QString& where) const
{
    if (bytes <= freeBytes)
        return std::nullopt;
    return ArchiveRefusal{QStringLiteral("%1 MiB do not fit into %2: %3 MiB are free")
                              .arg(bytes / mebibyte + 1)
                              .arg(where)
                              .arg(freeBytes / mebibyte),
                          {},
                          true};
}

QString archiveNameFault(const QString& name)
{
    constexpr int maxPartBytes = 255;
    if (name.isEmpty())
        return QStringLiteral("an empty name");
    if (std::any_of(name.begin(), name.end(), isControl))
        return QStringLiteral("control characters in a name");
    if (name.startsWith(QLatin1Char('/')) || name.contains(QLatin1Char('\\')))
        return QStringLiteral("not a relative path");
    for (const QString& part : name.split(QLatin1Char('/'))) {
        if (part == QLatin1String("..") || part == QLatin1String("."))
            return QStringLiteral("a path that leaves the folder");
        if (hasDriveLetter(part)) // below a folder too: the file could not be packed again under its own name
            return QStringLiteral("not a relative path");
        if (part.toUtf8().size() > maxPartBytes)
            return QStringLiteral("a name over 255 bytes");
    }
    return {};
}

std::optional<ArchiveRefusal> checkArchive(QIODevice& archive, ArchiveListing& listing, const ArchiveLimits& limits)
{
    ArchiveView view(archive);
    if (view.isEmptyArchive())
        return std::nullopt;
    quint64 bytes = 0;
    bool hasForeignNames = false;
    auto refusal = checkWithCodec(view, listing, "UTF-8", bytes, hasForeignNames);
    if (hasForeignNames)
        refusal = checkWithCodec(view, listing, "GB18030", bytes, hasForeignNames);
    if (!refusal && limits.isBomb(bytes, static_cast<quint64>(archive.size())))
        refusal = ArchiveRefusal{QStringLiteral("%1 MiB unpacked, over %2 times the archive's size")
                                     .arg(bytes / ArchiveLimits::mebibyte)
                                     .arg(limits.maxRatio),
                                 {}};
    return refusal ? refusal : limits.refuseSpace(bytes, QStringLiteral("the temporary folder"));
}
