#include "archiveentries_p.h"
#include "filefailurerecorder_p.h"
#include "projectarchive_p.h"
#include "temporaryfolder_p.h"
#include <qualityutility/support/unnamedfile_p.h>
#include <suite/common/filehelper.h>

#include <QDebug>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

namespace {

using Common::FileHelper;

void logRefusal(const QString& archive, const ArchiveRefusal& refusal)
{
    QDebug line = qCritical() << "file" << archive << "refused:" << qUtf8Printable(refusal.reason);
    if (!refusal.entry.isEmpty())
        line << "entry" << refusal.entry;
    const auto kind = refusal.isOfTheSystem ? FileFailure::Kind::WriteFailed : FileFailure::Kind::Refused;
    recordFileFailure({kind, archive, refusal.reason, refusal.entry});
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
    if (location.isEmpty()) { // Qt's answer where it is missing: the folder would be one of the root's
        logRefusal(archive, {QStringLiteral("no temporary folder can be made, the system's own is missing"), {}, true});
        return std::nullopt;
    }
    const QString folder = location + QLatin1Char('/') + name;
    if (isInside(archive, folder)) {
        logRefusal(archive, {QStringLiteral("it lies in its own temporary folder"), {}});
        return std::nullopt;
    }
    return folder;
}

/// What can be said against packing files before one of them is read. `bytes` are those of all of them.
std::optional<ArchiveRefusal> checkFiles(const QStringList& files, const ArchiveLimits& limits, quint64& bytes)
{
    if (files.size() > maxArchiveEntries)
        return ArchiveRefusal{QStringLiteral("%1 files, over %2").arg(files.size()).arg(maxArchiveEntries), {}};
    bytes = 0;
    for (const QString& file : files) {
        const QFileInfo info(file);
        const QString fault = info.isFile() ? archiveNameFault(info.fileName()) : QStringLiteral("not a file");
        if (!fault.isEmpty())
            return ArchiveRefusal{fault, info.fileName()};
        bytes += static_cast<quint64>(info.size());
    }
    return limits.refuseSpace(bytes, QStringLiteral("the archive's folder"));
}

/// Checks an archive and extracts it into a folder that is there.
std::optional<ArchiveRefusal> extractInto(const QString& folder, const QString& archive, QStringList& names)
{
    QFile file(archive);
    if (!file.open(QIODevice::ReadOnly))
        return ArchiveRefusal{QStringLiteral("it cannot be read"), {}};
    ArchiveListing listing;
    if (auto refusal = checkArchive(file, listing, ArchiveLimits::of(folder)))
        return refusal;
    return extractArchive(file, listing, folder, names);
}

/// The same into its folder's place.
std::optional<ArchiveRefusal> unpackInto(const TemporaryFolder& folder, const QString& archive, QStringList& names)
{
    const QString fresh = folder.makeFresh();
    if (fresh.isEmpty())
        return ArchiveRefusal{QStringLiteral("no temporary folder can be made"), {}, true};
    auto refusal = extractInto(fresh, archive, names);
    if (!refusal && !folder.replaceBy(fresh))
        refusal = ArchiveRefusal{QStringLiteral("its temporary folder cannot be replaced"), {}, true};
    if (refusal)
        TemporaryFolder::clear(fresh);
    return refusal;
}

QStringList pathsIn(const QString& folder, const QStringList& names)
{
    QStringList paths;
    for (const QString& name : names)
        paths << folder + QLatin1Char('/') + name;
    return paths;
}

} // namespace

std::optional<ArchiveRefusal> ProjectArchive::pack(const QString& archive, const QStringList& files)
{
    const QString folder = QFileInfo(archive).absolutePath();
    FileHelper::createDir(folder);
    return pack(archive, files, ArchiveLimits::of(folder));
}

std::optional<ArchiveRefusal> ProjectArchive::pack(const QString& archive, const QStringList& files,
                                                   const ArchiveLimits& limits)
{
    quint64 bytes = 0;
    if (auto refusal = checkFiles(files, limits, bytes))
        return refusal;
    Support::UnnamedFile fresh(archive);
    if (!fresh.file().isOpen())
        return ArchiveRefusal{fresh.fault(), {}, true};
    auto refusal = writeArchive(fresh.file(), files, ArchiveMethod::Deflated);
    if (!refusal && limits.isBomb(bytes, static_cast<quint64>(fresh.file().size())))
        refusal = writeArchive(fresh.file(), files, ArchiveMethod::Stored);
    ArchiveListing listing;
    if (!refusal)
        refusal = checkArchive(fresh.file(), listing, limits);
    if (!refusal && !fresh.moveToTarget())
        refusal = ArchiveRefusal{fresh.fault(), {}, true};
    return refusal;
}

std::optional<QStringList> ProjectArchive::unpack(const QString& archive, int longestWait)
{
    const auto path = temporaryFolder(archive);
    if (!path)
        return std::nullopt;
    const TemporaryFolder folder(*path, longestWait);
    QStringList names;
    const auto fault = folder.fault();
    if (const auto refusal = fault ? ArchiveRefusal{*fault, {}, true} : unpackInto(folder, archive, names)) {
        logRefusal(archive, *refusal);
        return std::nullopt;
    }
    return pathsIn(*path, names);
}

std::optional<QStringList> ProjectArchive::extract(const QString& archive, const QString& folder)
{
    QStringList names;
    if (const auto refusal = extractInto(folder, archive, names)) {
        logRefusal(archive, *refusal);
        return std::nullopt;
    }
    return pathsIn(folder, names);
}

bool ProjectArchive::removeTemporaryFolder(const QString& archive)
{
    const auto path = temporaryFolder(archive);
    if (!path)
        return false;
    const TemporaryFolder folder(*path, patience);
    const auto fault = folder.fault();
    const bool isThere = QFileInfo(*path).isSymLink() || QFileInfo::exists(*path);
    if (!isThere || (!fault && FileHelper::deleteDir(*path)))
        return true;
    logRefusal(archive, {fault.value_or(QStringLiteral("its temporary folder cannot be deleted")), {}, true});
    return false;
}
