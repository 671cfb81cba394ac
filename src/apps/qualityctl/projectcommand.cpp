#include "commands.h"
#include "hostlog.h"
#include "inputfile.h"
#include "outputfile.h"

#include <CLI/CLI.hpp>

#include <QDir>
#include <QDirIterator>
#include <QFileInfo>
#include <QJsonArray>
#include <QTemporaryDir>
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

CommandResult pack(const ProjectArguments& arguments, const Output& output)
{
    HostLog::install(output.quiet);
    QList<ProjectFile> files;
    const auto add = [&files](const QString& role, const std::string& path) {
        if (path.empty())
            return QString();
        const QString name = QString::fromStdString(path);
        requireReadableFile(name, QStringLiteral("%1 file").arg(role));
        for (const ProjectFile& file : files) {
            if (QFileInfo(file.path).fileName() == QFileInfo(name).fileName())
                throw CommandError{ExitCode::Usage,
                                   QStringLiteral("%1 and %2: an archive keeps no folders, and these have one name")
                                       .arg(file.path, name)};
        }
        files.append({role, name, name, QFileInfo(name).size()});
        return name;
    };
    const QString nicc = add(QStringLiteral("nicc"), arguments.nicc);
    const QString gray = add(QStringLiteral("gray"), arguments.gray);
    const QString config = add(QStringLiteral("cabinet"), arguments.config);
    QStringList others;
    for (const std::string& file : arguments.files)
        others << add(QStringLiteral("further"), file);
    if (files.isEmpty())
        throw CommandError{ExitCode::Usage, QStringLiteral("project pack: nothing to pack"),
                           QStringLiteral("give at least one of --nicc, --gray, --config, --file")};
    const QString archive = QString::fromStdString(arguments.archive);
    requireNewFile(archive, arguments.force);
    for (const ProjectFile& file : files) {
        if (QFileInfo(file.path) == QFileInfo(archive))
            throw CommandError{ExitCode::Usage,
                               QStringLiteral("%1: the archive would replace a file that goes into it").arg(archive)};
    }
    HostLog::takeCriticalLine();
    Tool::packProConfig(archive, nicc, gray, config, others);
    if (!HostLog::takeCriticalLine().isEmpty())
        throw CommandError{ExitCode::CannotCreate, QStringLiteral("%1: the archive cannot be written").arg(archive)};
    return listed(archive, files);
}

/// An archive, unpacked into a temporary folder of this process's own, which goes when this does. (The library's folder
/// for an archive is shared by everybody who unpacks an archive of that name.)
class UnpackedProject
{
public:
    explicit UnpackedProject(const QString& archive) : m_earlierTemp(qgetenv("TMPDIR"))
    {
        requireReadableFile(archive, QStringLiteral("archive"));
        if (!m_own.isValid())
            throw CommandError{ExitCode::InputOutput,
                               QStringLiteral("no temporary folder can be made: %1").arg(m_own.errorString())};
        qputenv("TMPDIR", QFile::encodeName(m_own.path()));
        QString roles[3];
        QStringList others;
        HostLog::takeCriticalLine();
        const bool isUnpacked = Tool::unpackProConfig(archive, roles[0], roles[1], roles[2], others);
        qputenv("TMPDIR", m_earlierTemp);
        if (!isUnpacked)
            throw refusal(HostLog::takeCriticalLine());
        collect(m_own.filePath(QFileInfo(archive).baseName()), roles);
    }

    const QList<ProjectFile>& files() const { return m_files; }

private:
    static CommandError refusal(const QString& line)
    {
        const bool isOurs = line.contains(QLatin1String("temporary folder")) ||
                            line.contains(QLatin1String("disk is full")) ||
                            line.contains(QLatin1String("cannot be written"));
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

    QTemporaryDir m_own;
    QByteArray m_earlierTemp;
    QList<ProjectFile> m_files;
};

CommandResult unpack(const ProjectArguments& arguments, const Output& output)
{
    HostLog::install(output.quiet);
    const QString archive = QString::fromStdString(arguments.archive);
    const UnpackedProject project(archive);
    makeOutputFolder(QString::fromStdString(arguments.out));
    const QDir out(QString::fromStdString(arguments.out));
    QList<ProjectFile> files = project.files();
    for (const ProjectFile& file : files)
        requireNewFile(out.filePath(file.name), arguments.force);
    for (ProjectFile& file : files) {
        const QString target = out.filePath(file.name);
        QDir().mkpath(QFileInfo(target).path());
        if (!Tool::copyFile(file.path, target))
            throw CommandError{ExitCode::InputOutput, QStringLiteral("%1: cannot be written").arg(target)};
        file.name = target;
    }
    return listed(archive, files);
}

CommandResult list(const ProjectArguments& arguments, const Output& output)
{
    HostLog::install(output.quiet);
    const QString archive = QString::fromStdString(arguments.archive);
    return listed(archive, UnpackedProject(archive).files());
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
