#include "archivecheck_p.h"

#include <QDir>
#include <QTextCodec>
#include <quazip/quazip.h>

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

/// What is wrong with a name; empty for a good one.
QString nameFault(const QString& name)
{
    constexpr int maxPartBytes = 255;
    if (name.isEmpty())
        return QStringLiteral("an empty name");
    if (std::any_of(name.begin(), name.end(), isControl))
        return QStringLiteral("control characters in a name");
    if (name.startsWith(QLatin1Char('/')) || name.contains(QLatin1Char('\\')) || hasDriveLetter(name))
        return QStringLiteral("not a relative path");
    for (const QString& part : name.split(QLatin1Char('/'))) {
        if (part == QLatin1String("..") || part == QLatin1String("."))
            return QStringLiteral("a path that leaves the folder");
        if (part.toUtf8().size() > maxPartBytes)
            return QStringLiteral("a name over 255 bytes");
    }
    return {};
}

QString entryFault(const QuaZipFileInfo64& entry)
{
    if (entry.isSymbolicLink())
        return QStringLiteral("a symbolic link");
    if (entry.isEncrypted())
        return QStringLiteral("encrypted");
    if (entry.method != storedMethod && entry.method != deflatedMethod)
        return QStringLiteral("an unknown compression method");
    return nameFault(entry.name);
}

/// Whether there is nothing but an end record that counts no entries.
bool isEmptyArchive(QIODevice& archive)
{
    constexpr int endLength = 22;
    const QByteArray end = archive.peek(endLength);
    return end.size() == endLength && end.startsWith(QByteArray("PK\x05\x06") + QByteArray(16, '\0'));
}

/// One pass over the entries. `hasForeignNames` says whether a name did not decode.
std::optional<ArchiveRefusal> checkEntries(QuaZip& zip, ArchiveListing& listing, bool& hasForeignNames)
{
    const int expected = zip.getEntriesCount();
    if (expected > maxArchiveEntries)
        return ArchiveRefusal{QStringLiteral("%1 entries, over %2").arg(expected).arg(maxArchiveEntries), {}};
    quint64 bytes = 0;
    for (bool more = zip.goToFirstFile(); more; more = zip.goToNextFile()) {
        QuaZipFileInfo64 entry;
        if (!zip.getCurrentFileInfo(&entry))
            break;
        hasForeignNames =
            hasForeignNames || ((entry.flags & utf8Flag) == 0 && entry.name.contains(QChar::ReplacementCharacter));
        const QString fault = entryFault(entry);
        if (!fault.isEmpty())
            return ArchiveRefusal{fault, entry.name};
        bytes += std::min(entry.uncompressedSize, maxArchiveBytes + 1);
        if (bytes > maxArchiveBytes)
            return ArchiveRefusal{QStringLiteral("over %1 MiB unpacked").arg(maxArchiveBytes / mebibyte), entry.name};
        listing.sizes.insert(QDir::cleanPath(entry.name), entry.uncompressedSize);
        ++listing.entries;
    }
    if (listing.entries != expected)
        return ArchiveRefusal{
            QStringLiteral("a damaged list, %1 of %2 entries can be read").arg(listing.entries).arg(expected), {}};
    return std::nullopt;
}

std::optional<ArchiveRefusal> checkWithCodec(QIODevice& archive, ArchiveListing& listing, const char* codec,
                                             bool& hasForeignNames)
{
    listing = {0, {}, QTextCodec::codecForName(codec)};
    QuaZip zip(&archive);
    zip.setAutoClose(false);
    zip.setFileNameCodec(listing.nameCodec);
    if (!zip.open(QuaZip::mdUnzip))
        return ArchiveRefusal{QStringLiteral("not a zip archive, or a truncated one"), {}};
    return checkEntries(zip, listing, hasForeignNames);
}

} // namespace

std::optional<ArchiveRefusal> checkArchive(QIODevice& archive, ArchiveListing& listing)
{
    if (isEmptyArchive(archive)) // which quazip takes for no archive
        return std::nullopt;
    bool hasForeignNames = false;
    auto refusal = checkWithCodec(archive, listing, "UTF-8", hasForeignNames);
    if (hasForeignNames)
        refusal = checkWithCodec(archive, listing, "GB18030", hasForeignNames);
    return refusal;
}
