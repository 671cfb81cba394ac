#include "commands.h"
#include "gamutargument.h"
#include "graytablefile.h"
#include "hubclient.h"
#include "interrupt.h"

#include <CLI/CLI.hpp>

#include <QEventLoop>

#include <limits>

namespace {

using CabinetSenderSpace::CabinetSender3th;

/// What the sender leaves where the hub's reply has no figure.
constexpr int notGiven = std::numeric_limits<int>::min();

struct HubArguments
{
    HubAddress hub;
    std::string table;
    std::string gamut;
};

CommandResult done(const HubClient& hub, const QString& what, double seconds, QJsonObject json = {})
{
    json.insert(QStringLiteral("hub"), hub.name());
    json.insert(QStringLiteral("seconds"), seconds);
    return {QStringLiteral("%1: %2, %3 s\n").arg(hub.name(), what).arg(seconds, 0, 'f', 4), json};
}

QString figureText(int figure)
{
    return figure == notGiven ? QStringLiteral("not given") : QString::number(figure);
}

QJsonValue figureJson(int figure)
{
    return figure == notGiven ? QJsonValue(QJsonValue::Null) : QJsonValue(figure);
}

CommandResult queryFineGray(const HubArguments& arguments, const Output& output, const QString& what)
{
    HubClient hub(arguments.hub, output);
    int level = notGiven;
    int mode = notGiven;
    const double seconds =
        hub.run([&](CabinetSender3th& sender) { return sender.getFineGrayConfig({}, 0, level, mode); });
    return done(hub, what.arg(figureText(level), figureText(mode)), seconds,
                {{QStringLiteral("level"), figureJson(level)}, {QStringLiteral("mode"), figureJson(mode)}});
}

CommandResult ping(const HubArguments& arguments, const Output& output)
{
    return queryFineGray(arguments, output, QStringLiteral("alive (level %1, mode %2)"));
}

CommandResult fineGray(const HubArguments& arguments, const Output& output)
{
    return queryFineGray(arguments, output, QStringLiteral("level %1, mode %2"));
}

CommandResult sendGray(const HubArguments& arguments, const Output& output)
{
    const GrayTableFile table = readGrayTable(QString::fromStdString(arguments.table));
    HubClient hub(arguments.hub, output);
    const double seconds = hub.run([&](CabinetSender3th& sender) {
        return sender.setGrayScaleTable({}, table.red, table.green, table.blue, table.magnitude, 0);
    });
    return done(hub, QStringLiteral("took a gray table of %1 levels").arg(table.red.size()), seconds,
                {{QStringLiteral("gray_levels"), table.red.size()}});
}

CommandResult sendGamut(const HubArguments& arguments, const Output& output)
{
    const auto gamut = parseGamut(arguments.gamut);
    HubClient hub(arguments.hub, output);
    const double seconds = hub.run([&](CabinetSender3th& sender) { return sender.uploadNiccData({}, gamut); });
    return done(hub, QStringLiteral("took the target gamut %1").arg(QString::fromStdString(gamut.name)), seconds);
}

CommandResult sendMeasure(const HubArguments& arguments, const Output& output)
{
    const auto gamut = parseGamut(arguments.gamut);
    HubClient hub(arguments.hub, output);
    const double seconds = hub.run([&](CabinetSender3th& sender) { return sender.uploadNiccMeasure({}, gamut); });
    return done(hub, QStringLiteral("took the measured gamut"), seconds);
}

CommandResult serve(const HubArguments& arguments, const Output& output)
{
    const Interrupt interrupt; // before the port is told: who knows it may end this at once
    QString error;
    const int wanted = arguments.hub.port;
    const auto hub = Simulator::SimulatedHub::start(static_cast<quint16>(wanted), error);
    if (!hub)
        throw CommandError{ExitCode::Unavailable, QStringLiteral("hub serve: %1").arg(error)};
    const bool isKnown = wanted != 0;
    Output{output.json, output.quiet && isKnown}.note(
        QStringLiteral("qualityctl: simulated hub on 127.0.0.1:%1; Ctrl-C ends it").arg(hub->port()));
    QEventLoop loop;
    loop.exec();
    const qint64 requests = hub->requestCount();
    return {QStringLiteral("served %1 requests\n").arg(requests),
            {{QStringLiteral("port"), hub->port()}, {QStringLiteral("requests"), requests}}};
}

using Run = CommandResult (*)(const HubArguments&, const Output&);

/// Adds a command that talks to a hub; the options of what it sends are the caller's to add.
CLI::App* addCommand(CLI::App& parent, Command& chosen, const char* name, const char* description, Run run,
                     const std::shared_ptr<HubArguments>& arguments)
{
    CLI::App* command = parent.add_subcommand(name, description);
    addHubAddress(*command, arguments->hub);
    command->callback([&chosen, arguments, run] {
        checkHubAddress(arguments->hub);
        chosen = [arguments, run](const Output& output) { return run(*arguments, output); };
    });
    return command;
}

} // namespace

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

void addHubAddress(CLI::App& command, HubAddress& address)
{
    command.add_option("--host", address.host, "The hub's host; with --port alone this machine");
    command.add_option("--port", address.port, "The hub's port")->check(CLI::Range(0, 65535));
    command.add_option("--timeout", address.timeout, "Longest wait for a reply, in seconds")
        ->check(finiteNumber(0.001, 86400.0))
        ->capture_default_str();
}

void checkHubAddress(const HubAddress& address)
{
    if (!address.host.empty() && address.port == 0)
        throw CLI::ValidationError("--host", "needs --port");
}

void addHubCommands(CLI::App& app, Command& chosen)
{
    CLI::App* hub = app.add_subcommand("hub", "Talk to the message hub of third-generation cabinets");
    hub->require_subcommand(1);
    const auto fresh = [] { return std::make_shared<HubArguments>(); };

    const auto served = fresh();
    CLI::App* server = hub->add_subcommand("serve", "Run the simulated hub, for other clients too");
    server->add_option("--port", served->hub.port, "Port; 0: the system chooses")
        ->check(CLI::Range(0, 65535))
        ->capture_default_str();
    server->callback([&chosen, served] { chosen = [served](const Output& output) { return serve(*served, output); }; });

    addCommand(*hub, chosen, "ping", "Ask whether the hub answers", ping, fresh());
    addCommand(*hub, chosen, "fine-gray", "Ask for the fine-gray configuration", fineGray, fresh());
    CLI::App* send = hub->add_subcommand("send", "Send picture-quality data through the hub");
    send->require_subcommand(1);
    auto arguments = fresh();
    addCommand(*send, chosen, "gray", "Send a gray-scale table", sendGray, arguments)
        ->add_option("--table", arguments->table, "Gray table: text or CSV with red, green, blue, magnitude (0..255)")
        ->required();
    constexpr auto gamutHelp = "Gamut: a standard name, a JSON file, or rx,ry:gx,gy:bx,by:wx,wy[:cd_m2]";
    arguments = fresh();
    addCommand(*send, chosen, "gamut", "Send the target gamut", sendGamut, arguments)
        ->add_option("--gamut", arguments->gamut, gamutHelp)
        ->required();
    arguments = fresh();
    addCommand(*send, chosen, "measure", "Send the measured gamut", sendMeasure, arguments)
        ->add_option("--gamut", arguments->gamut, gamutHelp)
        ->required();
}
