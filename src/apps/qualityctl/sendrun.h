#pragma once

#include "wallargument.h"

#include <simulator/simulatedwall.h>

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

struct SendOptions
{
    WallArgument wall;
    unsigned int seed = 1;
    bool dryRun = false;
};

/// Sends every step to every target of a simulated wall, one library call per device, reads back what the cabinets hold
/// and reports both. Interrupted, it ends after the running device. Throws CommandError before anything was sent.
CommandResult runSend(const std::vector<SendStep>& steps, const SendOptions& options, const Output& output);
