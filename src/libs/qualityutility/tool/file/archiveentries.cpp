#include "archiveentries_p.h"
#include "archiveview_p.h"
#include <qualityutility/support/latin1_p.h>

#include <quazip/quazip.h>
#include <quazip/quazipfile.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSet>

#include <numeric>

namespace {

constexpr qint64 copyBlock = qint64{1024} * 1024;
constexpr auto ownerReadsAndWrites = QFile::ReadOwner | QFile::WriteOwner | QFile::ReadUser | QFile::WriteUser;

ArchiveRefusal notWritten(const QFileDevice& file, const QString& entry)
{
    return {QStringLiteral("it cannot be written: %1").arg(file.errorString()), entry, true};
}

std::optional<ArchiveRefusal> writeEntry(QuaZip& zip, const QFile& archive, const QString& path, ArchiveMethod method)
{
    const QString name = QFileInfo(path).fileName();
    QFile from(path);
    if (!from.open(QIODevice::ReadOnly))
        return ArchiveRefusal{QStringLiteral("it cannot be read: %1").arg(from.errorString()), name};
    QuaZipFile to(&zip);
    // Of a symbolic link, what it leads to: the archive would hold the link itself.
    const QuaZipNewInfo info(name, QFileInfo(path).canonicalFilePath());
    bool isWritten = to.open(QIODevice::WriteOnly, info, nullptr, 0, method == ArchiveMethod::Stored ? 0 : Z_DEFLATED);
    while (isWritten && !from.atEnd()) {
        const QByteArray block = from.read(copyBlock);
        if (block.isEmpty())
            return ArchiveRefusal{QStringLiteral("it cannot be read: %1").arg(from.errorString()), name};
        isWritten = to.write(block) == block.size();
    }
    to.close();
    if (!isWritten || to.getZipError() != ZIP_OK)
        return notWritten(archive, name);
    return std::nullopt;
}

/// Takes from a new file or folder what its entry forbids to others.
void narrowPermissions(const QString& path, const QuaZipFileInfo64& entry, QFile::Permissions owners)
{
    if ((entry.externalAttr >> 16) != 0) // otherwise the entry says nothing
        QFile::setPermissions(path, QFile::permissions(path) & (entry.getPermissions() | owners));
}

std::optional<ArchiveRefusal> copyOut(QuaZipFile& from, QFile& to, const QuaZipFileInfo64& entry)
{
    quint64 left = entry.uncompressedSize;
    QByteArray block(static_cast<int>(copyBlock), Qt::Uninitialized);
    qint64 count = 0;
    while ((count = from.read(block.data(), block.size())) > 0) {
        if (static_cast<quint64>(count) > left)
            return ArchiveRefusal{QStringLiteral("damaged, larger than it says"), entry.name};
        left -= static_cast<quint64>(count);
        if (to.write(block.constData(), count) != count)
            return notWritten(to, entry.name);
    }
    from.close(); // which compares the checksum
    if (count < 0 || left != 0 || from.getZipError() != UNZ_OK)
        return ArchiveRefusal{QStringLiteral("damaged"), entry.name};
    if (!to.flush())
        return notWritten(to, entry.name);
    return std::nullopt;
}

/// Extracts one entry. `isAgain` says that an earlier one has its name: the last of them stays.
std::optional<ArchiveRefusal> extractEntry(QuaZip& zip, const QuaZipFileInfo64& entry, const QString& path,
                                           bool isAgain)
{
    if (entry.name.endsWith(QLatin1Char('/'))) {
        if (!QDir().mkpath(path))
            return ArchiveRefusal{QStringLiteral("damaged, or it cannot be written"), entry.name, true};
        narrowPermissions(path, entry, ownerReadsAndWrites | QFile::ExeOwner | QFile::ExeUser);
        return std::nullopt;
    }
    if (isAgain)
        QFile::remove(path);
    QuaZipFile from(&zip);
    QFile to(path);
    if (!from.open(QIODevice::ReadOnly))
        return ArchiveRefusal{QStringLiteral("damaged"), entry.name};
    if (QFileInfo(path).isSymLink() || QFileInfo::exists(path)) // on this disk, by another name
        return ArchiveRefusal{QStringLiteral("damaged, or two names are one on this disk"), entry.name};
    if (!QDir().mkpath(QFileInfo(path).path()) || !to.open(QIODevice::WriteOnly | QIODevice::NewOnly))
        return ArchiveRefusal{QStringLiteral("damaged, or it cannot be written"), entry.name, true};
    narrowPermissions(path, entry, ownerReadsAndWrites);
    return copyOut(from, to, entry);
}

} // namespace

std::optional<ArchiveRefusal> writeArchive(QFile& archive, const QStringList& files, ArchiveMethod method)
{
    constexpr qint64 wideFrom = qint64{0xf0000000}; // below 4 GiB by more than names and lists take
    if (!archive.resize(0) || !archive.seek(0))
        return notWritten(archive, {});
    QuaZip zip(&archive);
    zip.setAutoClose(false);
    zip.setUtf8Enabled(true);
    const qint64 bytes = std::accumulate(files.begin(), files.end(), qint64{0},
                                         [](qint64 sum, const QString& file) { return sum + QFileInfo(file).size(); });
    zip.setZip64Enabled(bytes > wideFrom);
    if (!zip.open(QuaZip::mdCreate))
        return notWritten(archive, {});
    for (const QString& file : files) {
        if (auto refusal = writeEntry(zip, archive, file, method))
            return refusal;
    }
    zip.close();
    if (zip.getZipError() != ZIP_OK || !archive.flush())
        return notWritten(archive, {});
    return std::nullopt;
}

std::optional<ArchiveRefusal> extractArchive(QIODevice& archive, const ArchiveListing& listing, const QString& folder,
                                             QStringList& names)
{
    if (listing.entries == 0)
        return std::nullopt;
    ArchiveView view(archive);
    QuaZip zip(&view);
    zip.setAutoClose(false);
    zip.setFileNameCodec(listing.nameCodec);
    QSet<QString> seen;
    bool more = zip.open(QuaZip::mdUnzip) && zip.goToFirstFile();
    for (; more; more = zip.goToNextFile()) {
        QuaZipFileInfo64 entry;
        if (!zip.getCurrentFileInfo(&entry))
            break;
        const QString name = QDir::cleanPath(entry.name);
        if (auto refusal = extractEntry(zip, entry, folder + QLatin1Char('/') + name, seen.contains(name)))
            return refusal;
        seen.insert(name);
        // A folder has no role, whatever its suffix.
        names << (entry.name.endsWith(QLatin1Char('/')) ? name + QLatin1Char('/') : name);
    }
    if (names.size() != listing.entries)
        return ArchiveRefusal{
            QStringLiteral("damaged, %1 of %2 entries came out").arg(names.size()).arg(listing.entries), {}};
    return std::nullopt;
}
