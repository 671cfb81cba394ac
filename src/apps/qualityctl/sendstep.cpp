#include "sendstep.h"

#include "hostlog.h"

#include <suite/action/action.h>

#include <QElapsedTimer>
#include <QStringList>

namespace {

using CabinetSenderSpace::CabinetTargetMap;
using CabinetList = std::vector<unsigned long long>;

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

SendOutcome::Kind kindOf(int result, const QString& error)
{
    if (result == CabinetSenderSpace::ResultSuccess)
        return SendOutcome::Kind::Answered;
    if (result == CabinetSenderSpace::ResultSkipped)
        return SendOutcome::Kind::Unanswered;
    return error.startsWith(QLatin1String(Action::timeoutErrorPrefix)) ? SendOutcome::Kind::TimedOut
                                                                       : SendOutcome::Kind::Failed;
}

} // namespace

CabinetStates readBack(const Simulator::SimulatedWall& wall, const CabinetTargetMap& targets)
{
    CabinetStates states;
    for (const auto& [device, cids] : targets) {
        for (const unsigned long long cid : cids) {
            if (auto state = wall.cabinet(device, cid))
                states.emplace(std::pair(device, cid), std::move(*state));
        }
    }
    return states;
}

SendOutcome notSent(const SendStep& step, const std::string& device, std::size_t cabinets)
{
    SendOutcome outcome;
    outcome.step = step.name;
    outcome.device = QString::fromStdString(device);
    outcome.cabinets = static_cast<int>(cabinets);
    return outcome;
}

SendOutcome sendToDevice(const SendStep& step, const std::string& device, const CabinetList& cids,
                         const Simulator::SimulatedWall* wall)
{
    SendOutcome outcome = notSent(step, device, cids.size());
    const CabinetStates before = wall ? readBack(*wall, {{device, cids}}) : CabinetStates();
    if (cids.empty()) { // nothing to send, so nothing is missing
        outcome.kind = SendOutcome::Kind::Answered;
        outcome.result = CabinetSenderSpace::ResultSuccess;
        return outcome;
    }
    QElapsedTimer timer;
    timer.start();
    HostLog::takeErrorText();
    for (const CabinetList& group : callsFor(step, device, cids)) {
        outcome.result = step.send({{device, group}});
        outcome.error = HostLog::takeErrorText();
        outcome.kind = kindOf(outcome.result, outcome.error);
        if (outcome.kind != SendOutcome::Kind::Answered)
            break;
    }
    outcome.seconds = static_cast<double>(timer.nsecsElapsed()) / 1e9;
    for (const auto& [key, now] : wall ? readBack(*wall, {{device, cids}}) : CabinetStates())
        outcome.arrived += step.hasArrived(before.at(key), now) ? 1 : 0;
    return outcome;
}

QString describe(const SendOutcome& outcome)
{
    switch (outcome.kind) {
    case SendOutcome::Kind::NotSent:
        return QStringLiteral("not sent");
    case SendOutcome::Kind::Answered:
        return QStringLiteral("ok");
    case SendOutcome::Kind::Failed:
    case SendOutcome::Kind::TimedOut:
        return outcome.error;
    case SendOutcome::Kind::Unanswered:
        return QStringLiteral("no answer when interrupted");
    }
    return {};
}

QJsonObject toJson(const SendOutcome& outcome)
{
    QJsonObject object{{QStringLiteral("step"), outcome.step},
                       {QStringLiteral("device"), outcome.device},
                       {QStringLiteral("cabinets"), outcome.cabinets},
                       {QStringLiteral("sent"), outcome.kind != SendOutcome::Kind::NotSent},
                       {QStringLiteral("result"), outcome.result},
                       {QStringLiteral("seconds"), outcome.seconds},
                       {QStringLiteral("cabinets_holding_it"), outcome.arrived}};
    if (outcome.kind != SendOutcome::Kind::Answered)
        object.insert(QStringLiteral("error"), describe(outcome));
    return object;
}

SendOutcome outcomeFromJson(const QJsonObject& object)
{
    SendOutcome outcome;
    outcome.step = object.value(QStringLiteral("step")).toString();
    outcome.device = object.value(QStringLiteral("device")).toString();
    outcome.cabinets = object.value(QStringLiteral("cabinets")).toInt();
    outcome.result = object.value(QStringLiteral("result")).toInt();
    outcome.seconds = object.value(QStringLiteral("seconds")).toDouble();
    outcome.arrived = object.value(QStringLiteral("cabinets_holding_it")).toInt();
    outcome.error = object.value(QStringLiteral("error")).toString();
    if (object.value(QStringLiteral("sent")).toBool())
        outcome.kind = kindOf(outcome.result, outcome.error);
    return outcome;
}

QList<QStringList> outcomeRows(const std::vector<SendOutcome>& outcomes)
{
    QList<QStringList> rows{{QStringLiteral("step"), QStringLiteral("device"), QStringLiteral("cabinets"),
                             QStringLiteral("hold it"), QStringLiteral("time"), QStringLiteral("answer")}};
    for (const SendOutcome& outcome : outcomes)
        rows.append(QStringList{outcome.step, outcome.device, QString::number(outcome.cabinets),
                                QString::number(outcome.arrived),
                                QStringLiteral("%1 s").arg(outcome.seconds, 0, 'f', 3), describe(outcome)});
    return rows;
}

std::optional<CommandError> errorOf(const std::vector<SendOutcome>& outcomes, bool isInterrupted)
{
    QStringList failed;
    QStringList unsent;
    ExitCode code = ExitCode::Unavailable;
    for (const SendOutcome& outcome : outcomes) {
        const QString subject = QStringLiteral("%1 to %2").arg(outcome.step, outcome.device);
        if (outcome.kind == SendOutcome::Kind::NotSent) {
            unsent << subject;
        } else if (outcome.kind != SendOutcome::Kind::Answered) {
            if (failed.isEmpty() && outcome.kind == SendOutcome::Kind::TimedOut)
                code = ExitCode::Timeout;
            failed << QStringLiteral("%1: %2").arg(subject, describe(outcome));
        }
    }
    if (isInterrupted)
        return CommandError{ExitCode::Interrupted,
                            QStringLiteral("interrupted; failed: %1; not sent: %2")
                                .arg(failed.isEmpty() ? QStringLiteral("none") : failed.join(QStringLiteral(", ")),
                                     unsent.isEmpty() ? QStringLiteral("none") : unsent.join(QStringLiteral(", ")))};
    if (!failed.isEmpty())
        return CommandError{code, failed.join(QStringLiteral("; "))};
    for (const SendOutcome& outcome : outcomes) {
        if (outcome.arrived != outcome.cabinets)
            return CommandError{ExitCode::Difference,
                                QStringLiteral("%1 to %2: %3 of %4 cabinets hold it")
                                    .arg(outcome.step, outcome.device, QString::number(outcome.arrived),
                                         QString::number(outcome.cabinets))};
    }
    return std::nullopt;
}
