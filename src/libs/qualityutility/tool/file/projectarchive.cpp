#include "archivecheck_p.h"
#include "projectarchive_p.h"

#include <suite/common/filehelper.h>

#include <QDebug>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <quazip/JlCompress.h>

#include <filesystem>

namespace {

using Common::FileHelper;

bool moveOver(const QString& from, const QString& to)
{
    // QFile and QDir refuse to rename over what is there.
    std::error_code error;
    std::filesystem::rename(QFile::encodeName(from).toStdString(), QFile::encodeName(to).toStdString(), error);
    return !error;
}

void logRefusal(const QString& archive, const ArchiveRefusal& refusal)
{
    QDebug line = qCritical() << "file" << archive << "refused:" << qUtf8Printable(refusal.reason);
    if (!refusal.entry.isEmpty())
        line << "entry" << refusal.entry;
}

/// Whether a file lies in a folder, or a symbolic link to it does.
bool isInside(const QString& path, const QString& folder)
{
    const QFileInfo file(path);
    const QString outer = QFileInfo(folder).canonicalFilePath() + QLatin1Char('/');
    const QString linkFolder = QFileInfo(file.absolutePath()).canonicalFilePath() + QLatin1Char('/');
    return outer.size() > 1 && (file.canonicalFilePath().startsWith(outer) || linkFolder.startsWith(outer));
}

/// The archive's temporary folder; nothing, with a log line, where deleting it could take what is not an archive's.
std::optional<QString> temporaryFolder(const QString& archive)
{
    const QString name = QFileInfo(archive).baseName();
    if (name.isEmpty()) {
        logRefusal(archive, {QStringLiteral("its base name is empty, its folder would be the system's own"), {}});
        return std::nullopt;
    }
    const QString location = QStandardPaths::writableLocation(QStandardPaths::TempLocation);
    const QString folder = location + QLatin1Char('/') + name;
    if (isInside(archive, folder)) {
        logRefusal(archive, {QStringLiteral("it lies in its own temporary folder"), {}});
        return std::nullopt;
    }
    return folder;
}

/// The files, where a symbolic link stands for a copy of its target: the archive would hold the link itself.
QStringList withoutLinks(const QStringList& files, const QTemporaryDir& copies)
{
    QStringList result;
    for (const QString& file : files) {
        const QFileInfo info(file);
        const QString folder = copies.filePath(QStringLiteral("links-%1").arg(result.size()));
        const QString copy = folder + QLatin1Char('/') + info.fileName();
        const bool isCopied = info.isSymLink() && FileHelper::createDir(folder) && QFile::copy(file, copy);
        result << (isCopied ? copy : file);
    }
    return result;
}

/// Puts `fresh` in the place of `folder`; what was there is moved aside first and back when that fails.
bool replaceFolder(const QString& fresh, const QString& folder)
{
    const QFileInfo old(folder);
    if (!old.isSymLink() && !old.exists())
        return moveOver(fresh, folder);
    const QString aside = fresh + QStringLiteral("-old");
    if ((!old.isSymLink() && !old.isDir()) || !moveOver(folder, aside))
        return false;
    if (!moveOver(fresh, folder)) {
        moveOver(aside, folder);
        return false;
    }
    FileHelper::deleteDir(aside);
    return true;
}

/// Extracts everything into `folder` and compares it with the archive's own list.
std::optional<ArchiveRefusal> extract(QFile& archive, const QString& folder, const ArchiveListing& listing,
                                      QStringList& names)
{
    if (listing.entries == 0)
        return std::nullopt;
    const QStringList paths = JlCompress::extractDir(&archive, listing.nameCodec, folder);
    if (paths.isEmpty())
        return ArchiveRefusal{QStringLiteral("damaged, or it cannot be written"), {}};
    if (paths.size() != listing.entries)
        return ArchiveRefusal{
            QStringLiteral("damaged, %1 of %2 entries came out").arg(paths.size()).arg(listing.entries), {}};
    for (const QString& path : paths) {
        const QString name = QDir(folder).relativeFilePath(path);
        const QFileInfo info(path);
        if (!info.isDir() && static_cast<quint64>(info.size()) != listing.sizes.value(name))
            return ArchiveRefusal{QStringLiteral("damaged, or the disk is full"), name};
        names << (info.isDir() ? name + QLatin1Char('/') : name); // a folder has no role, whatever its suffix
    }
    return std::nullopt;
}

} // namespace

bool ProjectArchive::pack(const QString& archive, const QStringList& files)
{
    const QFileInfo target(archive);
    FileHelper::createDir(target.absolutePath());
    const QTemporaryDir beside(target.absoluteDir().filePath(QStringLiteral(".packing-XXXXXX")));
    if (!beside.isValid())
        return false;
    const QString fresh = beside.filePath(target.fileName());
    if (!JlCompress::compressFiles(fresh, withoutLinks(files, beside)))
        return false;
    QFile packed(fresh);
    ArchiveListing listing;
    if (!packed.open(QIODevice::ReadOnly))
        return false;
    if (const auto refusal = checkArchive(packed, listing)) {
        logRefusal(archive, *refusal); // nobody could unpack it
        return false;
    }
    return moveOver(fresh, archive);
}

std::optional<QStringList> ProjectArchive::unpack(const QString& archive)
{
    const auto folder = temporaryFolder(archive);
    if (!folder)
        return std::nullopt;
    QFile file(archive);
    ArchiveListing listing;
    std::optional<ArchiveRefusal> refusal;
    if (!file.open(QIODevice::ReadOnly))
        refusal = ArchiveRefusal{QStringLiteral("it cannot be read"), {}};
    else
        refusal = checkArchive(file, listing);
    QTemporaryDir fresh(*folder + QStringLiteral("-XXXXXX")); // of mode 0700
    QStringList names;
    if (!refusal && !fresh.isValid())
        refusal = ArchiveRefusal{QStringLiteral("no temporary folder can be made"), {}};
    if (!refusal)
        refusal = extract(file, fresh.path(), listing, names);
    if (!refusal && !replaceFolder(fresh.path(), *folder))
        refusal = ArchiveRefusal{QStringLiteral("its temporary folder cannot be replaced"), {}};
    if (refusal) {
        logRefusal(archive, *refusal);
        return std::nullopt;
    }
    fresh.setAutoRemove(false);
    QStringList paths;
    for (const QString& name : names)
        paths << *folder + QLatin1Char('/') + name;
    return paths;
}

bool ProjectArchive::removeTemporaryFolder(const QString& archive)
{
    const auto folder = temporaryFolder(archive);
    if (!folder)
        return false;
    if (FileHelper::deleteDir(*folder))
        return true;
    logRefusal(archive, {QStringLiteral("its temporary folder cannot be deleted"), {}});
    return false;
}
