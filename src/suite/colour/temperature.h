#pragma once

#include <suite/colour/primaries.h>
#include <suite/colour/suite_colour_export.h>

#include <optional>

namespace Colour {

/// Ranges of the functions below.
inline constexpr double minPlanckian = 1000.0;   ///< kelvin, of planckianWhite()
inline constexpr double maxPlanckian = 100000.0; ///< kelvin
inline constexpr double minDaylight = 4000.0;    ///< kelvin, of daylightWhite()
inline constexpr double maxDaylight = 25000.0;   ///< kelvin

/// The chromaticity of a black body of `kelvin`: Planck's law with c2 = 0.014388 m K, summed over the CIE 1931 observer
/// from 360 to 830 nm in steps of 5 nm. Nothing outside of minPlanckian..maxPlanckian.
SUITE_COLOUR_EXPORT std::optional<Chromaticity> planckianWhite(double kelvin);

/// The chromaticity of a phase of daylight of the correlated temperature `kelvin`, by the polynomials of CIE 15. D65 is
/// the phase of 6504 K; the illuminants' own chromaticities differ from the polynomials by up to 0.00013 in y. Nothing
/// outside of minDaylight..maxDaylight.
SUITE_COLOUR_EXPORT std::optional<Chromaticity> daylightWhite(double kelvin);

/// The Planckian temperature that is nearest to a chromaticity.
struct CorrelatedTemperature
{
    double kelvin = 0.0; ///< within the range of planckianWhite()
    double duv = 0.0;    ///< distance from the locus in CIE 1960 u, v; above zero on the green side
};

/// The foot of the perpendicular from `xy` on the locus of planckianWhite() in CIE 1960 u, v, found by bisection: some
/// fifty summations, tens of microseconds. Nothing further than 0.05 from the locus, beyond the range of
/// planckianWhite(), or for a number that is not finite. docs/colour.md says how exact it is.
SUITE_COLOUR_EXPORT std::optional<CorrelatedTemperature> correlatedTemperature(const Chromaticity& xy);

} // namespace Colour
