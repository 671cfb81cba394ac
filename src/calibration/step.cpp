#include "step.h"

#include <qualityutility/tool/sender4th/deviceoutcomes.h>
#include <suite/action/action.h>
#include <suite/service/modelservice.h>

#include <QElapsedTimer>
#include <QStringList>

namespace Calibration {

namespace {

using CabinetSenderSpace::CabinetTargetMap;
using CabinetSenderSpace::DeviceOutcome;
using CabinetList = std::vector<unsigned long long>;

/// The calls that serve one device: the cabinets whose groups differ apart from each other.
std::vector<CabinetList> callsFor(const Step& step, const std::string& device, const CabinetList& cids)
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

/// What cabinets of a device hold, in their order; nothing where nobody can tell.
std::vector<std::optional<Action::CabinetState>> statesOf(const Action::CabinetReader* reader,
                                                          const std::string& device, const CabinetList& cids)
{
    std::vector<std::optional<Action::CabinetState>> states(cids.size());
    for (std::size_t i = 0; reader && i < cids.size(); ++i)
        states[i] = reader->cabinet(device, cids[i]);
    return states;
}

/// One call of the library, with the device's error text.
void call(const Step& step, const std::string& device, const CabinetList& cids, Outcome& outcome)
{
    const CabinetSenderSpace::DeviceOutcomes devices;
    outcome.result = step.send({{device, cids}});
    outcome.error = devices.list().empty() ? QString() : devices.list().back().error;
    outcome.kind = kindOf(outcome.result, outcome.error);
}

QString joined(const QStringList& list, const QString& separator)
{
    return list.isEmpty() ? QStringLiteral("none") : list.join(separator);
}

/// The fault of the first step that not every cabinet holds.
std::optional<Fault> shortfall(const std::vector<Outcome>& outcomes)
{
    for (const Outcome& outcome : outcomes) {
        if (outcome.arrived != outcome.cabinets)
            return Fault{
                Fault::Kind::Difference,
                QStringLiteral("%1 to %2").arg(outcome.step, outcome.device),
                {},
                outcome.unread > 0
                    ? QStringLiteral("%1 of %2 cabinets could not be asked").arg(outcome.unread).arg(outcome.cabinets)
                    : QStringLiteral("%1 of %2 cabinets hold it").arg(outcome.arrived).arg(outcome.cabinets)};
    }
    return std::nullopt;
}

} // namespace

Observer::~Observer() = default;

void Observer::begin(int) {}

void Observer::sent(const Outcome&) {}

bool Observer::mayBegin()
{
    return true;
}

bool Observer::isStopWanted()
{
    return false;
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

CabinetStates readBack(const Action::CabinetReader& reader, const CabinetTargetMap& targets)
{
    CabinetStates states;
    for (const auto& [device, cids] : targets) {
        for (const unsigned long long cid : cids) {
            if (auto state = reader.cabinet(device, cid))
                states.emplace(std::pair(device, cid), std::move(*state));
        }
    }
    return states;
}

Outcome notSent(const Step& step, const std::string& device, std::size_t cabinets)
{
    Outcome outcome;
    outcome.step = step.name;
    outcome.device = QString::fromStdString(device);
    outcome.cabinets = static_cast<int>(cabinets);
    return outcome;
}

Outcome sendToDevice(const Step& step, const std::string& device, const CabinetList& cids,
                     const Action::CabinetReader* reader)
{
    Outcome outcome = notSent(step, device, cids.size());
    if (cids.empty()) { // nothing to send, so nothing is missing
        outcome.kind = Outcome::Kind::Answered;
        outcome.result = CabinetSenderSpace::ResultSuccess;
        return outcome;
    }
    const auto before = statesOf(reader, device, cids);
    QElapsedTimer timer;
    timer.start();
    for (const CabinetList& group : callsFor(step, device, cids)) {
        call(step, device, group, outcome);
        if (outcome.kind != Outcome::Kind::Answered)
            break;
    }
    outcome.seconds = static_cast<double>(timer.nsecsElapsed()) / 1e9;
    const auto now = statesOf(reader, device, cids);
    for (std::size_t i = 0; i < cids.size() && reader; ++i) {
        const bool isRead = before[i] && now[i];
        outcome.unread += isRead ? 0 : 1;
        outcome.arrived += isRead && step.hasArrived(*before[i], *now[i]) ? 1 : 0;
    }
    if (!reader && outcome.kind == Outcome::Kind::Answered)
        outcome.arrived = outcome.cabinets;
    return outcome;
}

std::vector<Outcome> sendSteps(const std::vector<Step>& steps, const CabinetTargetMap& targets,
                               const Action::CabinetReader* reader, Observer& observer)
{
    std::vector<Outcome> outcomes;
    observer.begin(static_cast<int>(steps.size() * targets.size()));
    for (const Step& step : steps) {
        for (const auto& [device, cids] : targets) {
            if (observer.isStopWanted()) {
                outcomes.push_back(notSent(step, device, cids.size()));
                continue;
            }
            outcomes.push_back(sendToDevice(step, device, cids, reader));
            observer.sent(outcomes.back());
        }
    }
    return outcomes;
}

QString describe(const Outcome& outcome)
{
    switch (outcome.kind) {
    case Outcome::Kind::NotSent:
        return QStringLiteral("not sent");
    case Outcome::Kind::Answered:
        return outcome.unread == 0 ? QStringLiteral("ok")
                                   : QStringLiteral("ok, %1 cabinets could not be asked").arg(outcome.unread);
    case Outcome::Kind::Failed:
    case Outcome::Kind::TimedOut:
        return outcome.error;
    case Outcome::Kind::Unanswered:
        return QStringLiteral("no answer when interrupted");
    }
    return {};
}

std::optional<Fault> faultOf(const std::vector<Outcome>& outcomes, bool isInterrupted)
{
    QStringList failed;
    QStringList unsent;
    Fault::Kind kind = Fault::Kind::Unavailable;
    for (const Outcome& outcome : outcomes) {
        const QString subject = QStringLiteral("%1 to %2").arg(outcome.step, outcome.device);
        if (outcome.kind == Outcome::Kind::NotSent) {
            unsent << subject;
        } else if (outcome.kind != Outcome::Kind::Answered) {
            if (failed.isEmpty() && outcome.kind == Outcome::Kind::TimedOut)
                kind = Fault::Kind::Timeout;
            failed << QStringLiteral("%1: %2").arg(subject, describe(outcome));
        }
    }
    if (isInterrupted)
        return Fault{Fault::Kind::Interrupted,
                     {},
                     {},
                     QStringLiteral("interrupted; failed: %1; not sent: %2")
                         .arg(joined(failed, QStringLiteral(", ")), joined(unsent, QStringLiteral(", ")))};
    if (!failed.isEmpty())
        return Fault{kind, {}, {}, failed.join(QStringLiteral("; "))};
    return shortfall(outcomes);
}

} // namespace Calibration
