#include "temperature.h"

#include "observer_p.h"
#include <suite/colour/coverage.h>

namespace Colour {

namespace {

constexpr double radiationConstant = 1.4388e7; // nm K, as CIE 15 fixes it for colorimetry

constexpr double toMired(double kelvin)
{
    return 1e6 / kelvin;
}

/// A place on the Planckian locus and how it moves per mired.
struct LocusPoint
{
    Vector3 xyz{};
    Vector3 slope{};
};

LocusPoint locusPoint(double mired)
{
    LocusPoint result;
    double wavelength = observerFirst;
    for (const Vector3& response : observer) {
        const double perUnit = radiationConstant / (1e6 * wavelength);
        const double grown = std::expm1(perUnit * mired);
        const double relative = 560.0 / wavelength; // keeps the powers small
        const double squared = relative * relative;
        const double radiance = squared * squared * relative / grown;
        const double slope = -radiance * perUnit * (grown + 1.0) / grown;
        for (std::size_t i = 0; i < 3; ++i) {
            result.xyz[i] += radiance * response[i];
            result.slope[i] += slope * response[i];
        }
        wavelength += observerStep;
    }
    return result;
}

/// CIE 1960 u, v: the plane in which CIE defines the correlated colour temperature.
Chromaticity uv(const Chromaticity& xy)
{
    const Chromaticity prime = uvPrime(xy);
    return {prime.x, prime.y * 2.0 / 3.0};
}

/// Where a chromaticity lies as seen from a place on the locus, in u, v.
struct Offset
{
    double along = 0.0; ///< above zero where the foot of the perpendicular lies at more mireds
    double du = 0.0;
    double dv = 0.0;
};

Offset offset(const Chromaticity& point, double mired)
{
    const LocusPoint locus = locusPoint(mired);
    const double divisor = locus.xyz[0] + 15.0 * locus.xyz[1] + 3.0 * locus.xyz[2];
    const double divisorSlope = locus.slope[0] + 15.0 * locus.slope[1] + 3.0 * locus.slope[2];
    const double u = 4.0 * locus.xyz[0] / divisor;
    const double v = 6.0 * locus.xyz[1] / divisor;
    const double uSlope = (4.0 * locus.slope[0] - u * divisorSlope) / divisor;
    const double vSlope = (6.0 * locus.slope[1] - v * divisorSlope) / divisor;
    Offset result{0.0, point.x - u, point.y - v};
    result.along = result.du * uSlope + result.dv * vSlope;
    return result;
}

} // namespace

std::optional<Chromaticity> planckianWhite(double kelvin)
{
    if (!(kelvin >= minPlanckian && kelvin <= maxPlanckian))
        return std::nullopt;
    const Vector3 xyz = locusPoint(toMired(kelvin)).xyz;
    return Chromaticity{xyz[0] / rowSum(xyz), xyz[1] / rowSum(xyz)};
}

std::optional<Chromaticity> daylightWhite(double kelvin)
{
    if (!(kelvin >= minDaylight && kelvin <= maxDaylight))
        return std::nullopt;
    const double t = 1e3 / kelvin;
    const double x = kelvin <= 7000.0 ? ((-4.6070 * t + 2.9678) * t + 0.09911) * t + 0.244063
                                      : ((-2.0064 * t + 1.9018) * t + 0.24748) * t + 0.237040;
    return Chromaticity{x, (-3.0 * x + 2.870) * x - 0.275};
}

std::optional<CorrelatedTemperature> correlatedTemperature(const Chromaticity& xy)
{
    constexpr double widest = 0.05;  // CIE 15: no correlated temperature further off
    constexpr double nearest = 1e-9; // mired
    const Chromaticity point = uv(xy);
    double low = toMired(maxPlanckian);
    double high = toMired(minPlanckian);
    if (!(offset(point, low).along >= 0.0) || !(offset(point, high).along <= 0.0))
        return std::nullopt;
    while (high - low > nearest) {
        const double middle = 0.5 * (low + high);
        (offset(point, middle).along > 0.0 ? low : high) = middle;
    }
    const Offset found = offset(point, low);
    const double distance = std::hypot(found.du, found.dv);
    if (!(distance <= widest))
        return std::nullopt;
    return CorrelatedTemperature{1e6 / low, std::copysign(distance, found.dv)};
}

} // namespace Colour
