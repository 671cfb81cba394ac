#include "commands.h"
#include "dryrun.h"
#include "hostlog.h"
#include "interrupt.h"
#include "options.h"
#include "progress.h"
#include "wallargument.h"
#include <calibration/graytable.h>
#include <calibration/steps.h>
#include <reports/measurementreport.h>
#include <reports/sendreport.h>
#include <suite/colour/correction.h>

#include <CLI/CLI.hpp>

namespace {

using Calibration::Step;

constexpr size_t coefficientCount = 9;

/// What the send commands take; each uses its part.
struct SendArguments
{
    WallArgument wall;
    bool dryRun = false;
    TableArgument table;
    GamutArguments gamuts; ///< force: coefficients whose white lacks a primary go out all the same, too
    std::vector<int> coefficients;
    std::string binary;
    std::string correction; ///< "on", "off" or empty
    bool exclusive = false;
};

/// A row that sums to zero or less takes its primary out of white, or makes the wall dark.
void requireLitWhite(const std::vector<int>& coefficients)
{
    Colour::Coefficients checked{};
    std::copy(coefficients.begin(), coefficients.end(), checked.begin());
    const auto sums = Colour::rowSums(checked);
    const char* const channels[] = {"red", "green", "blue"};
    for (std::size_t row = 0; row < sums.size(); ++row)
        if (sums[row] <= 0)
            throw Fault{Fault::Kind::BadData,
                        QStringLiteral("--coefficients, row of %1").arg(QLatin1String(channels[row])),
                        QStringLiteral("a sum above 0, the drive of white"), QString::number(sums[row]),
                        QStringLiteral("--force sends them all the same")};
}

/// What was given, in the order in which a cabinet should get it: the correction is switched on last.
std::vector<Step> stepsOf(const SendArguments& arguments, QStringList& warnings)
{
    std::vector<Step> steps;
    if (!arguments.binary.empty()) {
        const auto input =
            take(Calibration::readInput(QString::fromStdString(arguments.binary), QStringLiteral("binary")));
        steps.push_back(Calibration::binaryStep(input.bytes, input.name));
    }
    if (!arguments.table.file.empty()) {
        const auto table =
            take(Calibration::readGrayTable(QString::fromStdString(arguments.table.file), arguments.table.frequency));
        steps.push_back(Calibration::grayStep(table.table, table.file.name));
    }
    const Calibration::ContentNames gamuts = arguments.gamuts.names();
    if (!gamuts.measured.isEmpty()) {
        const auto measurement = take(Calibration::readMeasuredToSend(gamuts));
        warnings = warningsOf(measurement, gamuts.white);
        steps.push_back(Calibration::measureStep(measurement.gamut));
    }
    if (!gamuts.target.isEmpty())
        steps.push_back(Calibration::gamutStep(take(Calibration::readTargetToSend(gamuts))));
    if (!arguments.coefficients.empty()) {
        if (!arguments.gamuts.force)
            requireLitWhite(arguments.coefficients);
        // Two's complement.
        steps.push_back(Calibration::coefficientsStep({arguments.coefficients.begin(), arguments.coefficients.end()}));
    }
    if (!arguments.correction.empty())
        steps.push_back(Calibration::modeStep(arguments.correction == "on", !arguments.exclusive));
    if (steps.empty())
        throw Fault{Fault::Kind::Usage,
                    QStringLiteral("send all"),
                    {},
                    QStringLiteral("nothing to send"),
                    QStringLiteral("give at least one of --table, --target, --measured, --coefficients, --correction, "
                                   "--binary")};
    return steps;
}

CommandResult runSend(const SendArguments& arguments, const Output& output)
{
    HostLog::install(output.quiet);
    Reports::SendResult result;
    QStringList warnings;
    result.steps = stepsOf(arguments, warnings);
    const OpenWall wall = openWall(arguments.wall);
    if (arguments.dryRun)
        return dryRun([&] {
            Calibration::Observer nobody;
            Calibration::sendSteps(result.steps, wall.targets, nullptr, nobody);
        });
    const WallDevices devices(wall, arguments.wall, output);
    result.isSimulated = devices.isSimulated();
    result.isRead = devices.reader() != nullptr;
    const Interrupt interrupt;
    const auto read = [&] {
        return devices.reader() ? Calibration::readBack(*devices.reader(), wall.targets) : Calibration::CabinetStates();
    };
    result.before = read();
    {
        Progress progress(output);
        result.outcomes = Calibration::sendSteps(result.steps, wall.targets, devices.reader(), progress);
    }
    result.now = read();
    CommandResult command{Reports::warningLines(warnings) + Reports::toText(result), Reports::toJson(result),
                          Calibration::faultOf(result.outcomes, Interrupt::isRequested())};
    command.json.insert(QStringLiteral("wall"), wall.name);
    command.json.insert(QStringLiteral("warnings"), QJsonArray::fromStringList(warnings));
    return withRecording(std::move(command), wall.recorder.get());
}

void addCoefficients(CLI::App& command, SendArguments& arguments, bool required)
{
    command
        .add_option("--coefficients", arguments.coefficients, "Nine integers, row-major, signed Q1.14 (1.0 is 16384)")
        ->delimiter(',')
        ->expected(static_cast<int>(coefficientCount))
        ->check(CLI::Range(-32768, 32767))
        ->required(required);
}

void addCorrection(CLI::App& command, SendArguments& arguments, bool required)
{
    command.add_option("--correction", arguments.correction, "Gamut correction: on or off")
        ->check(CLI::IsMember({"on", "off"}))
        ->required(required);
    command.add_flag("--exclusive", arguments.exclusive, "Switch all other corrections off");
}

using AddOptions = void (*)(CLI::App&, SendArguments&, bool required);

void addSend(CLI::App& parent, Command& chosen, const char* name, const char* description,
             std::initializer_list<AddOptions> options)
{
    CLI::App* command = parent.add_subcommand(name, description);
    const auto arguments = std::make_shared<SendArguments>();
    addTargets(*command, arguments->wall);
    command->add_flag("--dry-run", arguments->dryRun, "Print the requests instead of sending them");
    command->add_flag("--force", arguments->gamuts.force,
                      "Send primaries that look swapped, and coefficients whose white lacks a primary");
    for (const AddOptions add : options)
        add(*command, *arguments, options.size() == 1);
    command->callback(
        [&chosen, arguments] { chosen = [arguments](const Output& output) { return runSend(*arguments, output); }; });
}

} // namespace

