#include "project.h"

#include <calibration/output.h>
#include <calibration/stagefolder.h>
#include <qualityutility/tool/file/filefailures.h>
#include <qualityutility/tool/file/picqualityfiletool.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHash>
#include <QRandomGenerator>

#include <algorithm>

namespace Calibration {

namespace {

using Common::Fault;
using Common::Result;
using Tool = PicQualityFileTool;
using Role = Tool::ProjectRole;

/// Refuses what is no file that can be read, also a pipe: the library opens it again.
Result<void> requireReadable(const QString& path, const QString& role)
{
    const QString subject = role + QLatin1Char(' ') + path;
    const QFileInfo info(path);
    if (!info.exists())
        return Fault{Fault::Kind::NoInput, subject, {}, QStringLiteral("no such file")};
    if (!info.isFile())
        return Fault{Fault::Kind::NoInput, subject, QStringLiteral("a file"),
                     info.isDir() ? QStringLiteral("a folder") : QStringLiteral("a pipe or device")};
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return Fault{Fault::Kind::NoInput, subject, {}, file.errorString()};
    return {};
}

/// Why the library could not do it.
Fault faultOf(const FileFailures& failures, const QString& archive)
{
    const FileFailure failure = failures.list().value(failures.list().size() - 1);
    const bool isOfTheArchive = failure.kind == FileFailure::Kind::Refused;
    const QString entry = failure.entry.isEmpty() ? QString() : QStringLiteral(", entry \"%1\"").arg(failure.entry);
    const QString reason = failure.reason.isEmpty() ? QStringLiteral("cannot be written") : failure.reason;
    return {isOfTheArchive ? Fault::Kind::BadData : Fault::Kind::InputOutput, archive, {}, reason + entry};
}

Result<void> addFile(const QString& role, const QString& path, QList<ProjectFile>& files)
{
    if (path.isEmpty())
        return {};
    const auto readable = requireReadable(path, role + QStringLiteral(" file"));
    if (!readable)
        return readable;
    for (const ProjectFile& file : qAsConst(files)) {
        if (QFileInfo(file.name).fileName() == QFileInfo(path).fileName())
            return Fault{Fault::Kind::Usage,
                         QStringLiteral("%1 and %2").arg(file.name, path),
                         {},
                         QStringLiteral("an archive keeps no folders, and these have one name")};
    }
    files.append({role, path, QFileInfo(path).size()});
    return {};
}

/// What will go in, all of it readable.
Result<QList<ProjectFile>> filesOf(const ProjectInputs& inputs)
{
    QList<QPair<QString, QString>> given{{QStringLiteral("nicc"), inputs.nicc},
                                         {QStringLiteral("gray"), inputs.gray},
                                         {QStringLiteral("cabinet"), inputs.cabinet}};
    for (const QString& other : inputs.others)
        given.append({QStringLiteral("further"), other});
    QList<ProjectFile> files;
    for (const auto& [role, path] : qAsConst(given)) {
        const auto added = addFile(role, path, files);
        if (!added)
            return added.fault();
    }
    if (files.isEmpty())
        return Fault{Fault::Kind::Usage, QStringLiteral("project"), {}, QStringLiteral("nothing to pack")};
    return files;
}

/// Packs into `path`, which stands for `archive` in messages.
Result<void> packInto(const QString& path, const ProjectInputs& inputs, const QString& archive)
{
    const FileFailures failures;
    Tool::packProConfig(path, inputs.nicc, inputs.gray, inputs.cabinet, inputs.others);
    if (!failures.list().isEmpty())
        return faultOf(failures, archive);
    return {};
}

/// Packs under a name of its own beside the archive's, which it then takes unless somebody has it: of several at work
/// on one archive only one can say that it is done. What a killed process leaves has a name by which the next packing
/// knows it; one that does so too early makes this start again.
Result<void> packAsNew(const QString& archive, const ProjectInputs& inputs)
{
    constexpr int maxAttempts = 3;
    constexpr quint32 fourDigits = 0x10000; // after the first two
    for (int attempt = 0; attempt < maxAttempts; ++attempt) {
        const quint32 number = QRandomGenerator::system()->bounded(fourDigits);
        const QString own = QFileInfo(archive).absoluteDir().filePath(
            QStringLiteral(".packing-ct%1").arg(number, 4, 16, QLatin1Char('0')));
        const auto packed = packInto(own, inputs, archive);
        if (!packed)
            return packed;
        if (moveToNewName(own, archive))
            return {};
        QFile::remove(own);
        const auto isNew = requireNewFile(archive, false);
        if (!isNew)
            return isNew;
    }
    return Fault{Fault::Kind::CannotCreate, archive, {}, QStringLiteral("the archive cannot be written")};
}

/// An archive, unpacked into a folder of this process's own, which goes with this.
struct Unpacked
{
    std::unique_ptr<StageFolder> stage;
    QString folder;
    QList<ProjectFile> files; ///< named by their paths in the folder
};

QString roleName(Role role)
{
    static const QHash<int, QString> names{{static_cast<int>(Role::Nicc), QStringLiteral("nicc")},
                                           {static_cast<int>(Role::Gray), QStringLiteral("gray")},
                                           {static_cast<int>(Role::CabinetConfig), QStringLiteral("cabinet")}};
    return names.value(static_cast<int>(role), QStringLiteral("further"));
}

/// Every file that came out, by name; of several of a role the last has it.
QList<ProjectFile> filesIn(const QString& folder, const QStringList& paths)
{
    QHash<QString, QString> holders;
    for (const QString& path : paths)
        holders.insert(roleName(Tool::projectRole(path)), path);
    QList<ProjectFile> files;
    for (const QString& path : paths) {
        if (QFileInfo(path).isDir())
            continue;
        const QString role = roleName(Tool::projectRole(path));
        files.append({holders.value(role) == path ? role : QStringLiteral("further"),
                      QDir(folder).relativeFilePath(path), QFileInfo(path).size()});
    }
    std::sort(files.begin(), files.end(), [](const ProjectFile& a, const ProjectFile& b) { return a.name < b.name; });
    return files;
}

Result<Unpacked> unpackBeside(const QString& archive, const QString& place)
{
    auto stage = StageFolder::make(place);
    if (!stage)
        return stage.fault();
    const auto folder = (*stage)->makeFolder(QStringLiteral("unpacked"));
    if (!folder)
        return folder.fault();
    const FileFailures failures;
    QStringList paths;
    if (!Tool::extractProject(archive, *folder, paths))
        return faultOf(failures, archive);
    return Unpacked{std::move(*stage), *folder, filesIn(*folder, paths)};
}

/// Moves what was unpacked to its places, all or nothing.
Result<QList<ProjectFile>> moveInto(const QDir& out, Unpacked& unpacked, bool force, NewFolders& folders)
{
    FileMoves moves(*unpacked.stage);
    QList<ProjectFile> moved;
    for (const ProjectFile& file : qAsConst(unpacked.files)) {
        const QString target = out.filePath(file.name);
        folders.note(QFileInfo(target).path());
        QDir().mkpath(QFileInfo(target).path());
        const auto isMoved = moves.move(unpacked.folder + QLatin1Char('/') + file.name, target, force);
        if (!isMoved)
            return isMoved.fault();
        moved.append({file.role, target, file.bytes});
    }
    moves.keep();
    return moved;
}

} // namespace

Result<QList<ProjectFile>> packProject(const QString& archive, const ProjectInputs& inputs, bool force)
{
    auto files = filesOf(inputs);
    if (!files)
        return files;
    const auto isNew = requireNewFile(archive, force);
    if (!isNew)
        return isNew.fault();
    for (const ProjectFile& file : qAsConst(*files)) {
        if (QFileInfo(file.name) == QFileInfo(archive))
            return Fault{
                Fault::Kind::Usage, archive, {}, QStringLiteral("the archive would replace a file that goes into it")};
    }
    const auto packed = force ? packInto(archive, inputs, archive) : packAsNew(archive, inputs);
    return packed ? std::move(files) : packed.fault();
}

Result<QList<ProjectFile>> unpackProject(const QString& archive, const QString& folder, bool force)
{
    const auto readable = requireReadable(archive, QStringLiteral("archive"));
    if (!readable)
        return readable.fault();
    NewFolders folders;
    folders.note(folder);
    const auto made = makeFolder(folder);
    if (!made)
        return made.fault();
    auto unpacked = unpackBeside(archive, folder); // on the disk that the files go to
    if (!unpacked)
        return unpacked.fault();
    const QDir out(folder);
    for (const ProjectFile& file : qAsConst(unpacked->files)) {
        const auto isNew = requireNewFile(out.filePath(file.name), force);
        if (!isNew)
            return isNew.fault();
    }
    auto moved = moveInto(out, *unpacked, force, folders);
    if (moved)
        folders.keep();
    return moved;
}

Result<QList<ProjectFile>> listProject(const QString& archive)
{
    const auto readable = requireReadable(archive, QStringLiteral("archive"));
    if (!readable)
        return readable.fault();
    const auto unpacked = unpackBeside(archive, QDir::tempPath());
    return unpacked ? Result<QList<ProjectFile>>(unpacked->files) : unpacked.fault();
}

} // namespace Calibration
