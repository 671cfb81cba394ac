#pragma once

#include "sendstep.h"

/// Lists the requests that the steps would make, without sending any.
CommandResult dryRun(const std::vector<SendStep>& steps, const CabinetSenderSpace::CabinetTargetMap& targets);
