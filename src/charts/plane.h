#pragma once

#include <suite/colour/coverage.h>

#include <QPointF>

namespace Charts {

enum class Plane { Xy, UvPrime };

/// Where a chromaticity is drawn.
inline QPointF toPlane(const Colour::Chromaticity& xy, Plane plane)
{
    const Colour::Chromaticity point = plane == Plane::Xy ? xy : Colour::uvPrime(xy);
    return {point.x, point.y};
}

/// The inverse of u', v': x = 9u' / (6u' - 16v' + 12), y = 4v' / (6u' - 16v' + 12).
inline Colour::Chromaticity toXy(const QPointF& point, Plane plane)
{
    if (plane == Plane::Xy)
        return {point.x(), point.y()};
    const double divisor = 6.0 * point.x() - 16.0 * point.y() + 12.0;
    return {9.0 * point.x() / divisor, 4.0 * point.y() / divisor};
}

} // namespace Charts
