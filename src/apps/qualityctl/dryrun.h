#pragma once

#include "output.h"

#include <functional>

/// Lists the requests that `sendAll` makes, answering each with success instead of sending it.
CommandResult dryRun(const std::function<void()>& sendAll);
