#include "commands.h"
#include "hostlog.h"
#include <calibration/project.h>
#include <reports/table.h>

#include <CLI/CLI.hpp>

namespace {

struct ProjectArguments
{
    std::string archive;
    std::string nicc;
    std::string gray;
    std::string config;
    std::vector<std::string> files;
    std::string out;
    bool force = false;

    QString archiveName() const { return QString::fromStdString(archive); }
};

CommandResult listed(const QString& archive, const QList<Calibration::ProjectFile>& files)
{
    Reports::Table table({{QStringLiteral("role"), QStringLiteral("role")},
                          {QStringLiteral("path"), QStringLiteral("file")},
                          {QStringLiteral("bytes"), QStringLiteral("bytes")}});
    for (const Calibration::ProjectFile& file : files)
        table.add({file.role, file.name, {QString::number(file.bytes), file.bytes}});
    return {table.toText(), {{QStringLiteral("archive"), archive}, {QStringLiteral("files"), table.toJson()}}};
}

CommandResult pack(const ProjectArguments& arguments)
{
    Calibration::ProjectInputs inputs{QString::fromStdString(arguments.nicc),
                                      QString::fromStdString(arguments.gray),
                                      QString::fromStdString(arguments.config),
                                      {}};
    for (const std::string& file : arguments.files)
        inputs.others << QString::fromStdString(file);
    const QString archive = arguments.archiveName();
    return listed(archive, take(Calibration::packProject(archive, inputs, arguments.force)));
}

CommandResult unpack(const ProjectArguments& arguments)
{
    const QString archive = arguments.archiveName();
    const QString folder = QString::fromStdString(arguments.out);
    return listed(archive, take(Calibration::unpackProject(archive, folder, arguments.force)));
}

CommandResult list(const ProjectArguments& arguments)
{
    const QString archive = arguments.archiveName();
    return listed(archive, take(Calibration::listProject(archive)));
}

using Run = CommandResult (*)(const ProjectArguments&);

CLI::App* addCommand(CLI::App& parent, Command& chosen, const char* name, const char* help, Run run,
                     const std::shared_ptr<ProjectArguments>& arguments)
{
    CLI::App* command = parent.add_subcommand(name, help);
    command->add_option("archive", arguments->archive, "The project archive, a zip file")->required();
    command->callback([&chosen, arguments, run] {
        chosen = [arguments, run](const Output& output) {
            HostLog::install(output.quiet);
            return run(*arguments);
        };
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
