#pragma once

#include "output.h"

#include <simulator/simulatedwall.h>

#include <qualityutility/tool/sender4th/cabinetsenderbase.h>

#include <map>

/// One thing to send to every target.
struct SendStep
{
    QString name;    ///< short, for JSON and progress: "gray"
    QString summary; ///< for people: what is sent

    /// Calls the library; the result is the library's.
    std::function<int(const CabinetSenderSpace::CabinetTargetMap&)> send;
    /// Whether a cabinet holds what was sent, given what it held before.
    std::function<bool(const Simulator::CabinetState& before, const Simulator::CabinetState& now)> hasArrived;
    /// Cabinets of one device that differ in this number are sent to in separate calls; null: one call.
    std::function<int(const Model::Cabinet&)> groupBy = nullptr;
};

/// What became of one step on one device.
struct SendOutcome
{
    enum class Kind { NotSent, Answered, Failed, TimedOut, Unanswered };

    QString step;
    QString device;
    int cabinets = 0;
    Kind kind = Kind::NotSent;
    int result = CabinetSenderSpace::ResultSkipped;
    QString error;
    double seconds = 0.0;
    int arrived = 0; ///< cabinets that hold what was sent
};

/// What cabinets hold, by device and identifier.
using CabinetStates = std::map<std::pair<std::string, unsigned long long>, Simulator::CabinetState>;

CabinetStates readBack(const Simulator::SimulatedWall& wall, const CabinetSenderSpace::CabinetTargetMap& targets);

/// The outcome of a step that has not been sent.
SendOutcome notSent(const SendStep& step, const std::string& device, std::size_t cabinets);

/// Sends a step to a device and counts the cabinets of `wall` that hold it then; without a wall counts none.
SendOutcome sendToDevice(const SendStep& step, const std::string& device, const std::vector<unsigned long long>& cids,
                         const Simulator::SimulatedWall* wall);

/// In words: "ok", "not sent", or what went wrong.
QString describe(const SendOutcome& outcome);
QJsonObject toJson(const SendOutcome& outcome);
SendOutcome outcomeFromJson(const QJsonObject& object);
/// A row per outcome, with headings. For textTable().
QList<QStringList> outcomeRows(const std::vector<SendOutcome>& outcomes);

/// The one error that outcomes amount to; nothing where every cabinet holds everything.
std::optional<CommandError> errorOf(const std::vector<SendOutcome>& outcomes, bool isInterrupted);
