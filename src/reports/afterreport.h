#pragma once

#include <calibration/aftermeasurement.h>

#include <QJsonObject>

namespace Reports {

/// The measurement with its verdict, and tables of red, green, blue and white: chromaticities, CIEDE2000, distances in
/// u'v', cd/m2. What is not known is "-".
QString toText(const Calibration::AfterMeasurement& after, const Calibration::Measurement& measurement);
/// "passed", "sentence", "known", what the measurement's file says, and "points"; what is not known is left out.
QJsonObject toJson(const Calibration::AfterMeasurement& after, const Calibration::Measurement& measurement);

} // namespace Reports
