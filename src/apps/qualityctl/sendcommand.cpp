#include "commands.h"
#include "gamutargument.h"
#include "graytablefile.h"
#include "inputfile.h"
#include "sendrun.h"

#include <CLI/CLI.hpp>

#include <qualityutility/tool/sender4th/cabinetsender.h>

namespace {

using CabinetSenderSpace::CabinetSender;
using CabinetSenderSpace::CabinetTargetMap;
using Simulator::CabinetState;

constexpr int gamutCorrectionBit = 8;
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

SendStep grayStep(const SendArguments& arguments)
{
    const QString path = QString::fromStdString(arguments.table);
    const auto table = std::make_shared<const GrayTableFile>(readGrayTable(path));
    const int frequency = arguments.frequency;
    SendStep step;
    step.name = QStringLiteral("gray");
    step.summary = QStringLiteral("gray table %1, %2 levels, %3 Hz").arg(path).arg(table->red.size()).arg(frequency);
    step.send = [table, frequency](const CabinetTargetMap& targets) {
        return CabinetSender::setGrayScaleTable(targets, table->red, table->green, table->blue, table->magnitude,
                                                frequency);
    };
    step.hasArrived = [table, frequency](const CabinetState&, const CabinetState& now) {
        const auto equal = [](const QList<unsigned char>& sent, const std::vector<unsigned char>& held) {
            return std::equal(sent.begin(), sent.end(), held.begin(), held.end());
        };
        return now.grayTable && now.grayTable->freq == frequency && equal(table->red, now.grayTable->red) &&
               equal(table->green, now.grayTable->green) && equal(table->blue, now.grayTable->blue) &&
               equal(table->magnitude, now.grayTable->magnitude);
    };
    return step;
}

bool holdsPoints(const std::shared_ptr<const Model::ColorGamutInfo>& held, const Model::ColorGamutInfo& sent)
{
    return held && held->rLxy == sent.rLxy && held->gLxy == sent.gLxy && held->bLxy == sent.bLxy &&
           held->wLxy == sent.wLxy;
}

QString pointsText(const Model::ColorGamutInfo& gamut)
{
    const auto point = [](const Model::LXY& p) { return QStringLiteral("(%1, %2)").arg(p.x).arg(p.y); };
    return QStringLiteral("R%1 G%2 B%3 W%4")
        .arg(point(gamut.rLxy), point(gamut.gLxy), point(gamut.bLxy), point(gamut.wLxy));
}

SendStep gamutStep(const SendArguments& arguments)
{
    const auto gamut = parseGamut(arguments.gamut);
    SendStep step;
    step.name = QStringLiteral("gamut");
    step.summary = QStringLiteral("target gamut %1, %2").arg(QString::fromStdString(gamut.name), pointsText(gamut));
    step.send = [gamut](const CabinetTargetMap& targets) { return CabinetSender::uploadNiccData(targets, gamut); };
    step.hasArrived = [gamut](const CabinetState&, const CabinetState& now) {
        return holdsPoints(now.targetGamut, gamut) && now.targetGamut->name == gamut.name;
    };
    return step;
}

SendStep measureStep(const SendArguments& arguments)
{
    const auto gamut = parseGamut(arguments.measured);
    SendStep step;
    step.name = QStringLiteral("measure");
    step.summary = QStringLiteral("measured gamut %1").arg(pointsText(gamut));
    step.send = [gamut](const CabinetTargetMap& targets) { return CabinetSender::uploadNiccMeasure(targets, gamut); };
    step.hasArrived = [gamut](const CabinetState&, const CabinetState& now) {
        return holdsPoints(now.measuredGamut, gamut);
    };
    return step;
}

SendStep coefficientsStep(const SendArguments& arguments)
{
    std::vector<unsigned short> bits;
    for (const int value : arguments.coefficients)
        bits.push_back(static_cast<unsigned short>(value)); // two's complement
    Model::ColorGamutInfo gamut;
    gamut.coeff.setCoeffs(bits);
    SendStep step;
    step.name = QStringLiteral("coefficients");
    step.summary = QStringLiteral("9 correction coefficients");
    step.send = [gamut](const CabinetTargetMap& targets) { return CabinetSender::setColorManageMode(targets, gamut); };
    step.hasArrived = [bits](const CabinetState&, const CabinetState& now) { return now.coefficients == bits; };
    return step;
}

SendStep modeStep(const SendArguments& arguments)
{
    const bool isOn = arguments.correction == "on";
    const bool keepOthers = !arguments.exclusive;
    SendStep step;
    step.name = QStringLiteral("mode");
    step.summary = QStringLiteral("gamut correction %1%2")
                       .arg(QString::fromStdString(arguments.correction),
                            keepOthers ? QString() : QStringLiteral(", all other corrections off"));
    step.send = [isOn, keepOthers](const CabinetTargetMap& targets) {
        return CabinetSender::gamutCorrectEffectMode(targets, isOn, keepOthers);
    };
    step.hasArrived = [isOn, keepOthers](const CabinetState& before, const CabinetState& now) {
        const int others = keepOthers ? before.mode & ~gamutCorrectionBit : 0;
        return now.mode == (others | (isOn ? gamutCorrectionBit : 0));
    };
    // One call gives all its cabinets the mode that follows from the first one's: cabinets that differ get calls of
    // their own.
    step.groupBy = [](const Model::Cabinet& cabinet) {
        return static_cast<int>(cabinet.getDisplayEffectPara().getEffectMode());
    };
    return step;
}

SendStep binStep(const SendArguments& arguments)
{
    const QString path = QString::fromStdString(arguments.binary);
    const QByteArray content = readInputFile(path, QStringLiteral("binary"));
    SendStep step;
    step.name = QStringLiteral("bin");
    step.summary = QStringLiteral("receiving-card binary %1, %2 bytes").arg(path).arg(content.size());
    step.send = [path](const CabinetTargetMap& targets) { return CabinetSender::sendRvcardBin(targets, path); };
    step.hasArrived = [content](const CabinetState&, const CabinetState& now) {
        return now.binary && *now.binary == content;
    };
    return step;
}

/// Everything that was given, in the order in which a cabinet should get it: the correction is switched on last.
std::vector<SendStep> allSteps(const SendArguments& arguments)
{
    std::vector<SendStep> steps;
    if (!arguments.binary.empty())
        steps.push_back(binStep(arguments));
    if (!arguments.table.empty())
        steps.push_back(grayStep(arguments));
    if (!arguments.measured.empty())
        steps.push_back(measureStep(arguments));
    if (!arguments.gamut.empty())
        steps.push_back(gamutStep(arguments));
    if (!arguments.coefficients.empty())
        steps.push_back(coefficientsStep(arguments));
    if (!arguments.correction.empty())
        steps.push_back(modeStep(arguments));
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
    addTable(*addSend(*send, chosen, "gray", "Send a gray-scale table", arguments, one(grayStep)), *arguments, true);
    arguments = fresh();
    addGamut(*addSend(*send, chosen, "gamut", "Send the target gamut", arguments, one(gamutStep)), arguments->gamut,
             "--gamut", true);
    arguments = fresh();
    addCoefficients(
        *addSend(*send, chosen, "coefficients", "Send correction coefficients", arguments, one(coefficientsStep)),
        *arguments, true);
    arguments = fresh();
    addGamut(*addSend(*send, chosen, "measure", "Send the measured gamut", arguments, one(measureStep)),
             arguments->measured, "--gamut", true);
    arguments = fresh();
    addCorrection(*addSend(*send, chosen, "mode", "Switch the gamut correction", arguments, one(modeStep)), *arguments,
                  "--gamut", true);
    arguments = fresh();
    addSend(*send, chosen, "bin", "Send a receiving-card binary", arguments, one(binStep))
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
