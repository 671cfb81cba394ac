#pragma once

#include <suite/colour/primaries.h>
#include <suite/colour/suite_colour_export.h>

namespace Colour {

/// How a gamut's triangle relates to another's. Fractions.
struct Coverage
{
    double ratio = 0.0;   ///< area(gamut) / area(against), 0 or more
    double covered = 0.0; ///< area(gamut and against) / area(against), 0..1
};

/// CIE 1976 u', v' = 4x, 9y over -2x + 12y + 3. Infinite or NaN where that divisor is zero, which no real colour gives.
constexpr Chromaticity uvPrime(const Chromaticity& xy)
{
    const double divisor = -2.0 * xy.x + 12.0 * xy.y + 3.0;
    return {4.0 * xy.x / divisor, 9.0 * xy.y / divisor};
}

/// CIE 1931 x, y = 9u', 4v' over 6u' - 16v' + 12: the way back.
constexpr Chromaticity fromUvPrime(const Chromaticity& uv)
{
    const double divisor = 6.0 * uv.x - 16.0 * uv.y + 12.0;
    return {9.0 * uv.x / divisor, 4.0 * uv.y / divisor};
}

/// The primaries and white in u'v'.
constexpr Primaries uvPrime(const Primaries& xy)
{
    return {uvPrime(xy.red), uvPrime(xy.green), uvPrime(xy.blue), uvPrime(xy.white)};
}

/// The distance of two CIE 1931 chromaticities in CIE 1976 u', v'.
inline double uvDistance(const Chromaticity& first, const Chromaticity& second)
{
    const Chromaticity a = uvPrime(first);
    const Chromaticity b = uvPrime(second);
    return std::hypot(a.x - b.x, a.y - b.y);
}

/// Areas in the plane in which the primaries are given; the turn of either triangle does not matter, nor does white.
/// Intersection by Sutherland-Hodgman clipping, area by the shoelace formula. Both figures are zero where either
/// set of primaries is on one line or not finite.
SUITE_COLOUR_EXPORT Coverage coverage(const Primaries& gamut, const Primaries& against);

} // namespace Colour
