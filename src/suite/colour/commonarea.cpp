#include "commonarea.h"

#include "sides_p.h"

#include <algorithm>

namespace Colour {

namespace {

constexpr std::size_t noCorner = static_cast<std::size_t>(-1);

/// Edges of one group that follow each other, by their corners; `last` may pass the number of corners.
struct Run
{
    std::size_t first;
    std::size_t last;
};

} // namespace

/// The polygon, and what it takes to leave a group out of it. docs/colour.md says why that costs no more than what
/// changes.
class CommonArea::Geometry
{
public:
    Geometry(const std::vector<Primaries>& groups, double leastRadius);

    std::vector<CommonTriangle> withoutEach() const;

    std::vector<std::size_t> excluding;
    std::size_t size = 0; ///< number of corners
    CommonTriangle largest;

private:
    /// On any corners of a polygon, and the legs of its edges.
    static OutlineTriangle largestOf(const Outline& outline, std::vector<Legs>& legs);
    void setPolygon(std::vector<OutlineCorner> corners);
    CommonTriangle triangleOf(const Outline& outline, const OutlineTriangle& triangle) const;
    CommonTriangle without(std::size_t group) const;
    CommonTriangle withoutAllEdges(std::size_t group) const;
    std::vector<Run> runsOf(std::size_t group) const;
    /// Of the triangles on some corners that are new, next to an edge of which the polygon's legs are known.
    OutlineTriangle largestOn(const Outline& outline, std::size_t begin, std::size_t count, const Legs& near) const;

