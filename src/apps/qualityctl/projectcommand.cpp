#include "commands.h"
#include "hostlog.h"
#include "inputfile.h"
#include "outputfile.h"
#include "stagefolder.h"

#include <CLI/CLI.hpp>

#include <QDir>
#include <QDirIterator>
#include <QFileInfo>
#include <QJsonArray>
#include <QRandomGenerator>
#include <qualityutility/tool/file/picqualityfiletool.h>

#include <algorithm>
#include <iterator>

namespace {

using Tool = PicQualityFileTool;

struct ProjectArguments
{
    std::string archive;
    std::string nicc;
    std::string gray;
    std::string config;
    std::vector<std::string> files;
    std::string out;
    bool force = false;
};

/// A file of a project and its role.
struct ProjectFile
{
    QString role;
    QString path;
    QString name; ///< as it is shown
    qint64 bytes;
};

CommandResult listed(const QString& archive, const QList<ProjectFile>& files)
{
    QList<QStringList> rows{{QStringLiteral("role"), QStringLiteral("file"), QStringLiteral("bytes")}};
    QJsonArray json;
    for (const ProjectFile& file : files) {
        rows.append(QStringList{file.role, file.name, QString::number(file.bytes)});
        json.append(QJsonObject{{QStringLiteral("role"), file.role},
                                {QStringLiteral("path"), file.name},
                                {QStringLiteral("bytes"), file.bytes}});
    }
    return {textTable(rows), {{QStringLiteral("archive"), archive}, {QStringLiteral("files"), json}}};
}

/// What goes into an archive.
struct Packing
{
    QString nicc;
    QString gray;
    QString config;
    QStringList others;
    QList<ProjectFile> files; ///< all of them
};

QString addFile(Packing& packing, const QString& role, const std::string& path)
{
    if (path.empty())
        return {};
    const QString name = QString::fromStdString(path);
    requireReadableFile(name, QStringLiteral("%1 file").arg(role));
    for (const ProjectFile& file : packing.files) {
        if (QFileInfo(file.path).fileName() == QFileInfo(name).fileName())
            throw CommandError{
                ExitCode::Usage,
                QStringLiteral("%1 and %2: an archive keeps no folders, and these have one name").arg(file.path, name)};
    }
    packing.files.append({role, name, name, QFileInfo(name).size()});
    return name;
}

Packing filesToPack(const ProjectArguments& arguments)
{
    Packing packing;
    packing.nicc = addFile(packing, QStringLiteral("nicc"), arguments.nicc);
    packing.gray = addFile(packing, QStringLiteral("gray"), arguments.gray);
    packing.config = addFile(packing, QStringLiteral("cabinet"), arguments.config);
    for (const std::string& file : arguments.files)
        packing.others << addFile(packing, QStringLiteral("further"), file);
    if (packing.files.isEmpty())
        throw CommandError{ExitCode::Usage, QStringLiteral("project pack: nothing to pack"),
                           QStringLiteral("give at least one of --nicc, --gray, --config, --file")};
    return packing;
}

/// Packs into `path`, which stands for `archive` in messages.
void packInto(const QString& path, const Packing& packing, const QString& archive)
{
    HostLog::takeCriticalLine();
    Tool::packProConfig(path, packing.nicc, packing.gray, packing.config, packing.others);
    QString line = HostLog::takeCriticalLine();
    if (!line.isEmpty())
        throw CommandError{ExitCode::CannotCreate, line.replace(path, archive)};
}

/// Packs under a name of its own beside the archive's, which it then takes unless somebody has it: of several at work
/// on one archive only one can say that it is done. What a killed process leaves has a name by which the next packing
/// knows it; one that does so too early makes this start again.
void packAsNew(const QString& archive, const Packing& packing)
{
    constexpr int maxAttempts = 3;
    constexpr quint32 fourDigits = 0x10000; // after the first two
    for (int attempt = 0; attempt < maxAttempts; ++attempt) {
        const quint32 number = QRandomGenerator::system()->bounded(fourDigits);
        const QString own = QFileInfo(archive).absoluteDir().filePath(
            QStringLiteral(".packing-ct%1").arg(number, 4, 16, QLatin1Char('0')));
        packInto(own, packing, archive);
        if (moveToNewName(own, archive))
            return;
        QFile::remove(own);
        requireNewFile(archive, false);
    }
    throw CommandError{ExitCode::CannotCreate, QStringLiteral("%1: the archive cannot be written").arg(archive)};
}

CommandResult pack(const ProjectArguments& arguments, const Output& output)
{
    HostLog::install(output.quiet);
    const Packing packing = filesToPack(arguments);
    const QString archive = QString::fromStdString(arguments.archive);
    requireNewFile(archive, arguments.force);
    for (const ProjectFile& file : packing.files) {
        if (QFileInfo(file.path) == QFileInfo(archive))
            throw CommandError{ExitCode::Usage,
                               QStringLiteral("%1: the archive would replace a file that goes into it").arg(archive)};
    }
    if (arguments.force)
        packInto(archive, packing, archive);
    else
        packAsNew(archive, packing);
    return listed(archive, packing.files);
}

/// An archive, unpacked into a folder of this process's own in `place`, which goes when this does. (The library's
/// folder for an archive is shared by everybody who unpacks an archive of that name.)
class UnpackedProject
{
public:
    UnpackedProject(const QString& archive, const QString& place) : m_stage(place)
    {
        const QString own = m_stage.make(QStringLiteral("unpacked"));
        const QByteArray earlierTemp = qgetenv("TMPDIR");
        qputenv("TMPDIR", QFile::encodeName(own));
        QString roles[3];
        QStringList others;
        HostLog::takeCriticalLine();
        const bool isUnpacked = Tool::unpackProConfig(archive, roles[0], roles[1], roles[2], others);
        qputenv("TMPDIR", earlierTemp);
        if (!isUnpacked)
            throw refusal(HostLog::takeCriticalLine());
        collect(own + QLatin1Char('/') + QFileInfo(archive).baseName(), roles);
    }

