#pragma once

#include <calibration/input.h>
#include <suite/colour/primaries.h>
#include <suite/model/colorgamutinfo.h>

namespace Calibration {

/// Reads a gamut as a user gives it: a standard gamut's name (rec709, bt2020, ...), a file as parseMeasurement() reads
/// it ("-" for standard input), or chromaticities rx,ry:gx,gy:bx,by:wx,wy with an optional :luminance of white in cd/m2
/// (100 without one). In the first and last form the primaries' luminances are those that add up to white. A gamut
/// without a name is called as it was typed. Faults: no input for a name or file that does not exist; bad data for a
/// gamut that cannot be one, with the reason.
Result<Model::ColorGamutInfo> readGamut(const QString& text);

/// Whether four points make a gamut: a triangle in the chromaticity diagram with white inside, luminances of 0 or more.
/// Fault: bad data about `subject`, with the reason.
Result<void> requireGamut(const Model::ColorGamutInfo& gamut, const QString& subject);

/// The chromaticities of a gamut record.
Colour::Primaries primariesOf(const Model::ColorGamutInfo& gamut);

/// A gamut's four points in the order of all figures: red, green, blue, white.
std::array<const Model::LXY*, 4> pointsOf(const Model::ColorGamutInfo& gamut);

/// Names of the four points in that order: "red", "green", "blue", "white".
QString pointName(std::size_t point);

} // namespace Calibration
