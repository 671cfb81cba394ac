#pragma once

#include "sendstep.h"

/// The bit of a cabinet's mode that says that the gamut correction is on.
inline constexpr int gamutCorrectionBit = 8;

// What can be sent to cabinets. Those that read a file throw CommandError: no input or bad data.

SendStep grayStep(const QString& path, int frequency);
/// The target gamut.
SendStep gamutStep(const Model::ColorGamutInfo& gamut);
/// The measured gamut.
SendStep measureStep(const Model::ColorGamutInfo& gamut);
/// Nine correction coefficients, as two's-complement bits.
SendStep coefficientsStep(const std::vector<unsigned short>& bits);
/// Switches the gamut correction; other corrections go off unless they are kept.
SendStep modeStep(bool isOn, bool keepOthers);
/// A receiving-card binary.
SendStep binStep(const QString& path);
