#pragma once

#include <suite/colour/primaries.h>
#include <suite/colour/suite_colour_export.h>

#include <cstddef>
#include <memory>
#include <vector>

namespace Colour {

/// A corner of a common triangle.
struct CommonCorner
{
    Chromaticity place;      ///< in the plane in which the groups' triangles were given
    bool isOwn = false;      ///< a primary of a group, bit for bit; else two groups' edges cross there
    std::size_t group = 0;   ///< whose primary it is, where it is one
    std::size_t primary = 0; ///< which: 0 is red, 1 green, 2 blue
};

/// A triangle of largest area inside all triangles of some groups.
struct CommonTriangle
{
    std::array<CommonCorner, 3> corners; ///< counter-clockwise
    double area = 0.0;                   ///< in the plane of the groups' triangles
};

/// What the triangles of groups have in common: a convex polygon, on three corners of which its largest triangles
/// stand. Pure geometry in one plane; the triangles' turn and white do not matter. docs/colour.md has the derivation.
/// Made and asked in O(n log n) for n groups.
class SUITE_COLOUR_EXPORT CommonArea
{
public:
    /// Of one group or more, none of them on one line (isOnOneLine()). A common area in which no circle of
    /// `leastRadius`, above 0, has room counts as none; that of one group always counts.
    CommonArea(const std::vector<Primaries>& groups, double leastRadius);
    ~CommonArea();
    /// An area is handed on, not copied. @{
    CommonArea(CommonArea&& other) noexcept;
    CommonArea& operator=(CommonArea&& other) noexcept;
    /// @}

    /// Groups that have no common area among themselves, in their order: one, two or three of them, and fewer where
    /// fewer of these do. Empty where there is a common area; the functions below want that.
    const std::vector<std::size_t>& excluding() const;

    /// The polygon's number of corners: 3, and up to three times the number of groups.
    std::size_t cornerCount() const;

    /// Of one group its own.
    const CommonTriangle& largest() const;

    /// For each of two or more groups what largest() would be without it; never smaller.
    std::vector<CommonTriangle> largestWithoutEach() const;

private:
    class Geometry;
    std::unique_ptr<Geometry> m_geometry;
};

} // namespace Colour
