#include "planckianlocus.h"

#include <algorithm>

namespace Charts {

namespace {

/// a v^3 + b v^2 + c v + d
struct Cubic
{
    double a, b, c, d;

    constexpr double operator()(double v) const { return ((a * v + b) * v + c) * v + d; }
};

// x over 1000 K / T, y over x.
constexpr Cubic coolX{-0.2661239, -0.2343589, 0.8776956, 0.179910}; // to 4000 K
constexpr Cubic hotX{-3.0258469, 2.1070379, 0.2226347, 0.240390};
constexpr Cubic coolestY{-1.1063814, -1.34811020, 2.18555832, -0.20219683}; // to 2222 K
constexpr Cubic coolY{-0.9549476, -1.37418593, 2.09137015, -0.16748867};    // to 4000 K
constexpr Cubic hotY{3.0817580, -5.87338670, 3.75112997, -0.37001483};

} // namespace

Colour::Chromaticity planckian(double kelvin)
{
    const double temperature = std::clamp(kelvin, coolestPlanckian, hottestPlanckian);
    const bool cool = temperature <= 4000.0;
    const double x = (cool ? coolX : hotX)(1000.0 / temperature);
    const Cubic& y = temperature <= 2222.0 ? coolestY : cool ? coolY : hotY;
    return {x, y(x)};
}

} // namespace Charts
