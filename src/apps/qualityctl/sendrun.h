#pragma once

#include "sendstep.h"
#include "wallargument.h"

struct SendOptions
{
    WallArgument wall;
    unsigned int seed = 1;
    bool dryRun = false;
};

/// Sends every step to every target of a simulated wall, one library call per device, reads back what the cabinets hold
/// and reports both. Interrupted, it ends after the running device. Throws CommandError before anything was sent.
CommandResult runSend(const std::vector<SendStep>& steps, const SendOptions& options, const Output& output);
