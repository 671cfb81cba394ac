#pragma once

#include <calibration/input.h>
#include <suite/model/colorgamutinfo.h>

namespace Calibration {

/// A target gamut as it is asked for.
struct Target
{
    Model::ColorGamutInfo gamut; ///< luminances are 0 unless one was asked for: the wall's then decides
    QString text;                ///< as the user gave it
    bool isNative = false;       ///< red, green and blue are the wall's own: onWall() fills them in
    std::optional<InputDigest> file;
};

/// Reads a target, PRIMARIES[:WHITE][:CD_M2] (parseGamutRequest()). The primaries are a standard gamut's, those of a
/// file as parseMeasurement() reads it (of a NICC document its target's), rx,ry:gx,gy:bx,by with a white, or "native"
/// or "common", with D65 where no white is given. A white or luminance that is given counts more than the file's.
/// Faults: no input for a name or file that does not exist; bad data for what makes no gamut, or swaps primaries unless
/// `force`.
Result<Target> readTarget(const QString& text, bool force);

/// The target's gamut on a wall of that measured gamut. Fault: bad data for a white outside the wall's own triangle.
Result<Model::ColorGamutInfo> onWall(const Target& target, const Model::ColorGamutInfo& measured);

} // namespace Calibration