    StageFolder& stage() { return m_stage; }
    const QList<ProjectFile>& files() const { return m_files; }

private:
    static CommandError refusal(const QString& line)
    {
        const bool isOurs =
            line.contains(QLatin1String("temporary folder")) || line.contains(QLatin1String("cannot be written"));
        return {isOurs ? ExitCode::InputOutput : ExitCode::BadData, line};
    }

    /// Every file that came out, also those that lost their role to a later one.
    void collect(const QString& folder, const QString (&roles)[3])
    {
        static const QString names[] = {QStringLiteral("nicc"), QStringLiteral("gray"), QStringLiteral("cabinet")};
        QDirIterator it(folder, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
        while (it.hasNext()) {
            const QString path = it.next();
            const auto role = std::find(std::begin(roles), std::end(roles), path);
            m_files.append({role == std::end(roles) ? QStringLiteral("further") : names[role - std::begin(roles)], path,
                            QDir(folder).relativeFilePath(path), it.fileInfo().size()});
        }
        std::sort(m_files.begin(), m_files.end(),
                  [](const ProjectFile& a, const ProjectFile& b) { return a.name < b.name; });
    }

    StageFolder m_stage;
    QList<ProjectFile> m_files;
};

CommandResult unpack(const ProjectArguments& arguments, const Output& output)
{
    HostLog::install(output.quiet);
    const QString archive = QString::fromStdString(arguments.archive);
    const QString folder = QString::fromStdString(arguments.out);
    requireReadableFile(archive, QStringLiteral("archive"));
    NewFolders folders;
    folders.note(folder);
    makeOutputFolder(folder);
    UnpackedProject project(archive, folder); // on the disk that the files go to
    QList<ProjectFile> files = project.files();
    const QDir out(folder);
    for (const ProjectFile& file : files)
        requireNewFile(out.filePath(file.name), arguments.force);
    FileMoves moves(project.stage());
    for (ProjectFile& file : files) {
        const QString target = out.filePath(file.name);
        folders.note(QFileInfo(target).path());
        QDir().mkpath(QFileInfo(target).path());
        moves.move(file.path, target, arguments.force);
        file.name = target;
    }
    moves.keep();
    folders.keep();
    return listed(archive, files);
}

CommandResult list(const ProjectArguments& arguments, const Output& output)
{
    HostLog::install(output.quiet);
    const QString archive = QString::fromStdString(arguments.archive);
    requireReadableFile(archive, QStringLiteral("archive"));
    return listed(archive, UnpackedProject(archive, QDir::tempPath()).files());
}

using Run = CommandResult (*)(const ProjectArguments&, const Output&);

CLI::App* addCommand(CLI::App& parent, Command& chosen, const char* name, const char* help, Run run,
                     const std::shared_ptr<ProjectArguments>& arguments)
{
    CLI::App* command = parent.add_subcommand(name, help);
    command->add_option("archive", arguments->archive, "The project archive, a zip file")->required();
    command->callback([&chosen, arguments, run] {
        chosen = [arguments, run](const Output& output) { return run(*arguments, output); };
    });
    return command;
}

} // namespace

void addProjectCommands(CLI::App& app, Command& chosen)
{
    CLI::App* project = app.add_subcommand("project", "Pack and unpack project archives");
    project->require_subcommand(1);
    auto arguments = std::make_shared<ProjectArguments>();
    CLI::App* command = addCommand(*project, chosen, "pack", "Pack documents into an archive", pack, arguments);
    command->add_option("--nicc", arguments->nicc, "NICC configuration");
    command->add_option("--gray", arguments->gray, "Gray document");
    command->add_option("--config", arguments->config, "Cabinet configuration");
    command->add_option("--file", arguments->files, "A further file; may be repeated");
    command->add_flag("--force", arguments->force, "Replace an archive that is there");

    arguments = std::make_shared<ProjectArguments>();
    command = addCommand(*project, chosen, "unpack", "Unpack an archive into a folder", unpack, arguments);
    command->add_option("--out", arguments->out, "Folder for the files; made when it is missing")->required();
    command->add_flag("--force", arguments->force, "Replace files that are there");

    addCommand(*project, chosen, "list", "List an archive's files with their roles", list,
               std::make_shared<ProjectArguments>());
}
