#include "sendrun.h"

#include "hostlog.h"
#include "interrupt.h"
#include "progress.h"

#include <simulator/recordingtransport.h>
#include <suite/action/action.h>

#include <QElapsedTimer>
#include <QJsonArray>
#include <QStringList>

#include <map>

namespace {

using CabinetSenderSpace::CabinetTargetMap;
using CabinetList = std::vector<unsigned long long>;
using Simulator::CabinetState;
using States = std::map<std::pair<std::string, unsigned long long>, CabinetState>;

/// What became of one step on one device.
struct Outcome
{
    enum class Kind { NotSent, Answered, Failed, TimedOut, Unanswered };

    QString step;
    QString device;
    size_t cabinets = 0;
    Kind kind = Kind::NotSent;
    int result = CabinetSenderSpace::ResultSkipped;
    QString error;
    double seconds = 0.0;
    size_t arrived = 0; ///< cabinets that hold what was sent
};

QString describe(const Outcome& outcome)
{
    switch (outcome.kind) {
    case Outcome::Kind::NotSent:
        return QStringLiteral("not sent");
    case Outcome::Kind::Answered:
        return QStringLiteral("ok");
    case Outcome::Kind::Failed:
    case Outcome::Kind::TimedOut:
        return outcome.error;
    case Outcome::Kind::Unanswered:
        return QStringLiteral("no answer when interrupted");
    }
    return {};
}

QJsonObject toJson(const Outcome& outcome)
{
    QJsonObject object{{QStringLiteral("step"), outcome.step},
                       {QStringLiteral("device"), outcome.device},
                       {QStringLiteral("cabinets"), static_cast<int>(outcome.cabinets)},
                       {QStringLiteral("sent"), outcome.kind != Outcome::Kind::NotSent},
                       {QStringLiteral("result"), outcome.result},
                       {QStringLiteral("seconds"), outcome.seconds},
                       {QStringLiteral("cabinets_holding_it"), static_cast<int>(outcome.arrived)}};
    if (outcome.kind != Outcome::Kind::Answered)
        object.insert(QStringLiteral("error"), describe(outcome));
    return object;
}

States readBack(const Simulator::SimulatedWall& wall, const CabinetTargetMap& targets)
{
    States states;
    for (const auto& [device, cids] : targets) {
        for (const unsigned long long cid : cids) {
            if (auto state = wall.cabinet(device, cid))
                states.emplace(std::pair(device, cid), std::move(*state));
        }
    }
    return states;
}

/// The calls that serve one device: the cabinets whose groups differ apart from each other.
std::vector<CabinetList> callsFor(const SendStep& step, const std::string& device, const CabinetList& cids)
{
    if (!step.groupBy)
        return {cids};
    std::map<int, CabinetList> groups;
    for (const unsigned long long cid : cids)
        groups[step.groupBy(*Service::ModelService::getCabByCid(device, cid, true))].push_back(cid);
    std::vector<CabinetList> calls;
    for (auto& [key, group] : groups)
        calls.push_back(std::move(group));
    return calls;
}

Outcome::Kind kindOf(int result, const QString& error)
{
    if (result == CabinetSenderSpace::ResultSuccess)
        return Outcome::Kind::Answered;
    if (result == CabinetSenderSpace::ResultSkipped)
        return Outcome::Kind::Unanswered;
    return error.startsWith(QLatin1String(Action::timeoutErrorPrefix)) ? Outcome::Kind::TimedOut
                                                                       : Outcome::Kind::Failed;
}

void sendToDevice(const SendStep& step, const std::string& device, const CabinetList& cids, Outcome& outcome)
{
    QElapsedTimer timer;
    timer.start();
    HostLog::takeErrorText();
    for (const CabinetList& group : callsFor(step, device, cids)) {
        outcome.result = step.send({{device, group}});
        outcome.error = HostLog::takeErrorText();
        outcome.kind = kindOf(outcome.result, outcome.error);
        if (outcome.kind != Outcome::Kind::Answered)
            break;
    }
    outcome.seconds = static_cast<double>(timer.nsecsElapsed()) / 1e9;
}

/// Sends everything; `arrivedAt` counts what arrived after each device's call.
std::vector<Outcome> sendAll(const std::vector<SendStep>& steps, const CabinetTargetMap& targets, const Output& output,
                             const Simulator::SimulatedWall* wall)
{
    std::vector<Outcome> outcomes;
    Progress progress(static_cast<int>(steps.size() * targets.size()), output);
    for (const SendStep& step : steps) {
        for (const auto& [device, cids] : targets) {
            Outcome outcome;
            outcome.step = step.name;
            outcome.device = QString::fromStdString(device);
            outcome.cabinets = cids.size();
            if (!Interrupt::isRequested()) {
                const States before = wall ? readBack(*wall, {{device, cids}}) : States();
                sendToDevice(step, device, cids, outcome);
                for (const auto& [key, now] : wall ? readBack(*wall, {{device, cids}}) : States())
                    outcome.arrived += step.hasArrived(before.at(key), now) ? 1 : 0;
                progress.advance(QStringLiteral("%1 to %2").arg(step.name, outcome.device));
            }
            outcomes.push_back(outcome);
        }
    }
    return outcomes;
}

QString describe(const CabinetState& state)
{
    const QString none = QStringLiteral("none");
    const auto gamutName = [&](const auto& gamut) {
        if (!gamut)
            return none;
        return gamut->name.empty() ? QStringLiteral("yes") : QString::fromStdString(gamut->name);
    };
    return QStringLiteral("mode %1 | gray table %2 | target gamut %3 | measured gamut %4 | coefficients %5 | binary %6")
        .arg(QString::number(state.mode),
             state.grayTable
                 ? QStringLiteral("%1 levels, %2 Hz").arg(state.grayTable->red.size()).arg(state.grayTable->freq)
                 : none,
             gamutName(state.targetGamut), gamutName(state.measuredGamut),
             state.fullScale ? QStringLiteral("9, full scale %1").arg(state.fullScale) : none,
             state.binary ? QStringLiteral("%1 bytes").arg(state.binary->size()) : none);
}

QJsonObject toJson(const std::pair<std::string, unsigned long long>& cabinet, const CabinetState& before,
                   const CabinetState& now)
{
    QJsonObject object{{QStringLiteral("device"), QString::fromStdString(cabinet.first)},
                       {QStringLiteral("cid"), cidToJson(cabinet.second)},
                       {QStringLiteral("mode_before"), before.mode},
                       {QStringLiteral("mode"), now.mode}};
    if (now.grayTable) {
        object.insert(QStringLiteral("gray_levels"), static_cast<int>(now.grayTable->red.size()));
        object.insert(QStringLiteral("gray_frequency_hz"), now.grayTable->freq);
    }
    if (now.targetGamut)
        object.insert(QStringLiteral("target_gamut"), QString::fromStdString(now.targetGamut->name));
    object.insert(QStringLiteral("has_measured_gamut"), now.measuredGamut != nullptr);
    if (now.fullScale) {
        QJsonArray coefficients;
        for (const unsigned short bits : now.coefficients)
            coefficients.append(static_cast<short>(bits));
        object.insert(QStringLiteral("coefficients"), coefficients);
        object.insert(QStringLiteral("full_scale"), now.fullScale);
    }
    if (now.binary)
        object.insert(QStringLiteral("binary_bytes"), now.binary->size());
    return object;
}

/// What the cabinets hold, one line per device and kind of content.
QString holdings(const States& states)
{
    std::map<std::pair<std::string, QString>, int> groups;
    for (const auto& [cabinet, state] : states)
        ++groups[{cabinet.first, describe(state)}];
    QString text = QStringLiteral("The cabinets now hold:\n");
    for (const auto& [group, count] : groups)
        text += QStringLiteral("  %1, %2 cabinets: %3\n")
                    .arg(QString::fromStdString(group.first))
                    .arg(count)
                    .arg(group.second);
    return text;
}

std::optional<CommandError> errorOf(const std::vector<Outcome>& outcomes)
{
    QStringList failed;
    QStringList unsent;
    ExitCode code = ExitCode::Unavailable;
    for (const Outcome& outcome : outcomes) {
        const QString subject = QStringLiteral("%1 to %2").arg(outcome.step, outcome.device);
        if (outcome.kind == Outcome::Kind::NotSent) {
            unsent << subject;
        } else if (outcome.kind != Outcome::Kind::Answered) {
            if (failed.isEmpty() && outcome.kind == Outcome::Kind::TimedOut)
                code = ExitCode::Timeout;
            failed << QStringLiteral("%1: %2").arg(subject, describe(outcome));
        }
    }
    if (Interrupt::isRequested())
        return CommandError{ExitCode::Interrupted,
                            QStringLiteral("interrupted; failed: %1; not sent: %2")
                                .arg(failed.isEmpty() ? QStringLiteral("none") : failed.join(QStringLiteral(", ")),
                                     unsent.isEmpty() ? QStringLiteral("none") : unsent.join(QStringLiteral(", ")))};
    if (!failed.isEmpty())
        return CommandError{code, failed.join(QStringLiteral("; "))};
    for (const Outcome& outcome : outcomes) {
        if (outcome.arrived != outcome.cabinets)
            return CommandError{ExitCode::Difference, QStringLiteral("%1 to %2: %3 of %4 cabinets hold it")
                                                          .arg(outcome.step, outcome.device)
                                                          .arg(outcome.arrived)
                                                          .arg(outcome.cabinets)};
    }
    return std::nullopt;
}

QString describeValue(const boost::any& value)
{
    if (const auto* number = boost::any_cast<int>(&value))
        return QString::number(*number);
    if (const auto* flag = boost::any_cast<bool>(&value))
        return *flag ? QStringLiteral("true") : QStringLiteral("false");
    if (const auto* real = boost::any_cast<double>(&value))
        return QString::number(*real, 'g', 10);
    if (const auto* text = boost::any_cast<std::string>(&value))
        return text->size() <= 40 ? QStringLiteral("\"%1\"").arg(QString::fromStdString(*text))
                                  : QStringLiteral("<%1 characters>").arg(text->size());
    if (const auto* cids = boost::any_cast<CabinetList>(&value))
        return QStringLiteral("<%1 cabinets>").arg(cids->size());
    if (const auto* bytes = boost::any_cast<std::vector<unsigned char>>(&value))
        return QStringLiteral("<%1 bytes>").arg(bytes->size());
    if (const auto* words = boost::any_cast<std::vector<unsigned short>>(&value)) {
        QStringList parts;
        for (const unsigned short bits : *words)
            parts << QString::number(static_cast<short>(bits));
        return QStringLiteral("[%1]").arg(parts.join(QStringLiteral(", ")));
    }
    if (const auto* list = boost::any_cast<std::vector<Parameters>>(&value))
        return QStringLiteral("<%1 records>").arg(list->size());
    return QStringLiteral("?");
}

/// The values of a map, sorted by key.
std::map<std::string, QString> describeItems(const ParameterMap& map)
{
    std::map<std::string, QString> items;
    for (const auto& [key, value] : map.items())
        items.emplace(key, describeValue(value));
    return items;
}

CommandResult dryRun(const std::vector<SendStep>& steps, const CabinetTargetMap& targets, const Output& output)
{
    const auto recorder = std::make_shared<Simulator::RecordingTransport>();
    Action::setTransport(recorder);
    sendAll(steps, targets, output, nullptr);
    QString text;
    QJsonArray requests;
    for (const auto& request : recorder->requests()) {
        const bool isPut = request.method == Action::Request::Method::Put;
        QJsonObject arguments;
        QJsonObject request_options;
        text += QStringLiteral("would %1 %2 to %3\n")
                    .arg(isPut ? QStringLiteral("put") : QStringLiteral("post"), QString::fromStdString(request.action),
                         QString::fromStdString(request.deviceId));
        for (const auto& [key, value] : describeItems(request.parameters.arguments())) {
            text += QStringLiteral("    %1 = %2\n").arg(QString::fromStdString(key), value);
            arguments.insert(QString::fromStdString(key), value);
        }
        for (const auto& [key, value] : describeItems(request.parameters.options())) {
            text += QStringLiteral("    (option) %1 = %2 s\n").arg(QString::fromStdString(key), value);
            request_options.insert(QString::fromStdString(key), value);
        }
        requests.append(QJsonObject{{QStringLiteral("action"), QString::fromStdString(request.action)},
                                    {QStringLiteral("method"), isPut ? QStringLiteral("put") : QStringLiteral("post")},
                                    {QStringLiteral("device"), QString::fromStdString(request.deviceId)},
                                    {QStringLiteral("arguments"), arguments},
                                    {QStringLiteral("options"), request_options}});
    }
    Action::setTransport(nullptr);
    return {text, {{QStringLiteral("dry_run"), true}, {QStringLiteral("requests"), requests}}};
}

CommandResult report(const std::vector<SendStep>& steps, const std::vector<Outcome>& outcomes, const States& before,
                     const States& now)
{
    QString text = QStringLiteral("Sent:\n");
    for (const SendStep& step : steps)
        text += QStringLiteral("  %1: %2\n").arg(step.name, step.summary);
    QList<QStringList> rows{{QStringLiteral("step"), QStringLiteral("device"), QStringLiteral("cabinets"),
                             QStringLiteral("hold it"), QStringLiteral("time"), QStringLiteral("answer")}};
    QJsonArray results;
    for (const Outcome& outcome : outcomes) {
        rows.append(QStringList{outcome.step, outcome.device, QString::number(outcome.cabinets),
                                QString::number(outcome.arrived),
                                QStringLiteral("%1 s").arg(outcome.seconds, 0, 'f', 3), describe(outcome)});
        results.append(toJson(outcome));
    }
    QJsonArray cabinets;
    for (const auto& [cabinet, state] : now)
        cabinets.append(toJson(cabinet, before.at(cabinet), state));
    return {text + QLatin1Char('\n') + textTable(rows) + QLatin1Char('\n') + holdings(now),
            {{QStringLiteral("results"), results}, {QStringLiteral("cabinets"), cabinets}},
            errorOf(outcomes)};
}

} // namespace

CommandResult runSend(const std::vector<SendStep>& steps, const SendOptions& options, const Output& output)
{
    const OpenWall wall = openWall(options.wall);
    const CabinetTargetMap targets = selectTargets(wall, options.wall);
    HostLog::install(output.quiet);
    if (options.dryRun)
        return dryRun(steps, targets, output);

    QString error;
    const auto simulation = Simulator::SimulatedWall::create(wall.wall, options.seed, error);
    if (!simulation)
        throw CommandError{ExitCode::BadData, QStringLiteral("wall document %1: %2").arg(wall.name, error)};
    output.note(QStringLiteral("qualityctl: simulated wall: %1").arg(wall.name));
    const Interrupt interrupt;
    Action::setTransport(simulation);
    const States before = readBack(*simulation, targets);
    const auto outcomes = sendAll(steps, targets, output, simulation.get());
    const States now = readBack(*simulation, targets);
    Action::setTransport(nullptr);

    CommandResult result = report(steps, outcomes, before, now);
    result.json.insert(QStringLiteral("wall"), wall.name);
    return result;
}
