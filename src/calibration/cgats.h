#pragma once

#include <calibration/measurement.h>

namespace Calibration {

/// Whether a text is CGATS: it begins with an identifier (CTI3, CGATS.17), or has data or a format for them.
bool isCgats(const QByteArray& text);

/// Reads the first table of a CGATS text that has RGB_R, RGB_G, RGB_B (0..100) and XYZ_X, XYZ_Y, XYZ_Z. Fields DEVICE
/// and CABINET part the readings into places, with a measurement each. Gamuts are left to the caller. Faults: as
/// parseMeasurement().
Result<std::vector<Measurement>> parseCgats(const Input& input);

} // namespace Calibration
