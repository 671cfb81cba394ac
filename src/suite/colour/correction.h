#pragma once

#include <suite/colour/matrix.h>
#include <suite/colour/primaries.h>
#include <suite/colour/suite_colour_export.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>

namespace Colour {

/// Nine coefficients of a correction, row-major: rows are LED channels, columns content channels (red, green, blue in
/// both). Signed Q1.14: `fullScale` is 1.0.
using Coefficients = std::array<std::int16_t, 9>;
/// 1.0 in coefficients: a content channel at full drives the LED channel at full.
inline constexpr int fullScale = 16384;

/// The drive of red, green and blue for white, in units of `fullScale`. A wall cannot show the white where one of them
/// is zero or less.
constexpr std::array<int, 3> rowSums(const Coefficients& c)
{
    return {c[0] + c[1] + c[2], c[3] + c[4] + c[5], c[6] + c[7] + c[8]};
}

/// The coefficients as fractions of full scale, without loss.
constexpr Matrix3 toMatrix(const Coefficients& coefficients)
{
    Matrix3 result{};
    for (std::size_t i = 0; i < coefficients.size(); ++i)
        result[i / 3][i % 3] = static_cast<double>(coefficients[i]) / fullScale;
    return result;
}

/// A drive as a wall takes it: each channel limited to 0..1 (full scale).
constexpr Vector3 limitedDrive(Vector3 drive)
{
    for (double& channel : drive)
        channel = std::clamp(channel, 0.0, 1.0);
    return drive;
}

/// Linear RGB to CIE XYZ: the columns are the XYZ of red, green and blue, scaled so that (1, 1, 1) gives white with
/// Y = 1 (SMPTE RP 177). Nothing for primaries that make no RGB system: a y of zero, three points on a line, a number
/// that is not finite.
SUITE_COLOUR_EXPORT std::optional<Matrix3> rgbToXyz(const Primaries& primaries);

/// Linear target RGB to linear LED drive, N_source^-1 * N_target: equal luminance of white, no chromatic adaptation,
/// not yet scaled to what a wall can show. Its row sums, all above zero, are the drive of target white. Nothing where
/// either system is none, or where a white cannot be shown (showsWhite()): the source's or the target's by its own
/// primaries, or the target's by the source's.
SUITE_COLOUR_EXPORT std::optional<Matrix3> correctionMatrix(const Primaries& source, const Primaries& target);

/// The factor for a correction matrix, s_fit + k (s_keep - s_fit) with k = `ratio` limited to 0..1, never above s_fit.
/// At 0, s_fit = 1 / largest row sum: white is as bright as it can be without any channel above full scale; or less,
/// where an entry would pass what the coefficients' type holds. At 1, s_keep = target's over source's luminance of
/// white (cd/m2; 1 where either is not positive and finite). Nothing where there is no positive
/// factor.
SUITE_COLOUR_EXPORT std::optional<double> whiteScale(const Matrix3& correction, double ratio, double targetLuminance,
                                                     double sourceLuminance);

/// A scaled correction in fixed point: each entry rounded to nearest, the largest of each row then adjusted so that the
/// row sums to its own rounded sum (white is what the eye sees). What the type cannot hold is cut, which shifts white;
/// a matrix scaled by whiteScale() has no such entry.
SUITE_COLOUR_EXPORT Coefficients quantised(const Matrix3& correction);

} // namespace Colour
