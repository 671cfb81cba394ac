#include "outline_p.h"

#include <algorithm>

namespace Colour {

namespace {

/// The first index from `begin` on for which `holds` is false, `end` if there is none; it is true for all before and
/// for none behind. The search goes out from `near` in steps that double.
template <typename Predicate>
std::size_t firstFailing(std::size_t begin, std::size_t end, std::size_t near, const Predicate& holds)
{
    near = std::clamp(near, begin, end);
    std::size_t low = begin;
    std::size_t high = end;
    if (near < end && holds(near)) {
        low = near + 1;
        for (std::size_t step = 1; step < end - near; step *= 2) {
            if (!holds(near + step)) {
                high = near + step;
                break;
            }
            low = near + step + 1;
        }
    } else {
        high = near;
        for (std::size_t step = 1; step <= near - begin; step *= 2) {
            if (holds(near - step)) {
                low = near - step + 1;
                break;
            }
            high = near - step;
        }
    }
    while (low < high) {
        const std::size_t middle = low + (high - low) / 2;
        if (holds(middle))
            low = middle + 1;
        else
            high = middle;
    }
    return low;
}

/// The last index for which `holds` is true, which it is for `begin`.
template <typename Predicate>
std::size_t lastHolding(std::size_t begin, std::size_t end, std::size_t near, const Predicate& holds)
{
    return firstFailing(begin + 1, std::max(begin + 1, end), near + 1, holds) - 1;
}

/// An outline seen from one of its edges, which lies at the bottom.
class View
{
public:
    View(const Outline& outline, std::size_t edge)
        : m_outline(outline), m_along(outline[edge].along), m_origin(outline[edge].place), m_first(edge + 1),
          m_end(edge + outline.size())
    {}

    Legs legs(const Legs& near) const
    {
        Legs legs;
        legs.top = firstFailing(m_first, m_end, near.top, [this](std::size_t i) { return rises(i); });
        legs.right = lastHolding(m_first, legs.top, near.right, [&](std::size_t i) {
            return isTooLow(height(i), i, leftAt(height(i), legs.top, near.left));
        });
        legs.left = lastHolding(legs.top, m_end, near.left, [&](std::size_t i) {
            return !isTooLow(height(i), rightAt(height(i), legs.top, near.right), i);
        });
        return legs;
    }

private:
    double height(std::size_t i) const { return cross(m_along, m_outline[i].place - m_origin); }
    bool rises(std::size_t i) const { return cross(m_along, m_outline[i].along) > 0.0; }
    /// How far an edge goes to the right, for each step up.
    double slope(std::size_t i) const { return dot(m_along, m_outline[i].along) / cross(m_along, m_outline[i].along); }
    double placeAt(double level, std::size_t i) const
    {
        return dot(m_along, m_outline[i].place - m_origin) + (level - height(i)) * slope(i);
    }
    std::size_t rightAt(double level, std::size_t top, std::size_t near) const
    {
        return lastHolding(m_first, top, near, [&](std::size_t i) { return height(i) <= level; });
    }
    std::size_t leftAt(double level, std::size_t top, std::size_t near) const
    {
        return lastHolding(top, m_end, near, [&](std::size_t i) { return height(i) >= level; });
    }
    /// Whether level times length of the chord still grows upwards. Its logarithm is concave: it has one maximum.
    bool isTooLow(double level, std::size_t right, std::size_t left) const
    {
        return placeAt(level, right) - placeAt(level, left) + level * (slope(right) - slope(left)) > 0.0;
    }

    const Outline& m_outline;
    Chromaticity m_along;
    Chromaticity m_origin;
    std::size_t m_first;
    std::size_t m_end;
};

} // namespace

void Outline::append(const OutlineCorner* corners, std::size_t size, std::size_t whole)
{
    if (size == 0)
        return;
    m_pieces[m_count++] = {corners, m_size, size, whole};
    m_size += size;
}

const OutlineCorner& Outline::operator[](std::size_t index) const
{
    while (index >= m_size)
        index -= m_size;
    std::size_t piece = 0;
    while (index - m_pieces[piece].begin >= m_pieces[piece].size)
        ++piece;
    return m_pieces[piece].corners[index - m_pieces[piece].begin];
}

std::size_t Outline::indexOf(std::size_t corner, std::size_t wholeSize) const
{
    for (std::size_t i = 0; i < m_count; ++i) {
        if (m_pieces[i].whole == added)
            continue;
        const std::size_t offset = (corner + 2 * wholeSize - m_pieces[i].whole) % wholeSize;
        if (offset < m_pieces[i].size)
            return m_pieces[i].begin + offset;
    }
    return 0;
}

Legs legsOf(const Outline& outline, std::size_t edge, const Legs& near)
{
    return View(outline, edge).legs(near);
}

OutlineTriangle largestAt(const Outline& outline, std::size_t apex, const Legs& before, const Legs& behind)
{
    const Chromaticity& origin = outline[apex].place;
    const auto twiceArea = [&](std::size_t right, std::size_t left) {
        return cross(outline[right].place - origin, outline[left].place - origin);
    };
    OutlineTriangle largest;
    const std::size_t lastRight = std::max(before.right, behind.right) + 1;
    const std::size_t lastLeft = std::max(before.left, behind.left) + 1;
    std::size_t left = before.left;
    for (std::size_t right = std::max(before.right, apex + 1); right <= lastRight; ++right) {
        left = std::max(left, right);
        while (left < lastLeft && twiceArea(right, left + 1) >= twiceArea(right, left))
            ++left;
        const double area = 0.5 * twiceArea(right, left);
        if (area > largest.area)
            largest = {{apex, right, left}, area};
    }
    return largest;
}

} // namespace Colour
