#pragma once

#include <calibration/input.h>
#include <suite/colour/primaries.h>
#include <suite/model/colorgamutinfo.h>

namespace Calibration {

/// Reads a gamut as a user gives it: a standard gamut's name (rec709, bt2020, ...), a JSON file ("-" for standard
/// input) with the points "RedPoint", "GreenPoint", "BluePoint" and "WhitePoint" ({"lum", "x", "y"}) and an optional
/// "name", or chromaticities rx,ry:gx,gy:bx,by:wx,wy with an optional :luminance of white in cd/m2 (100 without one).
/// In the first and last form the primaries' luminances are those that add up to white. A gamut without a name is
/// called as it was typed. Faults: no input for a name or file that does not exist; bad data for a gamut that cannot be
/// one, with the reason.
Result<Model::ColorGamutInfo> readGamut(const QString& text);

/// The chromaticities of a gamut record.
Colour::Primaries primariesOf(const Model::ColorGamutInfo& gamut);

/// A gamut's four points in the order of all figures: red, green, blue, white.
std::array<const Model::LXY*, 4> pointsOf(const Model::ColorGamutInfo& gamut);

/// Names of the four points in that order: "red", "green", "blue", "white".
QString pointName(std::size_t point);

} // namespace Calibration