    Sides m_sides;
    std::size_t m_groupCount;
    std::vector<OutlineCorner> m_corners; ///< twice over, so that every piece is in one
    std::vector<Legs> m_legs;             ///< of the edge of each corner
    std::vector<std::size_t> m_cornerOf;  ///< by line, where its edge begins, or noCorner
    std::vector<std::size_t> m_ownEdges;  ///< by group, how many edges are its own
};

CommonArea::Geometry::Geometry(const std::vector<Primaries>& groups, double leastRadius)
    : m_sides(groups), m_groupCount(groups.size())
{
    if (m_groupCount > 1)
        excluding = m_sides.excluding(leastRadius);
    if (!excluding.empty())
        return;
    const std::size_t first = m_groupCount > 1 ? m_sides.nearest(Sides::noGroup) : 0;
    setPolygon(m_sides.boundary(first, first, Sides::noGroup));
    Outline outline;
    outline.append(m_corners.data(), size, 0);
    largest = triangleOf(outline, largestOf(outline, m_legs));
}

void CommonArea::Geometry::setPolygon(std::vector<OutlineCorner> corners)
{
    size = corners.size();
    m_corners = std::move(corners);
    m_corners.reserve(2 * size);
    std::copy_n(m_corners.begin(), size, std::back_inserter(m_corners));
    m_cornerOf.assign(m_sides.lines().size(), noCorner);
    m_ownEdges.assign(m_groupCount, 0);
    for (std::size_t i = 0; i < size; ++i) {
        m_cornerOf[m_corners[i].line] = i;
        ++m_ownEdges[Sides::groupOf(m_corners[i].line)];
    }
}

OutlineTriangle CommonArea::Geometry::largestOf(const Outline& outline, std::vector<Legs>& legs)
{
    const std::size_t size = outline.size();
    legs.assign(1, legsOf(outline, 0, {size / 3, size / 2, 2 * size / 3}));
    OutlineTriangle largest;
    for (std::size_t i = 1; i <= size; ++i) {
        legs.push_back(legsOf(outline, i, legs.back()));
        const OutlineTriangle triangle = largestAt(outline, i, legs[i - 1], legs[i]);
        if (triangle.area > largest.area)
            largest = triangle;
    }
    return largest;
}

CommonTriangle CommonArea::Geometry::triangleOf(const Outline& outline, const OutlineTriangle& triangle) const
{
    CommonTriangle result;
    result.area = triangle.area;
    for (std::size_t i = 0; i < 3; ++i) {
        const OutlineCorner& corner = outline[triangle.corners[i]];
        result.corners[i] = {corner.place, Sides::meetInPrimary(corner.before, corner.line),
                             Sides::groupOf(corner.line), m_sides.primaryOf(corner.line)};
    }
    return result;
}

std::vector<CommonTriangle> CommonArea::Geometry::withoutEach() const
{
    std::vector<CommonTriangle> result;
    result.reserve(m_groupCount);
    for (std::size_t group = 0; group < m_groupCount; ++group)
        result.push_back(m_ownEdges[group] > 0 ? without(group) : largest);
    return result;
}

CommonTriangle CommonArea::Geometry::without(std::size_t group) const
{
    const auto runs = runsOf(group);
    if (m_ownEdges[group] == size)
        return withoutAllEdges(group);
    std::vector<std::vector<OutlineCorner>> chains;
    std::vector<std::size_t> begins;
    Outline outline;
    for (std::size_t i = 0; i < runs.size(); ++i) {
        const Run& run = runs[i];
        const std::size_t kept = run.last + 2; // the edge behind begins at a new corner
        const std::size_t next = i + 1 < runs.size() ? runs[i + 1].first : runs.front().first + size;
        chains.push_back(m_sides.boundary(m_corners[run.first].before, m_corners[run.last + 1].line, group));
        begins.push_back(outline.size());
        outline.append(chains.back().data(), chains.back().size(), Outline::added);
        outline.append(m_corners.data() + kept % size, next - kept, kept % size);
    }
    OutlineTriangle best;
    for (std::size_t i = 0; i < runs.size(); ++i) {
        const auto triangle =
            largestOn(outline, begins[i], chains[i].size(), m_legs[(runs[i].first + size - 1) % size]);
        if (triangle.area > best.area)
            best = triangle;
    }
    return best.area > largest.area ? triangleOf(outline, best) : largest;
}

std::vector<Run> CommonArea::Geometry::runsOf(std::size_t group) const
{
    std::vector<Run> runs;
    std::array<std::size_t, 3> edges{};
    for (std::size_t i = 0; i < 3; ++i)
        edges[i] = m_cornerOf[3 * group + i];
    std::sort(edges.begin(), edges.end());
    const auto isOwn = [&](std::size_t edge) { return Sides::groupOf(m_corners[edge].line) == group; };
    for (const std::size_t edge : edges) {
        if (edge == noCorner || isOwn(edge + size - 1))
            continue;
        runs.push_back({edge, edge});
        while (isOwn(runs.back().last + 1))
            ++runs.back().last;
    }
    return runs;
}

OutlineTriangle CommonArea::Geometry::largestOn(const Outline& outline, std::size_t begin, std::size_t count,
                                                const Legs& near) const
{
    std::size_t apex = begin + outline.size();
    const auto here = [&](std::size_t corner) {
        const std::size_t index = outline.indexOf(corner, size);
        return index < begin ? index + 2 * outline.size() : index + outline.size();
    };
    Legs before = legsOf(outline, apex - 1, {here(near.right), here(near.top), here(near.left)});
    OutlineTriangle largestHere;
    for (std::size_t end = apex + count; apex < end; ++apex) {
        const Legs behind = legsOf(outline, apex, before);
        const OutlineTriangle triangle = largestAt(outline, apex, before, behind);
        if (triangle.area > largestHere.area)
            largestHere = triangle;
        before = behind;
    }
    return largestHere;
}

CommonTriangle CommonArea::Geometry::withoutAllEdges(std::size_t group) const
{
    const std::size_t first = m_sides.nearest(group);
    const auto corners = m_sides.boundary(first, first, group);
    Outline outline;
    outline.append(corners.data(), corners.size(), 0);
    std::vector<Legs> legs;
    return triangleOf(outline, largestOf(outline, legs));
}

CommonArea::CommonArea(const std::vector<Primaries>& groups, double leastRadius)
    : m_geometry(std::make_unique<Geometry>(groups, leastRadius))
{}

CommonArea::~CommonArea() = default;
CommonArea::CommonArea(CommonArea&& other) noexcept = default;
CommonArea& CommonArea::operator=(CommonArea&& other) noexcept = default;

const std::vector<std::size_t>& CommonArea::excluding() const
{
    return m_geometry->excluding;
}

std::size_t CommonArea::cornerCount() const
{
    return m_geometry->size;
}

const CommonTriangle& CommonArea::largest() const
{
    return m_geometry->largest;
}

std::vector<CommonTriangle> CommonArea::largestWithoutEach() const
{
    return m_geometry->withoutEach();
}

} // namespace Colour
