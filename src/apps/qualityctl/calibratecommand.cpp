#include "commands.h"
#include "dryrun.h"
#include "hostlog.h"
#include "hubargument.h"
#include "interrupt.h"
#include "progress.h"
#include "wallargument.h"
#include <calibration/gamut.h>
#include <calibration/graytable.h>
#include <calibration/output.h>
#include <reports/calibrationreport.h>

#include <CLI/CLI.hpp>

#include <QFileInfo>
#include <QJsonArray>

namespace {

/// How a calibration was asked for.
struct CalibrateArguments
{
    WallArgument wall;
    int generation = 4;
    HubArgument hub; ///< generation 3
    GamutArguments gamuts;
    TableArgument table;
    std::string binary;
    std::string out;
    std::string html; ///< empty: report.html in `out`
    bool resume = false;
    bool dryRun = false;
    Calibration::Acceptance acceptance;
};

QString text(const std::string& utf8)
{
    return QString::fromStdString(utf8);
}

Calibration::ContentNames namesOf(const CalibrateArguments& arguments)
{
    Calibration::ContentNames names = arguments.gamuts.names();
    names.table = text(arguments.table.file);
    names.frequency = arguments.table.frequency;
    names.binary = text(arguments.binary);
    return names;
}

/// What the host adds to a calibration's inputs: where it goes, as it was asked for.
QJsonObject inputsOf(const CalibrateArguments& arguments, const QString& wallDigest)
{
    const auto array = [](const std::vector<std::string>& list) {
        QJsonArray result;
        for (const std::string& entry : list)
            result.append(text(entry));
        return result;
    };
    return {{QStringLiteral("generation"), arguments.generation},
            {QStringLiteral("simulated"), arguments.generation == 4 || arguments.hub.isSimulated()},
            {QStringLiteral("wall_sha256"), wallDigest},
            {QStringLiteral("device"), array(arguments.wall.devices)},
            {QStringLiteral("cabinet"), array(arguments.wall.cabinets)}};
}

/// Refuses a report's file that has no place or is somebody else's.
void checkHtml(const QString& html, bool force)
{
    const QFileInfo info(html);
    const QString option = QStringLiteral("--html %1").arg(html);
    if (info.exists() && !info.isFile() && !info.isDir())
        throw Fault{Fault::Kind::CannotCreate, option, QStringLiteral("a file"), QStringLiteral("a pipe or device")};
    if (info.isDir() || !info.absoluteDir().exists())
        throw Fault{Fault::Kind::CannotCreate, option, {}, QStringLiteral("expected a file in a folder that is there")};
    if (info.exists() && !Reports::isReport(html))
        require(Calibration::requireNewFile(html, force));
}

Calibration::RunOptions runOptionsOf(const CalibrateArguments& arguments, const QStringList& outputs)
{
    Calibration::RunOptions options;
    options.resume = arguments.resume;
    options.force = arguments.gamuts.force;
    options.acceptance = arguments.acceptance;
    options.outputs = outputs;
    options.uses = namesOf(arguments).all();
    if (!arguments.wall.file.empty())
        options.uses << text(arguments.wall.file);
    return options;
}

/// The run, with what surrounds it on disk.
CommandResult calibrate(const CalibrateArguments& arguments, const Calibration::Content& content,
                        const Calibration::Figures& figures, Calibration::Destination& destination,
                        const QString& wallDigest, const Output& output)
{
    const auto folder = take(Calibration::Folder::open(text(arguments.out)));
    const Reports::ReportFiles files{folder->in(QStringLiteral("gamut-xy.svg")),
                                     folder->in(QStringLiteral("gamut-uv.svg")), folder->in(QStringLiteral("gray.svg")),
                                     arguments.html.empty() ? folder->in(QStringLiteral("report.html"))
                                                            : text(arguments.html)};
    checkHtml(files.html, arguments.gamuts.force);
    QJsonObject inputs = inputsOf(arguments, wallDigest);
    const QJsonObject common = Calibration::inputsOf(content, destination);
    for (auto it = common.begin(); it != common.end(); ++it)
        inputs.insert(it.key(), it.value());
    const Interrupt interrupt(Interrupt::What::FinishRunning);
    auto result = [&] {
        Progress progress(output);
        return take(Calibration::run(content, figures, destination, inputs, *folder,
                                     runOptionsOf(arguments, files.all()), progress));
    }();
    require(Reports::writeReport(result, content, files));
    return {Reports::toText(result), Reports::toJson(result), result.fault()};
}

CommandResult run(const CalibrateArguments& arguments, const Output& output)
{
    auto content = take(Calibration::readContent(namesOf(arguments)));
    HostLog::install(output.quiet);
    const auto figures = take(Calibration::computeFigures(content.measured, content.target));
    content.target = figures.target;
    if (arguments.generation == 3) {
        OpenHub hub(arguments.hub, output);
        const auto destination = Calibration::hubDestination(hub.name(), content, hub.client(), hub.reader());
        return calibrate(arguments, content, figures, *destination, {}, output);
    }
    const OpenWall wall = openWall(arguments.wall);
    const auto toWall = [&](const Action::CabinetReader* reader) {
        return Calibration::wallDestination(wall.name, wall.targets, content, reader);
    };
    if (arguments.dryRun)
        return dryRun([&] {
            const auto destination = toWall(nullptr);
            Calibration::Observer nobody;
            for (const std::string& device : destination->devices())
                destination->serve(device, nobody);
        });
    const Simulation simulation(wall, arguments.wall.seed, output);
    return calibrate(arguments, content, figures, *toWall(&simulation.reader()), wall.sha256, output);
}

} // namespace

void addCalibrateCommand(CLI::App& app, Command& chosen)
{
    CLI::App* command =
        app.add_subcommand("calibrate", "Compute a correction and bring it to a wall, with documents and report");
    const auto arguments = std::make_shared<CalibrateArguments>();
    addTargets(*command, arguments->wall);
    addGamuts(*command, arguments->gamuts, "--measured", "--target");
    addTable(*command, arguments->table, false);
    addBinary(*command, arguments->binary, false);
    command->add_option("--generation", arguments->generation, "4: cabinets of the wall; 3: through a message hub")
        ->check(CLI::IsMember({3, 4}))
        ->capture_default_str();
    addHub(*command, arguments->hub);
    addOutputFolder(*command, arguments->out, arguments->gamuts.force);
    command->add_option("--html", arguments->html, "The report's file; report.html in the folder without it");
    command->add_flag("--resume", arguments->resume, "Go on with the calibration that was begun in the folder");
    addAcceptance(*command, arguments->acceptance);
    command->add_flag("--dry-run", arguments->dryRun, "Print the requests instead of sending them");
    command->callback([&chosen, arguments] {
        checkHub(arguments->hub);
        if (arguments->generation == 3 && (arguments->dryRun || !arguments->binary.empty()))
            throw CLI::ValidationError("--generation 3", "neither --dry-run nor --binary goes through a hub");
        chosen = [arguments](const Output& output) { return run(*arguments, output); };
    });
}
