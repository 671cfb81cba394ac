#pragma once

#include <suite/colour/primaries.h>
#include <suite/model/colorgamutinfo.h>

#include <string>

/// Reads a gamut argument: a standard gamut's name (rec709, bt2020, ...), a JSON file with the points "RedPoint",
/// "GreenPoint", "BluePoint" and "WhitePoint" ({"lum", "x", "y"}) and an optional "name", or chromaticities
/// rx,ry:gx,gy:bx,by:wx,wy with an optional :luminance of white in cd/m2 (100 without one). In the first and last form
/// the primaries' luminances are those that add up to white. A gamut without a name is called as it was typed.
///
/// Throws CommandError: no input for a name or file that does not exist, bad data for a gamut that cannot be one, with
/// the reason.
Model::ColorGamutInfo parseGamut(const std::string& text);

/// The chromaticities of a gamut record.
Colour::Primaries primariesOf(const Model::ColorGamutInfo& gamut);
