#pragma once

#include "outline_p.h"

namespace Colour {

/// The sides of the triangles of all groups, as half-planes: side i of group g is line 3 g + i.
class Sides
{
public:
    explicit Sides(const std::vector<Primaries>& groups);

    const std::vector<HalfPlane>& lines() const { return m_lines; }
    static std::size_t groupOf(std::size_t line) { return line / 3; }
    /// Groups whose triangles have no common room for a circle, in their order; empty where there is room, the centre
    /// of which the sides then keep. As few as exclude each other, of those that were found first.
    std::vector<std::size_t> excluding(double radius);

    /// The line nearest to the centre, which is a side of the common area; without those of a group, if one is given.
    std::size_t nearest(std::size_t withoutGroup) const;
    /// The boundary of the common area from one of its sides on until another one, which is the last of the result and
    /// may be the same; without the lines of a group. Linear in the number of lines whose angles lie between.
    std::vector<OutlineCorner> boundary(std::size_t from, std::size_t until, std::size_t withoutGroup) const;

    /// The primary (0 is red) at which a side of its triangle begins.
    std::size_t primaryOf(std::size_t line) const { return m_primaries[line]; }
    /// Whether two sides that follow each other meet in a primary of their own triangle.
    static bool meetInPrimary(std::size_t before, std::size_t line);

    static constexpr std::size_t noGroup = static_cast<std::size_t>(-1);

private:
    struct Chain;
    void push(Chain& chain, std::size_t line, bool isLast) const;
    std::vector<std::size_t> smallestOf(const std::vector<std::size_t>& groups, double radius) const;
    bool excludeEachOther(const std::vector<std::size_t>& groups, double radius) const;

    std::vector<HalfPlane> m_lines;
    std::vector<std::size_t> m_primaries; ///< by line
    std::vector<std::size_t> m_byAngle;   ///< lines
    std::vector<std::size_t> m_rank;      ///< by line, its place in m_byAngle
    Chromaticity m_centre;
};

} // namespace Colour
