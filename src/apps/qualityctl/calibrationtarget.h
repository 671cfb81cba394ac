#pragma once

#include "calibrationjournal.h"
#include "hubclient.h"
#include "progress.h"
#include "wallargument.h"

/// What a calibration sends.
struct CalibrationContent
{
    Model::ColorGamutInfo measured;
    Model::ColorGamutInfo target; ///< with its coefficients
    QString table;                ///< gray table's file; empty: none
    int frequency = 60;           ///< Hz
    QString binary;               ///< receiving-card binary's file; empty: none
};

/// Where a calibration is sent: devices, one after the other.
class CalibrationTarget
{
public:
    virtual ~CalibrationTarget() = default;

    virtual QString name() const = 0;
    virtual std::vector<std::string> devices() const = 0;
    /// How many steps a device takes.
    virtual int stepCount() const = 0;

    /// Sends everything to a device and reads back what it holds then. A step that fails ends it.
    virtual DeviceRecord serve(const std::string& device, Progress& progress) = 0;
    /// The record of a device to which nothing was sent.
    virtual DeviceRecord notServed(const std::string& device) const = 0;
};

/// The cabinets of a simulated wall of the fourth generation. Throws CommandError as parsing the wall does.
std::unique_ptr<CalibrationTarget> wallTarget(const CalibrationContent& content, const WallArgument& wall,
                                              unsigned int seed, const Output& output);

/// What stands behind a message hub of the third generation, as one device. The hub corrects from the gamuts itself;
/// what it holds is known of a simulated hub, and taken to be what was acknowledged elsewhere. Throws CommandError,
/// unavailable.
std::unique_ptr<CalibrationTarget> hubTarget(const CalibrationContent& content, const HubAddress& address,
                                             const Output& output);

/// The steps that serve a cabinet of the fourth generation, the correction last. Throws CommandError for files.
std::vector<SendStep> calibrationSteps(const CalibrationContent& content);
