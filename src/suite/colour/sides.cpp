#include "sides_p.h"

#include <algorithm>
#include <limits>
#include <numeric>

namespace Colour {

namespace {

/// Lines that turn less are one: over a gamut they are nowhere further apart than this.
constexpr double leastTurn = 1e-14;
/// An edge that is shorter is none.
constexpr double leastLength = 1e-13;

HalfPlane sideFrom(const Chromaticity& from, const Chromaticity& to)
{
    const Chromaticity way = to - from;
    const double length = std::hypot(way.x, way.y);
    return {from, {way.x / length, way.y / length}};
}

/// Red, green and blue in the order in which they turn counter-clockwise.
std::array<std::size_t, 3> counterClockwise(const std::array<Chromaticity, 3>& points)
{
    if (cross(points[1] - points[0], points[2] - points[0]) > 0.0)
        return {0, 1, 2};
    return {0, 2, 1};
}

} // namespace

/// A boundary as it grows. Where on its line each edge begins decides whether the edge stays: so the corners of two
/// lines that are nearly one, whose crossing is noise, never go backwards.
struct Sides::Chain
{
    std::size_t firstLine;
    std::vector<OutlineCorner> corners{};
    std::vector<double> begins{}; ///< places on the edges' own lines

    std::size_t lastLine() const { return corners.empty() ? firstLine : corners.back().line; }
    double lastBegin() const { return begins.empty() ? -std::numeric_limits<double>::infinity() : begins.back(); }
    void pop()
    {
        corners.pop_back();
        begins.pop_back();
    }
};

Sides::Sides(const std::vector<Primaries>& groups)
{
    m_lines.reserve(3 * groups.size());
    m_primaries.reserve(3 * groups.size());
    std::vector<double> angles;
    angles.reserve(3 * groups.size());
    for (const Primaries& group : groups) {
        const std::array points{group.red, group.green, group.blue};
        const auto order = counterClockwise(points);
        for (std::size_t i = 0; i < 3; ++i) {
            m_lines.push_back(sideFrom(points[order[i]], points[order[(i + 1) % 3]]));
            m_primaries.push_back(order[i]);
            angles.push_back(std::atan2(m_lines.back().along.y, m_lines.back().along.x));
        }
    }
    m_byAngle.resize(m_lines.size());
    std::iota(m_byAngle.begin(), m_byAngle.end(), std::size_t{0});
    std::sort(m_byAngle.begin(), m_byAngle.end(), [&angles](std::size_t a, std::size_t b) {
        return angles[a] != angles[b] ? angles[a] < angles[b] : a < b;
    });
    m_rank.resize(m_lines.size());
    for (std::size_t i = 0; i < m_byAngle.size(); ++i)
        m_rank[m_byAngle[i]] = i;
}

bool Sides::meetInPrimary(std::size_t before, std::size_t line)
{
    return groupOf(before) == groupOf(line) && (before + 1) % 3 == line % 3;
}

std::vector<std::size_t> Sides::excluding(double radius)
{
    std::vector<std::size_t> all(m_lines.size());
    std::iota(all.begin(), all.end(), std::size_t{0});
    const Room room = findRoom(m_lines, std::move(all), radius);
    m_centre = room.centre;
    std::vector<std::size_t> groups;
    std::transform(room.excluding.begin(), room.excluding.end(), std::back_inserter(groups), groupOf);
    std::sort(groups.begin(), groups.end());
    groups.erase(std::unique(groups.begin(), groups.end()), groups.end());
    return smallestOf(groups, radius);
}

std::vector<std::size_t> Sides::smallestOf(const std::vector<std::size_t>& groups, double radius) const
{
    if (groups.size() <= 1)
        return groups;
    for (const std::size_t group : groups)
        if (excludeEachOther({group}, radius))
            return {group};
    if (groups.size() == 2)
        return groups;
    for (std::size_t i = 0; i < 3; ++i) {
        std::vector<std::size_t> two = groups;
        two.erase(two.begin() + static_cast<std::ptrdiff_t>(i));
        if (excludeEachOther(two, radius))
            return two;
    }
    return groups;
}

bool Sides::excludeEachOther(const std::vector<std::size_t>& groups, double radius) const
{
    std::vector<std::size_t> lines;
    for (const std::size_t group : groups)
        lines.insert(lines.end(), {3 * group, 3 * group + 1, 3 * group + 2});
    return !findRoom(m_lines, lines, radius).excluding.empty();
}

std::size_t Sides::nearest(std::size_t withoutGroup) const
{
    std::size_t result = 0;
    double least = std::numeric_limits<double>::infinity();
    for (std::size_t line = 0; line < m_lines.size(); ++line) {
        const double depth = m_lines[line].depth(m_centre);
        if (depth < least && groupOf(line) != withoutGroup) {
            least = depth;
            result = line;
        }
    }
    return result;
}

std::vector<OutlineCorner> Sides::boundary(std::size_t from, std::size_t until, std::size_t withoutGroup) const
{
    Chain chain{from};
    std::size_t rank = m_rank[from];
    do {
        rank = rank + 1 < m_byAngle.size() ? rank + 1 : 0;
        const std::size_t line = m_byAngle[rank];
        if (groupOf(line) != withoutGroup)
            push(chain, line, line == until);
    } while (m_byAngle[rank] != until);
    return chain.corners;
}

void Sides::push(Chain& chain, std::size_t line, bool isLast) const
{
    const HalfPlane& next = m_lines[line];
    for (;; chain.pop()) {
        const HalfPlane& top = m_lines[chain.lastLine()];
        const double turn = cross(top.along, next.along);
        const bool isFirst = chain.corners.empty();
        if (turn < leastTurn && !isFirst && (isLast || next.depth(m_centre) < top.depth(m_centre)))
            continue; // the same edge, and this one is the nearer
        if (turn < leastTurn && !isLast)
            return;
        const double position = cross(next.along, top.at - next.at) / turn;
        if (!isFirst && position - chain.lastBegin() < leastLength)
            continue;
        const std::size_t before = chain.lastLine();
        const Chromaticity place = meetInPrimary(before, line) ? next.at : top.point(position);
        chain.corners.push_back({place, next.along, line, before});
        chain.begins.push_back(dot(next.along, place - next.at));
        return;
    }
}

} // namespace Colour
