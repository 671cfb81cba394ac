#pragma once

#include "wallargument.h"

/// Which simulated wall is served, and where.
struct ServeArguments
{
    WallArgument wall;
    std::string address = "127.0.0.1";
    int port = 0; ///< 0: the system chooses
};

/// Serves a simulated wall as a device gateway until it is interrupted; the wall keeps its state meanwhile. Says the
/// port on stderr. Throws Fault: unavailable, bad data.
CommandResult serveWall(const ServeArguments& arguments, const Output& output);
