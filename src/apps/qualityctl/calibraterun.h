#pragma once

#include "hubclient.h"
#include "wallargument.h"

/// How a calibration was asked for.
struct CalibrateOptions
{
    WallArgument wall;
    unsigned int seed = 1;
    int generation = 4;
    HubAddress hub; ///< generation 3
    std::string measured;
    std::string target;
    std::string table;
    int frequency = 60; ///< Hz
    std::string binary;
    std::string out;
    std::string html; ///< empty: report.html in `out`
    bool resume = false;
    bool force = false;
    bool dryRun = false;
};

/// The journal's name in the folder of a calibration.
inline constexpr char journalName[] = "calibration.jsonl";

/// Computes a correction, sends it with everything else to every device, reads back, and writes documents and reports.
/// Interrupted, it finishes the running device. Throws CommandError before anything was sent.
CommandResult runCalibrate(const CalibrateOptions& options, const Output& output);
