#pragma once

#include "output.h"
#include <calibration/content.h>
#include <calibration/hubclient.h>
#include <calibration/verdict.h>

#include <string>
#include <vector>

struct WallArgument;

namespace Recording {
class Recorder;
}

namespace CLI {
class App;
class Validator;
} // namespace CLI

// The options that commands share; each stands here once.

/// --wall
void addWall(CLI::App& command, std::string& file);
/// --record
void addRecord(CLI::App& command, std::string& file);
/// The result of a command, with the fault of its recording where it has none of its own.
CommandResult withRecording(CommandResult result, const Recording::Recorder* recorder);
/// --transport, --record
void addTransport(CLI::App& command, WallArgument& argument);
/// --wall, --transport, --record, --device, --cabinet, --seed
void addTargets(CLI::App& command, WallArgument& argument);

/// What a target's option says of itself.
inline constexpr char targetText[] =
    "The gamut that is wanted: native (the LEDs' own, with a WHITE: D65, 6500K, 6500K-planck or x,y),";
/// A gamut under `names` ("--target", "measured,--measured").
void addGamut(CLI::App& command, std::string& gamut, const char* names, const char* what, bool required);

/// A measured gamut and a target for it.
struct GamutArguments
{
    std::string measured;
    std::string target;
    std::string white = "measured"; ///< or "sum"
    bool force = false;             ///< primaries that look swapped are taken all the same

    /// Without table and binary.
    Calibration::ContentNames names() const;
};
/// What --white says: "measured" or "sum".
Calibration::WhiteSource whiteSourceOf(const std::string& white);
/// --white
void addWhite(CLI::App& command, std::string& white);
/// --white; both gamuts under the given names. `force` is left to the command.
void addGamuts(CLI::App& command, GamutArguments& gamuts, const char* measured, const char* target);

/// A gray table and its frequency.
struct TableArgument
{
    std::string file; ///< empty: none
    int frequency = 60;
};
/// --table, --frequency
void addTable(CLI::App& command, TableArgument& table, bool required);

/// --binary
void addBinary(CLI::App& command, std::string& binary, bool required);

/// --out for a folder, --force
void addOutputFolder(CLI::App& command, std::string& folder, bool& force);
/// --plane: "xy" or "uv"
void addPlane(CLI::App& command, std::string& plane);
/// --out for a chart, --force
void addChartFile(CLI::App& command, std::string& file, bool& force);

/// --max-de, --strict
void addAcceptance(CLI::App& command, Calibration::Acceptance& acceptance);

/// Where hubs are: one at a host and port, or a list; without either one is simulated.
struct HubArgument
{
    std::string host;
    int port = 0;
    std::vector<std::string> hubs; ///< HOST:PORT each
    double timeout = 10.0;         ///< seconds
    std::string record;            ///< a new file for what is said; empty: none

    bool isSimulated() const { return host.empty() && port == 0 && hubs.empty(); }
    /// At least one; a simulated one's has no port yet.
    std::vector<Calibration::HubAddress> addresses() const;
};
/// --hub, --host, --port, --timeout
void addHub(CLI::App& command, HubArgument& hub);
/// What CLI11 cannot check of them; throws CLI::ValidationError.
void checkHub(const HubArgument& hub);

/// Checks an option's number, which "nan" and "inf" are not.
CLI::Validator finiteNumber(double min, double max);
