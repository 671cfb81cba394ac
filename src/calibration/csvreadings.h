#pragma once

#include <calibration/measurement.h>

namespace Calibration {

/// Reads a table with a heading: x, y and a luminance (Y, lum, cd_m2) or X, Y, Z, and a label or r, g, b for the patch.
/// Columns for device,
/// cabinets and group part the readings, with a measurement for each group. Gamuts are left to the caller. Faults: as
/// parseMeasurement().
Result<std::vector<Measurement>> parseCsvReadings(const Input& input);

} // namespace Calibration
