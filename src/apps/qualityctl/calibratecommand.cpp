#include "commands.h"
#include "dryrun.h"
#include "hostlog.h"
#include "hubargument.h"
#include "interrupt.h"
#include "progress.h"
#include "wallargument.h"
#include <calibration/gamut.h>
#include <calibration/output.h>
#include <reports/calibrationreport.h>

#include <CLI/CLI.hpp>

#include <QDateTime>
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
    std::string pdf;  ///< empty: none
    std::vector<std::string> notes;
    bool resume = false;
    bool dryRun = false;
    int atOnce = Calibration::defaultAtOnce;
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

/// Where a calibration goes.
struct Place
{
    bool isSimulated = true;
    QString wallDigest = {};
};

/// What the host adds to a calibration's inputs: where it goes, as it was asked for.
QJsonObject inputsOf(const CalibrateArguments& arguments, const Place& place)
{
    const auto array = [](const std::vector<std::string>& list) {
        QJsonArray result;
        for (const std::string& entry : list)
            result.append(text(entry));
        return result;
    };
    return {{QStringLiteral("generation"), arguments.generation},
            {QStringLiteral("simulated"), place.isSimulated},
            {QStringLiteral("wall_sha256"), place.wallDigest},
            {QStringLiteral("device"), array(arguments.wall.devices)},
            {QStringLiteral("cabinet"), array(arguments.wall.cabinets)}};
}

/// Refuses a report's file that has no place or is somebody else's.
void checkReport(const QString& name, const QString& file, bool force)
{
    const QFileInfo info(file);
    const QString option = QStringLiteral("%1 %2").arg(name, file);
    if (info.exists() && !info.isFile() && !info.isDir())
        throw Fault{Fault::Kind::CannotCreate, option, QStringLiteral("a file"), QStringLiteral("a pipe or device")};
    if (info.isDir() || !info.absoluteDir().exists())
        throw Fault{Fault::Kind::CannotCreate, option, {}, QStringLiteral("expected a file in a folder that is there")};
    const QFileInfo place(info.absolutePath());
    if (!place.isWritable())
        throw Fault{Fault::Kind::CannotCreate, option, QStringLiteral("a folder that takes files"), place.filePath()};
    if (info.exists() && !Reports::isReport(file))
        require(Calibration::requireNewFile(file, force));
}

Reports::ReportFiles reportFilesOf(const CalibrateArguments& arguments, const Calibration::Folder& folder)
{
    Reports::ReportFiles files;
    for (const char* name : {"gamut-xy.svg", "gamut-uv.svg", "gray.svg"})
        files.charts << folder.in(QLatin1String(name));
    files.html = arguments.html.empty() ? folder.in(QStringLiteral("report.html")) : text(arguments.html);
    files.pdf = text(arguments.pdf);
    checkReport(QStringLiteral("--html"), files.html, arguments.gamuts.force);
    if (!files.pdf.isEmpty())
        checkReport(QStringLiteral("--pdf"), files.pdf, arguments.gamuts.force);
    return files;
}

Reports::ReportDetails detailsOf(const CalibrateArguments& arguments)
{
    Reports::ReportDetails details;
    details.generator = QStringLiteral("qualityctl " QUALITYCTL_VERSION);
    details.time = QDateTime::currentDateTime();
    for (const std::string& note : arguments.notes) {
        const auto equals = note.find('=');
        details.notes.emplace_back(text(note.substr(0, equals)), text(note.substr(equals + 1)));
    }
    return details;
}

Calibration::RunOptions runOptionsOf(const CalibrateArguments& arguments,
                                     const std::vector<Calibration::InputDigest>& inputs, const QStringList& outputs)
{
    Calibration::RunOptions options;
    options.resume = arguments.resume;
    options.force = arguments.gamuts.force;
    options.acceptance = arguments.acceptance;
    options.atOnce = arguments.atOnce;
    options.outputs = outputs;
    for (const Calibration::InputDigest& input : inputs)
        options.uses << input.name;
    return options;
}

