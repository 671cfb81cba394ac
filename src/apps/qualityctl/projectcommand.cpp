#include "commands.h"
#include "hostlog.h"
#include "inputfile.h"
#include "outputfile.h"

#include <CLI/CLI.hpp>

#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <qualityutility/tool/file/picqualityfiletool.h>

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
    HostLog::takeCriticalLine();
    Tool::packProConfig(archive, nicc, gray, config, others);
    if (!HostLog::takeCriticalLine().isEmpty())
        throw CommandError{ExitCode::CannotCreate, QStringLiteral("%1: the archive cannot be written").arg(archive)};
    return listed(archive, files);
}

/// An archive, unpacked into its temporary folder, which goes when this does.
class UnpackedProject
{
public:
    explicit UnpackedProject(const QString& archive) : m_archive(archive)
    {
        requireReadableFile(archive, QStringLiteral("archive"));
        QString nicc;
        QString gray;
        QString config;
        QStringList others;
        HostLog::takeCriticalLine();
        if (!Tool::unpackProConfig(archive, nicc, gray, config, others))
            throw CommandError{ExitCode::BadData, HostLog::takeCriticalLine()};
        add(QStringLiteral("nicc"), nicc);
        add(QStringLiteral("gray"), gray);
        add(QStringLiteral("cabinet"), config);
        for (const QString& other : others)
            add(QStringLiteral("further"), other);
    }
    ~UnpackedProject() { Tool::removeTempProConfig(m_archive); }
    UnpackedProject(const UnpackedProject&) = delete;
    UnpackedProject& operator=(const UnpackedProject&) = delete;

    const QList<ProjectFile>& files() const { return m_files; }

private:
    void add(const QString& role, const QString& path)
    {
        const QFileInfo info(path);
        if (info.isFile())
            m_files.append({role, path, info.fileName(), info.size()});
    }

    QString m_archive;
    QList<ProjectFile> m_files;
};

CommandResult unpack(const ProjectArguments& arguments, const Output& output)
{
    HostLog::install(output.quiet);
    const QString archive = QString::fromStdString(arguments.archive);
    const QDir out(QString::fromStdString(arguments.out));
    const UnpackedProject project(archive);
    makeOutputFolder(out.path());
    QList<ProjectFile> files = project.files();
    for (const ProjectFile& file : files)
        requireNewFile(out.filePath(file.name), arguments.force);
    for (ProjectFile& file : files) {
        const QString target = out.filePath(file.name);
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
