#pragma once

#include <suite/colour/primaries.h>

namespace Charts {

inline constexpr double coolestPlanckian = 1667.0;  ///< kelvin
inline constexpr double hottestPlanckian = 25000.0; ///< kelvin

/// The chromaticity of a black body, CIE 1931: the cubic approximation of Kim et al. (2002), "Design of Advanced Color
/// Temperature Control System for HDTV Applications", J. Korean Phys. Soc. 41, made for coolestPlanckian to
/// hottestPlanckian. A temperature outside is taken as the nearer end.
Colour::Chromaticity planckian(double kelvin);

} // namespace Charts
