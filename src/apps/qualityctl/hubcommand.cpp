#include "commands.h"
#include "hostlog.h"
#include "hubargument.h"
#include "interrupt.h"
#include <calibration/gamut.h>
#include <calibration/graytable.h>
#include <simulator/simulatedhub.h>

#include <CLI/CLI.hpp>

#include <QEventLoop>
#include <QJsonArray>

#include <future>
#include <limits>

namespace {

using CabinetSenderSpace::CabinetSender3th;

/// What the sender leaves where the hub's reply has no figure.
constexpr int notGiven = std::numeric_limits<int>::min();

struct HubArguments
{
    HubArgument hub;
    TableArgument table;
    GamutArguments gamuts; ///< one of them
};

/// What a hub has answered, in both forms.
struct Answer
{
    QString text;
    QJsonObject json;
};

/// Asks a hub, on its thread, and says what it answered; the result is the sender's.
using Operation = std::function<int(CabinetSender3th&, Answer&)>;

/// Connects to a hub and asks it; blocks until it has answered.
Common::Result<Answer> ask(const Calibration::HubTarget& target, const Operation& operation)
{
    const auto hub = Calibration::HubClient::connect(target.address, target.tap);
    if (!hub)
        return hub.fault();
    Answer answer;
    const auto seconds = (*hub)->run([&](CabinetSender3th& sender) { return operation(sender, answer); });
    if (!seconds)
        return seconds.fault();
    answer.json.insert(QStringLiteral("seconds"), *seconds);
    answer.text = QStringLiteral("%1: %2, %3 s\n").arg((*hub)->name(), answer.text, QString::number(*seconds, 'f', 4));
    return answer;
}

/// What several hubs have answered: each on a line, and in a list. The first that failed ends the command.
void add(const Common::Result<Answer>& answer, QJsonObject json, QJsonArray& list, CommandResult& result)
{
    json.insert(QStringLiteral("ok"), static_cast<bool>(answer));
    if (!answer)
        json.insert(QStringLiteral("error"), toJson(answer.fault()));
    if (!answer && !result.error)
        result.error = answer.fault();
    result.text += answer ? answer->text : answer.fault().message() + QLatin1Char('\n');
    list.append(json);
}

/// One exchange with each hub, with all of them at once.
CommandResult exchange(const HubArguments& arguments, const Output& output, const Operation& operation)
{
    HostLog::install(output.quiet);
    const HubPlaces hubs(arguments.hub, output);
    std::vector<std::future<Common::Result<Answer>>> asked;
    for (const Calibration::HubTarget& hub : hubs.targets())
        asked.push_back(std::async(std::launch::async, ask, hub, operation));
    CommandResult result;
    QJsonArray list;
    for (std::size_t i = 0; i < asked.size(); ++i) {
        const auto answer = asked[i].get();
        QJsonObject json = answer ? answer->json : QJsonObject();
        json.insert(QStringLiteral("hub"), hubs.targets()[i].address.name());
        json.insert(QStringLiteral("simulated"), arguments.hub.isSimulated());
        if (asked.size() == 1)
            return withRecording({take(answer).text, json}, hubs.recorder());
        add(answer, json, list, result);
    }
    result.json.insert(QStringLiteral("hubs"), list);
    return withRecording(std::move(result), hubs.recorder());
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
    return exchange(arguments, output, [&what](CabinetSender3th& sender, Answer& answer) {
        int level = notGiven;
        int mode = notGiven;
        const int result = sender.getFineGrayConfig({}, 0, level, mode);
        answer = {what.arg(figureText(level), figureText(mode)),
                  {{QStringLiteral("level"), figureJson(level)}, {QStringLiteral("mode"), figureJson(mode)}}};
        return result;
    });
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
    const auto table =
        take(Calibration::readGrayTable(QString::fromStdString(arguments.table.file), arguments.table.frequency)).table;
    const auto levels = static_cast<int>(table.red.size());
    return exchange(arguments, output, [&](CabinetSender3th& sender, Answer& answer) {
        answer = {QStringLiteral("took a gray table of %1 levels").arg(levels),
                  {{QStringLiteral("gray_levels"), levels}}};
        return Calibration::sendGrayTable(sender, table);
    });
}

CommandResult sendGamut(const HubArguments& arguments, const Output& output)
{
    const auto gamut = take(Calibration::readTargetToSend(arguments.gamuts.names()));
    return exchange(arguments, output, [&](CabinetSender3th& sender, Answer& answer) {
        answer.text = QStringLiteral("took the target gamut %1").arg(Calibration::nameOf(gamut));
        return sender.uploadNiccData({}, gamut);
    });
}

CommandResult sendMeasure(const HubArguments& arguments, const Output& output)
{
    const auto gamut = take(Calibration::readMeasuredToSend(arguments.gamuts.names())).gamut;
    return exchange(arguments, output, [&](CabinetSender3th& sender, Answer& answer) {
        answer.text = QStringLiteral("took the measured gamut");
        return sender.uploadNiccMeasure({}, gamut);
    });
}

CommandResult serve(const HubArguments& arguments, const Output& output)
{
    const Interrupt interrupt; // before the port is told: who knows it may end this at once
    QString error;
    const int wanted = arguments.hub.port;
    const auto hub = Simulator::SimulatedHub::start(static_cast<quint16>(wanted), error);
    if (!hub)
        throw Fault{Fault::Kind::Unavailable, QStringLiteral("hub serve"), {}, error};
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

/// Adds a command that talks to a hub.
CLI::App* addCommand(CLI::App& parent, Command& chosen, const char* name, const char* description, Run run,
                     const std::shared_ptr<HubArguments>& arguments)
{
    CLI::App* command = parent.add_subcommand(name, description);
    addHub(*command, arguments->hub);
    addRecord(*command, arguments->hub.record);
    command->callback([&chosen, arguments, run] {
        checkHub(arguments->hub);
        chosen = [arguments, run](const Output& output) { return run(*arguments, output); };
    });
    return command;
}

void addServe(CLI::App& hub, Command& chosen)
{
    const auto arguments = std::make_shared<HubArguments>();
    CLI::App* command = hub.add_subcommand("serve", "Run the simulated hub, for other clients too");
    command->add_option("--port", arguments->hub.port, "Port; 0: the system chooses")
        ->check(CLI::Range(0, 65535))
        ->capture_default_str();
    command->callback(
        [&chosen, arguments] { chosen = [arguments](const Output& output) { return serve(*arguments, output); }; });
}

} // namespace

void addHubCommands(CLI::App& app, Command& chosen)
{
    CLI::App* hub = app.add_subcommand("hub", "Talk to the message hub of third-generation cabinets");
    hub->require_subcommand(1);
    const auto fresh = [] { return std::make_shared<HubArguments>(); };
    addServe(*hub, chosen);
    addReplayCommand(*hub, chosen, Recording::Kind::Hub);
    addCommand(*hub, chosen, "ping", "Ask whether the hub answers", ping, fresh());
    addCommand(*hub, chosen, "fine-gray", "Ask for the fine-gray configuration", fineGray, fresh());
    CLI::App* send = hub->add_subcommand("send", "Send picture-quality data through the hub");
    send->require_subcommand(1);
    auto arguments = fresh();
    addTable(*addCommand(*send, chosen, "gray", "Send a gray-scale table", sendGray, arguments), arguments->table,
             true);
    arguments = fresh();
    addGamut(*addCommand(*send, chosen, "gamut", "Send the target gamut", sendGamut, arguments),
             arguments->gamuts.target, "--target", targetText, true);
    arguments = fresh();
    addGamut(*addCommand(*send, chosen, "measure", "Send the measured gamut", sendMeasure, arguments),
             arguments->gamuts.measured, "--measured", "The LEDs' gamut:", true);
}
