#include "sendrun.h"

#include "dryrun.h"
#include "hostlog.h"
#include "interrupt.h"
#include "progress.h"

#include <suite/action/action.h>

#include <QJsonArray>
#include <QStringList>

#include <map>

namespace {

using CabinetSenderSpace::CabinetTargetMap;
using Simulator::CabinetState;

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
QString holdings(const CabinetStates& states)
{
    std::map<std::pair<std::string, QString>, int> groups;
    for (const auto& [cabinet, state] : states)
        ++groups[{cabinet.first, describe(state)}];
    QString text = QStringLiteral("The cabinets now hold:\n");
    for (const auto& [group, count] : groups)
        text += QStringLiteral("  %1, %2 cabinets: %3\n")
                    .arg(QString::fromStdString(group.first), QString::number(count), group.second);
    return text;
}

std::vector<SendOutcome> sendAll(const std::vector<SendStep>& steps, const CabinetTargetMap& targets,
                                 const Output& output, const Simulator::SimulatedWall& wall)
{
    std::vector<SendOutcome> outcomes;
    Progress progress(static_cast<int>(steps.size() * targets.size()), output);
    for (const SendStep& step : steps) {
        for (const auto& [device, cids] : targets) {
            if (Interrupt::isRequested()) {
                outcomes.push_back(notSent(step, device, cids.size()));
                continue;
            }
            outcomes.push_back(sendToDevice(step, device, cids, &wall));
            progress.advance(QStringLiteral("%1 to %2").arg(step.name, outcomes.back().device));
        }
    }
    return outcomes;
}

CommandResult report(const std::vector<SendStep>& steps, const std::vector<SendOutcome>& outcomes,
                     const CabinetStates& before, const CabinetStates& now)
{
    QString text = QStringLiteral("Sent:\n");
    for (const SendStep& step : steps)
        text += QStringLiteral("  %1: %2\n").arg(step.name, step.summary);
    QJsonArray results;
    for (const SendOutcome& outcome : outcomes)
        results.append(toJson(outcome));
    QJsonArray cabinets;
    for (const auto& [cabinet, state] : now)
        cabinets.append(toJson(cabinet, before.at(cabinet), state));
    return {text + QLatin1Char('\n') + textTable(outcomeRows(outcomes)) + QLatin1Char('\n') + holdings(now),
            {{QStringLiteral("results"), results}, {QStringLiteral("cabinets"), cabinets}},
            errorOf(outcomes, Interrupt::isRequested())};
}

} // namespace

CommandResult runSend(const std::vector<SendStep>& steps, const SendOptions& options, const Output& output)
{
    const OpenWall wall = openWall(options.wall);
    const CabinetTargetMap targets = selectTargets(wall, options.wall);
    HostLog::install(output.quiet);
    if (options.dryRun)
        return dryRun(steps, targets);

    QString error;
    const auto simulation = Simulator::SimulatedWall::create(wall.wall, options.seed, error);
    if (!simulation)
        throw CommandError{ExitCode::BadData, QStringLiteral("wall document %1: %2").arg(wall.name, error)};
    output.note(QStringLiteral("qualityctl: simulated wall: %1").arg(wall.name));
    const Interrupt interrupt;
    Action::setTransport(simulation);
    const CabinetStates before = readBack(*simulation, targets);
    const auto outcomes = sendAll(steps, targets, output, *simulation);
    const CabinetStates now = readBack(*simulation, targets);
    Action::setTransport(nullptr);

    CommandResult result = report(steps, outcomes, before, now);
    result.json.insert(QStringLiteral("wall"), wall.name);
    return result;
}
