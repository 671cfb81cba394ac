#include "options.h"

#include "wallargument.h"
#include <calibration/serving.h>

#include <CLI/CLI.hpp>
#include <recording/recorder.h>

#include <set>

void addWall(CLI::App& command, std::string& file)
{
    command.add_option("--wall", file, "Wall document; without one the devices' own, or the built-in example wall");
}

void addRecord(CLI::App& command, std::string& file)
{
    command.add_option("--record", file, "Write what goes over the gateway or the hubs' sessions to this new file")
        ->check([](const std::string& text) {
            return text.empty() || text == "-" ? "expected a new file, found \"" + text + "\"" : std::string();
        });
}

CommandResult withRecording(CommandResult result, const Recording::Recorder* recorder)
{
    const auto state = recorder ? recorder->state() : Common::Result<void>();
    if (!state && !result.error) {
        result.error = state.fault();
        result.error->hint = QStringLiteral("the recording ends there, what else was asked for is done");
    }
    return result;
}

void addTransport(CLI::App& command, WallArgument& argument)
{
    command
        .add_option("--transport", argument.transport,
                    "Where the devices are: simulated (here), gateway:HOST:PORT, or plugin:FILE[=ARGUMENT]")
        ->check([](const std::string& text) {
            const auto name = parseTransport(text);
            return name ? std::string() : name.fault().message().toStdString();
        })
        ->capture_default_str();
    addRecord(command, argument.record);
}

void addTargets(CLI::App& command, WallArgument& argument)
{
    addWall(command, argument.file);
    addTransport(command, argument);
    command.add_option("--device", argument.devices, "Only this device; may be repeated");
    command.add_option("--cabinet", argument.cabinets, "Only these cabinets: identifiers or ranges, as 1,2,5-9")
        ->delimiter(',');
    command.add_option("--seed", argument.seed, "Seed of the simulated faults; 1 without it");
}

void addGamut(CLI::App& command, std::string& gamut, const char* names, const char* what, bool required)
{
    command
        .add_option(names, gamut,
                    std::string(what) + " a standard name, a file (.ti3, CSV, JSON, .nicc) or "
                                        "rx,ry:gx,gy:bx,by:WHITE, with :CD_M2 of white behind it where wanted")
        ->required(required);
}

Calibration::ContentNames GamutArguments::names() const
{
    Calibration::ContentNames names;
    names.measured = QString::fromStdString(measured);
    names.white = whiteSourceOf(white);
    names.target = QString::fromStdString(target);
    names.force = force;
    return names;
}

Calibration::WhiteSource whiteSourceOf(const std::string& white)
{
    return white == "sum" ? Calibration::WhiteSource::Sum : Calibration::WhiteSource::Measured;
}

void addWhite(CLI::App& command, std::string& white)
{
    command.add_option("--white", white, "The LEDs' white that counts: as measured, or the sum of red, green and blue")
        ->check(CLI::IsMember({"measured", "sum"}))
        ->capture_default_str();
}

void addGamuts(CLI::App& command, GamutArguments& gamuts, const char* measured, const char* target)
{
    addGamut(command, gamuts.measured, measured, "The LEDs' gamut:", true);
    addGamut(command, gamuts.target, target, targetText, true);
    addWhite(command, gamuts.white);
}

void addTable(CLI::App& command, TableArgument& table, bool required)
{
    CLI::Option* file =
        command.add_option("--table", table.file, "Gray table: text or CSV with red, green, blue, magnitude (0..255)")
            ->required(required);
    command.add_option("--frequency", table.frequency, "Refresh frequency in Hz")
        ->needs(file)
        ->check(CLI::PositiveNumber)
        ->capture_default_str();
}

void addBinary(CLI::App& command, std::string& binary, bool required)
{
    command.add_option("--binary", binary, "Receiving-card binary")->required(required);
}

void addOutputFolder(CLI::App& command, std::string& folder, bool& force)
{
    command.add_option("--out", folder, "Folder for the files; made when it is missing")->required();
    command.add_flag("--force", force, "Replace files that are there");
}

void addPlane(CLI::App& command, std::string& plane)
{
    command.add_option("--plane", plane, "xy: CIE 1931; uv: CIE 1976 u'v'")
        ->check(CLI::IsMember({"xy", "uv"}))
        ->capture_default_str();
}

void addChartFile(CLI::App& command, std::string& file, bool& force)
{
    command.add_option("--out", file, "The chart's file, .svg or .png")->required();
    command.add_flag("--force", force, "Replace a file that is there");
}

void addAcceptance(CLI::App& command, Calibration::Acceptance& acceptance)
{
    command
        .add_option("--max-de", acceptance.maxDifference,
                    "Largest CIEDE2000 of corners and grays from the nearest colours that the LEDs reach")
        ->check(finiteNumber(0.0, 1000.0))
        ->capture_default_str();
    command.add_flag("--strict", acceptance.isStrict, "Count colours out of the LEDs' reach: compare with the target");
}

std::vector<Calibration::HubAddress> HubArgument::addresses() const
{
    if (hubs.empty())
        return {{host.empty() ? QStringLiteral("127.0.0.1") : QString::fromStdString(host), static_cast<quint16>(port),
                 timeout}};
    std::vector<Calibration::HubAddress> addresses;
    for (const std::string& hub : hubs) {
        addresses.push_back(take(Calibration::parseHubAddress(QString::fromStdString(hub))));
        addresses.back().timeout = timeout;
    }
    return addresses;
}

void addHub(CLI::App& command, HubArgument& hub)
{
    command
        .add_option("--hub", hub.hubs, "A hub as HOST:PORT, IPv6 as [::1]:9000; may be repeated, for several at once")
        ->check([](const std::string& text) {
            const auto address = Calibration::parseHubAddress(QString::fromStdString(text));
            return address ? std::string() : address.fault().message().toStdString();
        });
    command.add_option("--host", hub.host, "The hub's host; with --port alone this machine");
    command.add_option("--port", hub.port, "The hub's port")->check(CLI::Range(1, 65535));
    command.add_option("--timeout", hub.timeout, "Longest wait for a reply, in seconds")
        ->check(finiteNumber(0.001, 86400.0))
        ->capture_default_str();
}

void checkHub(const HubArgument& hub)
{
    if (!hub.host.empty() && hub.port == 0)
        throw CLI::ValidationError("--host", "needs --port");
    if (!hub.hubs.empty() && (!hub.host.empty() || hub.port != 0))
        throw CLI::ValidationError("--hub", "names the hubs; --host and --port name one without it");
    if (hub.hubs.size() > Calibration::maxAtOnce)
        throw CLI::ValidationError("--hub", "expected at most " + std::to_string(Calibration::maxAtOnce) +
                                                " hubs, found " + std::to_string(hub.hubs.size()));
    std::set<QString> names;
    for (const Calibration::HubAddress& address : hub.addresses()) {
        if (!names.insert(address.name()).second)
            throw CLI::ValidationError("--hub",
                                       "expected each hub once, found " + address.text().toStdString() + " twice");
    }
}

CLI::Validator finiteNumber(double min, double max)
{
    return CLI::Validator(
        [min, max](const std::string& text) {
            bool isNumber = false;
            const double value = QString::fromStdString(text).toDouble(&isNumber);
            if (isNumber && value >= min && value <= max)
                return std::string();
            return "expected a number from " + QString::number(min).toStdString() + " to " +
                   QString::number(max).toStdString() + ", found " + text;
        },
        "NUMBER");
}
