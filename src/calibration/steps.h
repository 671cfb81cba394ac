#pragma once

#include <calibration/step.h>
#include <suite/model/colorgamutinfo.h>

namespace Calibration {

/// The bit of a cabinet's mode that says that the gamut correction is on.
inline constexpr int gamutCorrectionBit = 8;

// What can be sent to cabinets. `name` is the input's, for the summary.

Step grayStep(const Action::GrayTable& table, const QString& name);
/// The target gamut.
Step gamutStep(const Model::ColorGamutInfo& gamut);
/// The measured gamut.
Step measureStep(const Model::ColorGamutInfo& gamut);
/// Nine correction coefficients, as two's-complement bits.
Step coefficientsStep(const std::vector<unsigned short>& bits);
/// Switches the gamut correction; other corrections go off unless they are kept.
Step modeStep(bool isOn, bool keepOthers);
/// A receiving-card binary.
Step binaryStep(const QByteArray& content, const QString& name);

} // namespace Calibration
