#pragma once

#include "output.h"

struct HubAddress;

namespace CLI {
class App;
class Validator;
} // namespace CLI

// Each adds its sub-commands to `app`; when one is parsed it is left in `chosen`.
void addWallCommands(CLI::App& app, Command& chosen);
void addDocCommands(CLI::App& app, Command& chosen);
void addGamutCommands(CLI::App& app, Command& chosen);
void addGrayCommands(CLI::App& app, Command& chosen);
void addSettingsCommands(CLI::App& app, Command& chosen);
void addHubCommands(CLI::App& app, Command& chosen);
void addSendCommands(CLI::App& app, Command& chosen);
void addCalibrateCommand(CLI::App& app, Command& chosen);
void addVerifyCommand(CLI::App& app, Command& chosen);
void addProjectCommands(CLI::App& app, Command& chosen);

// The options of a hub's address, and what CLI11 cannot check of them; throws CLI::ValidationError.
void addHubAddress(CLI::App& command, HubAddress& address);
void checkHubAddress(const HubAddress& address);

/// Checks an option's number, which "nan" and "inf" are not.
CLI::Validator finiteNumber(double min, double max);
