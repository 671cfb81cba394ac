#pragma once

#include "output.h"

#include <recording/session.h>

namespace CLI {
class App;
}

// Each adds its sub-commands to `app`; when one is parsed it is left in `chosen`.
void addWallCommands(CLI::App& app, Command& chosen);
void addDocCommands(CLI::App& app, Command& chosen);
void addGamutCommands(CLI::App& app, Command& chosen);
void addGrayCommands(CLI::App& app, Command& chosen);
void addMatchCommand(CLI::App& app, Command& chosen);
void addMeasureCommands(CLI::App& app, Command& chosen);
void addSettingsCommands(CLI::App& app, Command& chosen);
void addHubCommands(CLI::App& app, Command& chosen);
/// The stand-in for a recorded peer, below "hub" or "wall".
void addReplayCommand(CLI::App& parent, Command& chosen, Recording::Kind kind);
void addSendCommands(CLI::App& app, Command& chosen);
void addCalibrateCommand(CLI::App& app, Command& chosen);
void addVerifyCommand(CLI::App& app, Command& chosen);
void addProjectCommands(CLI::App& app, Command& chosen);
