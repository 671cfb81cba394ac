#include "coverage.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace Colour {

namespace {

/// A triangle clipped by a triangle has at most six corners; while it is cut, rounding may leave a few more.
class Polygon
{
public:
    void add(const Chromaticity& point)
    {
        if (m_size < m_points.size())
            m_points[m_size++] = point;
    }
    std::size_t size() const { return m_size; }
    const Chromaticity& operator[](std::size_t index) const { return m_points[index]; }
    const Chromaticity& after(std::size_t index) const { return m_points[(index + 1) % m_size]; }

private:
    std::array<Chromaticity, 12> m_points{};
    std::size_t m_size = 0;
};

/// Twice the area of the triangle a, b, c; positive where it turns counter-clockwise.
double cross(const Chromaticity& a, const Chromaticity& b, const Chromaticity& c)
{
    return (b.x - a.x) * (c.y - a.y) - (c.x - a.x) * (b.y - a.y);
}

double area(const Polygon& polygon)
{
    double twice = 0.0;
    for (std::size_t i = 1; i + 1 < polygon.size(); ++i)
        twice += cross(polygon[0], polygon[i], polygon[i + 1]);
    return 0.5 * twice;
}

Polygon counterClockwise(const Primaries& p)
{
    const bool turned = cross(p.red, p.green, p.blue) < 0.0;
    Polygon result;
    result.add(p.red);
    result.add(turned ? p.blue : p.green);
    result.add(turned ? p.green : p.blue);
    return result;
}

/// The part of `polygon` to the left of the line from `a` to `b`.
Polygon clipped(const Polygon& polygon, const Chromaticity& a, const Chromaticity& b)
{
    Polygon result;
    for (std::size_t i = 0; i < polygon.size(); ++i) {
        const Chromaticity& from = polygon[i];
        const Chromaticity& to = polygon.after(i);
        const double fromSide = cross(a, b, from);
        const double toSide = cross(a, b, to);
        if (fromSide >= 0.0)
            result.add(from);
        if ((fromSide > 0.0 && toSide < 0.0) || (fromSide < 0.0 && toSide > 0.0)) {
            const double t = fromSide / (fromSide - toSide);
            result.add({from.x + t * (to.x - from.x), from.y + t * (to.y - from.y)});
        }
    }
    return result;
}

} // namespace

Coverage coverage(const Primaries& gamut, const Primaries& against)
{
    if (isOnOneLine(gamut) || isOnOneLine(against))
        return {};
    Polygon common = counterClockwise(gamut);
    const Polygon clip = counterClockwise(against);
    const double clipArea = area(clip);
    const double ratio = area(common) / clipArea;
    if (!std::isfinite(ratio))
        return {};
    for (std::size_t i = 0; i < clip.size(); ++i)
        common = clipped(common, clip[i], clip.after(i));
    const double covered = area(common) / clipArea;
    return {ratio, covered > 0.0 ? std::min(covered, 1.0) : 0.0};
}

} // namespace Colour
