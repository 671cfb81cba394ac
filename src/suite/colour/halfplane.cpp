#include "halfplane_p.h"

#include <algorithm>
#include <random>

namespace Colour {

namespace {

constexpr double rounding = 1e-13;

/// Two-dimensional linear programming after Seidel: half-planes are added one by one. Where the best point so far is
/// outside of one, the best point now lies on its line, and the others leave an interval there, or nothing: then the
/// line and those of the interval's ends exclude each other.
class RoomSearch
{
public:
    RoomSearch(const std::vector<HalfPlane>& planes, const std::vector<std::size_t>& among, double radius)
        : m_planes(planes), m_among(among), m_radius(radius)
    {
        for (const std::size_t plane : among)
            m_limit = std::max({m_limit, std::abs(planes[plane].at.x), std::abs(planes[plane].at.y)});
        m_limit *= 4.0;
    }

    Room run()
    {
        m_room.centre = {m_limit, m_limit}; // best is furthest to the right and up, within the limits
        for (std::size_t i = 0; i < m_among.size() && m_room.excluding.empty(); ++i)
            if (m_planes[m_among[i]].depth(m_room.centre) < m_radius - rounding)
                moveOnto(i);
        return m_room;
    }

private:
    /// Where a line that goes through the square of the limits enters and leaves it.
    std::pair<double, double> withinLimits(const HalfPlane& line) const
    {
        double low = -4.0 * m_limit;
        double high = 4.0 * m_limit;
        for (const auto& [at, along] : {std::pair{line.at.x, line.along.x}, std::pair{line.at.y, line.along.y}}) {
            if (std::abs(along) < rounding)
                continue;
            low = std::max(low, (-std::copysign(m_limit, along) - at) / along);
            high = std::min(high, (std::copysign(m_limit, along) - at) / along);
        }
        return {low, high};
    }

    void moveOnto(std::size_t added)
    {
        const std::size_t line = m_among[added];
        HalfPlane moved = m_planes[line];
        moved.at = {moved.at.x - m_radius * moved.along.y, moved.at.y + m_radius * moved.along.x};
        auto [low, high] = withinLimits(moved);
        std::size_t lowLine = line;
        std::size_t highLine = line;
        for (std::size_t i = 0; i < added; ++i) {
            const HalfPlane& other = m_planes[m_among[i]];
            const double lean = cross(other.along, moved.along);
            const double missing = m_radius - other.depth(moved.at);
            if (std::abs(lean) < rounding) {
                if (missing > rounding) {
                    m_room.excluding = {line, m_among[i]};
                    return;
                }
            } else if (lean > 0.0 && missing / lean > low) {
                low = missing / lean;
                lowLine = m_among[i];
            } else if (lean < 0.0 && missing / lean < high) {
                high = missing / lean;
                highLine = m_among[i];
            }
        }
        if (low > high)
            m_room.excluding = {line, lowLine, highLine};
        m_room.centre = moved.point(moved.along.x + moved.along.y > 0.0 ? high : low);
    }

    const std::vector<HalfPlane>& m_planes;
    const std::vector<std::size_t>& m_among;
    double m_radius;
    double m_limit = 1.0; ///< of both coordinates; far outside of all triangles
    Room m_room;
};

} // namespace

Room findRoom(const std::vector<HalfPlane>& planes, std::vector<std::size_t> among, double radius)
{
    std::shuffle(among.begin(), among.end(), std::minstd_rand());
    return RoomSearch(planes, among, radius).run();
}

} // namespace Colour
