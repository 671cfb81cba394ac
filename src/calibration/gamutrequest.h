#pragma once

#include <calibration/input.h>
#include <suite/colour/primaries.h>

#include <optional>

namespace Calibration {

/// A gamut as it is written on a command line, PRIMARIES[:WHITE][:CD_M2], taken apart.
struct GamutRequest
{
    QString text;      ///< all of it
    QString primaries; ///< a name, a file, "native", "common", or rx,ry:gx,gy:bx,by
    std::optional<Colour::Chromaticity> white;
    QString whiteName;               ///< as it was written; empty for none
    std::optional<double> luminance; ///< of white, 0.001 to 1,000,000 cd/m2
    bool isFile = false;             ///< `primaries` is a file that is there, or "-"

    /// How messages about it begin.
    QString subject() const { return QStringLiteral("gamut %1").arg(text); }
    /// Whether the primaries are the LEDs' own: "native", or "common" for those that all groups of a wall have.
    bool isNative() const;
};

/// Takes a gamut apart. The key of a standard gamut means it, whatever files there are; any other text that names a
/// file means the file. A white is D50, D55, D65 or D75, 6500K (daylight), 6500K-planck (a black body) or x,y; a white
/// alone stands for "native" with it. Fault: bad data for a part that is none of these, or a temperature out of range.
Result<GamutRequest> parseGamutRequest(const QString& text);

/// The gamut that a standard gives under a name: its key, its printed name or another common one, in any case and with
/// any punctuation. Null where none does.
const Colour::StandardGamut* standardGamut(const QString& name);

/// The primaries of rx,ry:gx,gy:bx,by with the white behind them; nothing where the text has no such
/// form. Fault: bad data for what has it in part.
Result<std::optional<Colour::Primaries>> typedPrimaries(const GamutRequest& request);

/// "neither a standard gamut nor a file", with what was probably meant where something is near.
Fault unknownGamut(const GamutRequest& request);

} // namespace Calibration