/// The run, with what surrounds it on disk.
CommandResult calibrate(const CalibrateArguments& arguments, const Calibration::Content& content,
                        const Calibration::Figures& figures, Calibration::Destination& destination, const Place& place,
                        const Output& output)
{
    const auto folder = take(Calibration::Folder::open(text(arguments.out)));
    const Reports::ReportFiles files = reportFilesOf(arguments, *folder);
    QJsonObject inputs = inputsOf(arguments, place);
    const QJsonObject common = Calibration::inputsOf(content, destination);
    for (auto it = common.begin(); it != common.end(); ++it)
        inputs.insert(it.key(), it.value());
    const Interrupt interrupt(Interrupt::What::FinishRunning);
    auto result = [&] {
        Progress progress(output);
        return take(Calibration::run(content, figures, destination, inputs, *folder,
                                     runOptionsOf(arguments, content.files, files.all()), progress));
    }();
    const Reports::ReportDetails details = detailsOf(arguments);
    const auto reported = Reports::writeReport(result, content, details, files);
    QJsonObject json = Reports::toJson(result, content);
    QJsonArray notes;
    for (const auto& [name, value] : details.notes)
        notes.append(QJsonObject{{QStringLiteral("name"), name}, {QStringLiteral("value"), value}});
    json.insert(QStringLiteral("notes"), notes);
    auto fault = result.fault();
    if (!fault && !reported) { // the wall is calibrated all the same
        fault = reported.fault();
        fault->hint = QStringLiteral("the devices hold the correction; --resume writes the report again");
    }
    return {Reports::toText(result, content), json, fault};
}

/// Refuses what would not pass: integers that come too far from what they stand for, before anything is sent.
void requireHeld(const Calibration::Figures& figures, const Calibration::Acceptance& acceptance)
{
    if (figures.worstHeld() > acceptance.maxDifference)
        throw Fault{Fault::Kind::BadData, QStringLiteral("target %1").arg(Calibration::nameOf(figures.target)),
                    QStringLiteral("coefficients that come within CIEDE2000 %1").arg(acceptance.maxDifference),
                    QStringLiteral("%1: too dim, or a white too near the edge, for 14 bits")
                        .arg(figures.worstHeld(), 0, 'f', 2),
                    QStringLiteral("--force sends them all the same")};
}

CommandResult run(const CalibrateArguments& arguments, const Output& output)
{
    auto content = take(Calibration::readContent(namesOf(arguments)));
    HostLog::install(output.quiet);
    const auto figures = take(Calibration::computeFigures(content.measured, content.target));
    content.target = figures.target;
    if (!arguments.gamuts.force)
        requireHeld(figures, arguments.acceptance);
    if (arguments.generation == 3) {
        const HubPlaces hubs(arguments.hub, output);
        const auto destination = Calibration::hubDestination(hubs.targets(), content);
        return withRecording(
            calibrate(arguments, content, figures, *destination, {arguments.hub.isSimulated()}, output),
            hubs.recorder());
    }
    const OpenWall wall = openWall(arguments.wall);
    if (!wall.sha256.isEmpty())
        content.files.push_back({QStringLiteral("wall document"), wall.name, wall.sha256});
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
    const WallDevices devices(wall, arguments.wall, output);
    return withRecording(
        calibrate(arguments, content, figures, *toWall(devices.reader()), {devices.isSimulated(), wall.sha256}, output),
        wall.recorder.get());
}

/// Refuses what was given and has no meaning for the generation.
void checkGeneration(const CLI::App& command, int generation)
{
    static const std::vector<const char*> ofWalls{"--wall",   "--device",  "--cabinet",  "--seed",
                                                  "--binary", "--dry-run", "--transport"};
    static const std::vector<const char*> ofHubs{"--hub", "--host", "--port", "--timeout"};
    for (const char* name : generation == 3 ? ofWalls : ofHubs) {
        if (command.count(name) > 0)
            throw CLI::ValidationError(name, generation == 3 ? "does not go through a hub, which --generation 3 is"
                                                             : "is a hub's, which needs --generation 3");
    }
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
    command->add_option("--pdf", arguments->pdf, "The report as PDF, too");
    command
        ->add_option("--note", arguments->notes, "NAME=VALUE for the report (operator=..., site=...); may be repeated")
        ->check([](const std::string& note) {
            const auto equals = note.find('=');
            return equals == 0 || equals == std::string::npos ? "expected NAME=VALUE, found " + note : std::string();
        });
    command
        ->add_option("--parallel", arguments->atOnce,
                     "Devices or hubs that are served at the same time; 1: one after the other")
        ->check(CLI::Range(1, Calibration::maxAtOnce))
        ->capture_default_str();
    command->add_flag("--resume", arguments->resume, "Go on with the calibration that was begun in the folder");
    addAcceptance(*command, arguments->acceptance);
    CLI::Option* dryRun =
        command->add_flag("--dry-run", arguments->dryRun, "Print the requests instead of sending them");
    for (const char* name : {"--parallel", "--resume", "--html", "--pdf", "--note", "--max-de", "--strict"})
        dryRun->excludes(command->get_option(name));
    command->callback([&chosen, command, arguments] {
        checkGeneration(*command, arguments->generation);
        checkHub(arguments->hub);
        arguments->hub.record = arguments->wall.record;
        chosen = [arguments](const Output& output) { return run(*arguments, output); };
    });
}
