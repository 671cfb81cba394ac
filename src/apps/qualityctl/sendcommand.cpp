#include "commands.h"
#include "gamutargument.h"
#include "sendrun.h"
#include "sendsteps.h"

#include <CLI/CLI.hpp>

namespace {

constexpr size_t coefficientCount = 9;

/// What the send commands take; each uses its part.
struct SendArguments
{
    SendOptions options;
    std::string table;
    int frequency = 60;
    std::string gamut;
    std::string measured;
    std::vector<int> coefficients;
    std::string binary;
    std::string correction; ///< "on", "off" or empty
    bool exclusive = false;
};

// A step from the arguments that it needs.

SendStep givenGray(const SendArguments& arguments)
{
    return grayStep(QString::fromStdString(arguments.table), arguments.frequency);
}

SendStep givenGamut(const SendArguments& arguments)
{
    return gamutStep(parseGamut(arguments.gamut));
}

SendStep givenMeasure(const SendArguments& arguments)
{
    return measureStep(parseGamut(arguments.measured));
}

SendStep givenCoefficients(const SendArguments& arguments)
{
    // Two's complement.
    return coefficientsStep({arguments.coefficients.begin(), arguments.coefficients.end()});
}

SendStep givenMode(const SendArguments& arguments)
{
    return modeStep(arguments.correction == "on", !arguments.exclusive);
}

SendStep givenBin(const SendArguments& arguments)
{
    return binStep(QString::fromStdString(arguments.binary));
}

/// Everything that was given, in the order in which a cabinet should get it: the correction is switched on last.
std::vector<SendStep> allSteps(const SendArguments& arguments)
{
    std::vector<SendStep> steps;
    if (!arguments.binary.empty())
        steps.push_back(givenBin(arguments));
    if (!arguments.table.empty())
        steps.push_back(givenGray(arguments));
    if (!arguments.measured.empty())
        steps.push_back(givenMeasure(arguments));
    if (!arguments.gamut.empty())
        steps.push_back(givenGamut(arguments));
    if (!arguments.coefficients.empty())
        steps.push_back(givenCoefficients(arguments));
    if (!arguments.correction.empty())
        steps.push_back(givenMode(arguments));
    if (steps.empty())
        throw CommandError{
            ExitCode::Usage, QStringLiteral("send all: nothing to send"),
            QStringLiteral("give at least one of --table, --gamut, --measured, --coefficients, --correction, --bin")};
    return steps;
}

void addTargets(CLI::App& command, SendOptions& options)
{
    command.add_option("--wall", options.wall.file, "Wall document; the built-in example wall without one");
    command.add_option("--device", options.wall.devices, "Only this device; may be repeated");
    command.add_option("--cabinet", options.wall.cabinets, "Only these cabinets: identifiers or ranges, as 1,2,5-9")
        ->delimiter(',');
    command.add_option("--seed", options.seed, "Seed of the simulated faults")->capture_default_str();
    command.add_flag("--dry-run", options.dryRun, "Print the requests instead of sending them");
}

using Steps = std::function<std::vector<SendStep>(const SendArguments&)>;

CLI::App* addSend(CLI::App& parent, Command& chosen, const char* name, const char* description,
                  const std::shared_ptr<SendArguments>& arguments, const Steps& steps)
{
    CLI::App* command = parent.add_subcommand(name, description);
    addTargets(*command, arguments->options);
    command->callback([&chosen, arguments, steps] {
        chosen = [arguments, steps](const Output& output) {
            return runSend(steps(*arguments), arguments->options, output);
        };
    });
    return command;
}

Steps one(SendStep (*make)(const SendArguments&))
{
    return [make](const SendArguments& arguments) { return std::vector<SendStep>{make(arguments)}; };
}

// The options of the single commands and of "all".

void addTable(CLI::App& command, SendArguments& arguments, bool required)
{
    command.add_option("--table", arguments.table, "Gray table: text or CSV with red, green, blue, magnitude (0..255)")
        ->required(required);
    command.add_option("--frequency", arguments.frequency, "Refresh frequency in Hz")
        ->check(CLI::PositiveNumber)
        ->capture_default_str();
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

void addCorrection(CLI::App& command, SendArguments& arguments, const char* option, bool required)
{
    command.add_option(option, arguments.correction, "Gamut correction: on or off")
        ->check(CLI::IsMember({"on", "off"}))
        ->required(required);
    command.add_flag("--exclusive", arguments.exclusive, "Switch all other corrections off");
}

void addGamut(CLI::App& command, std::string& gamut, const char* option, bool required)
{
    command.add_option(option, gamut, "Gamut: a standard name, a JSON file, or rx,ry:gx,gy:bx,by:wx,wy[:cd_m2]")
        ->required(required);
}

} // namespace

void addSendCommands(CLI::App& app, Command& chosen)
{
    CLI::App* send = app.add_subcommand("send", "Send picture-quality data to cabinets");
    send->require_subcommand(1);
    const auto fresh = [] { return std::make_shared<SendArguments>(); };

    auto arguments = fresh();
    addTable(*addSend(*send, chosen, "gray", "Send a gray-scale table", arguments, one(givenGray)), *arguments, true);
    arguments = fresh();
    addGamut(*addSend(*send, chosen, "gamut", "Send the target gamut", arguments, one(givenGamut)), arguments->gamut,
             "--gamut", true);
    arguments = fresh();
    addCoefficients(
        *addSend(*send, chosen, "coefficients", "Send correction coefficients", arguments, one(givenCoefficients)),
        *arguments, true);
    arguments = fresh();
    addGamut(*addSend(*send, chosen, "measure", "Send the measured gamut", arguments, one(givenMeasure)),
             arguments->measured, "--gamut", true);
    arguments = fresh();
    addCorrection(*addSend(*send, chosen, "mode", "Switch the gamut correction", arguments, one(givenMode)), *arguments,
                  "--gamut", true);
    arguments = fresh();
    addSend(*send, chosen, "bin", "Send a receiving-card binary", arguments, one(givenBin))
        ->add_option("--file", arguments->binary, "The binary")
        ->required();

    arguments = fresh();
    CLI::App* all = addSend(*send, chosen, "all", "Send everything that is given", arguments, allSteps);
    addTable(*all, *arguments, false);
    addGamut(*all, arguments->gamut, "--gamut", false);
    addGamut(*all, arguments->measured, "--measured", false);
    addCoefficients(*all, *arguments, false);
    addCorrection(*all, *arguments, "--correction", false);
    all->add_option("--bin", arguments->binary, "Receiving-card binary");
}
