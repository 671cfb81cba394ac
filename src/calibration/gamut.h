#pragma once

#include <calibration/input.h>
#include <suite/colour/primaries.h>
#include <suite/model/colorgamutinfo.h>

namespace Calibration {

// Gamut records as the calibration takes them: a luminance of 0 is one that nobody knows.

/// Whether four points make a gamut: a triangle in the chromaticity diagram with a white inside that each primary has a
/// part in, luminances of 0 or more. Fault: bad data about `subject`, with the reason.
Result<void> requireGamut(const Model::ColorGamutInfo& gamut, const QString& subject);

/// Whether the luminances of all four points are known, as cabinets and documents want them. Fault: bad data about
/// `subject` with the first that is not, and how to give it behind `text`, which the gamut was read from.
Result<void> requireLuminance(const Model::ColorGamutInfo& gamut, const QString& subject, const QString& text);

/// Whether red, green and blue are what their names say: neither two of them swapped, nor all three shifted, nor one
/// brighter than white. Fault: bad data about `subject`, with what was found.
Result<void> requireLabels(const Model::ColorGamutInfo& gamut, const QString& subject);

/// A gamut of chromaticities whose white has `luminance` (cd/m2), red, green and blue those that add up to it.
Model::ColorGamutInfo gamutOf(const Colour::Primaries& primaries, double luminance);

/// Why primaries cannot show their white (Colour::showsWhite()), with the share that is missing.
QString hiddenWhite(const Colour::Primaries& primaries);

/// The chromaticities of a gamut record.
Colour::Primaries primariesOf(const Model::ColorGamutInfo& gamut);

/// A gamut's four points in the order of all figures: red, green, blue, white.
std::array<const Model::LXY*, 4> pointsOf(const Model::ColorGamutInfo& gamut);

/// Names of the four points in that order: "red", "green", "blue", "white".
QString pointName(std::size_t point);

/// The name of a gamut record.
QString nameOf(const Model::ColorGamutInfo& gamut);

} // namespace Calibration