void addSendCommands(CLI::App& app, Command& chosen)
{
    CLI::App* send = app.add_subcommand("send", "Send picture-quality data to cabinets");
    send->require_subcommand(1);
    const AddOptions table = [](CLI::App& command, SendArguments& arguments, bool required) {
        addTable(command, arguments.table, required);
    };
    const AddOptions target = [](CLI::App& command, SendArguments& arguments, bool required) {
        addGamut(command, arguments.gamuts.target, "--target", targetText, required);
    };
    const AddOptions measured = [](CLI::App& command, SendArguments& arguments, bool required) {
        addGamut(command, arguments.gamuts.measured, "--measured", "The LEDs' gamut:", required);
    };
    const AddOptions binary = [](CLI::App& command, SendArguments& arguments, bool required) {
        addBinary(command, arguments.binary, required);
    };
    addSend(*send, chosen, "gray", "Send a gray-scale table", {table});
    addSend(*send, chosen, "gamut", "Send the target gamut", {target});
    addSend(*send, chosen, "measure", "Send the measured gamut", {measured});
    addSend(*send, chosen, "coefficients", "Send correction coefficients", {addCoefficients});
    addSend(*send, chosen, "mode", "Switch the gamut correction", {addCorrection});
    addSend(*send, chosen, "binary", "Send a receiving-card binary", {binary});
    addSend(*send, chosen, "all", "Send everything that is given",
            {table, target, measured, addCoefficients, addCorrection, binary});
}
