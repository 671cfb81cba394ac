#pragma once

#include <suite/colour/primaries.h>

#include <cstddef>
#include <vector>

namespace Colour {

constexpr double cross(const Chromaticity& a, const Chromaticity& b)
{
    return a.x * b.y - a.y * b.x;
}

constexpr double dot(const Chromaticity& a, const Chromaticity& b)
{
    return a.x * b.x + a.y * b.y;
}

constexpr Chromaticity operator-(const Chromaticity& a, const Chromaticity& b)
{
    return {a.x - b.x, a.y - b.y};
}

/// What lies to the left of a line.
struct HalfPlane
{
    Chromaticity at;    ///< a point of the line
    Chromaticity along; ///< its direction, of length 1

    /// How far inside a point lies; below 0 outside.
    double depth(const Chromaticity& point) const { return cross(along, point - at); }
    /// The point of the line at a distance from `at`.
    Chromaticity point(double position) const { return {at.x + position * along.x, at.y + position * along.y}; }
};

/// A point that lies deep enough in half-planes, or some of them that have none.
struct Room
{
    Chromaticity centre;
    std::vector<std::size_t> excluding; ///< two or three half-planes; empty where there is a centre
};

/// Looks for the centre of a circle of `radius` that has room in those `among` the half-planes. Linear in their number
/// on average over its own random order.
Room findRoom(const std::vector<HalfPlane>& planes, std::vector<std::size_t> among, double radius);

} // namespace Colour
