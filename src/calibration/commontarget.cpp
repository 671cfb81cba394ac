#include "commontarget.h"

#include <calibration/gamut.h>
#include <suite/colour/commonarea.h>
#include <suite/colour/coverage.h>

#include <QStringList>

namespace Calibration {

namespace {

using Colour::Chromaticity;
using Colour::Primaries;

/// Red, green and blue.
using Points = std::array<Chromaticity, 3>;

Points pointsOf(const Primaries& primaries)
{
    return {primaries.red, primaries.green, primaries.blue};
}

double turnOf(const Points& p)
{
    return (p[1].x - p[0].x) * (p[2].y - p[0].y) - (p[1].y - p[0].y) * (p[2].x - p[0].x);
}

/// The direction from white, of length 1.
Chromaticity hueOf(const Chromaticity& point, const Chromaticity& white)
{
    const double distance = std::hypot(point.x - white.x, point.y - white.y);
    return {(point.x - white.x) / distance, (point.y - white.y) / distance};
}

/// Gives the corners of common triangles the names that the groups' primaries have.
class Naming
{
public:
    Naming(const std::vector<MatchGroup>& groups, const std::vector<Primaries>& uv, const Chromaticity& white)
        : m_groups(groups), m_white(white), m_uvWhite(uvPrime(white)),
          m_turn(turnOf(pointsOf(uv.front())) > 0.0 ? 1 : 2)
    {
        for (const Primaries& group : uv) {
            const Points points = pointsOf(group);
            for (std::size_t i = 0; i < points.size(); ++i) {
                const Chromaticity hue = hueOf(points[i], m_uvWhite);
                m_hues[i] = {m_hues[i].x + hue.x, m_hues[i].y + hue.y};
            }
        }
    }

    SharedTriangle named(const Colour::CommonTriangle& triangle) const
    {
        std::size_t best = 0;
        for (const std::size_t red : {std::size_t{1}, std::size_t{2}})
            if (likeness(triangle, red) > likeness(triangle, best))
                best = red;
        SharedTriangle result;
        result.area = triangle.area;
        result.primaries = {placeOf(corner(triangle, best, 0)), placeOf(corner(triangle, best, 1)),
                            placeOf(corner(triangle, best, 2)), m_white};
        result.showsWhite = Colour::showsWhite(result.primaries);
        return result;
    }

private:
    /// The corner of a primary, where red is that of index `red`.
    const Colour::CommonCorner& corner(const Colour::CommonTriangle& triangle, std::size_t red,
                                       std::size_t primary) const
    {
        return triangle.corners[(red + m_turn * primary) % 3];
    }

    /// How near the corners' hues come to those of the groups.
    double likeness(const Colour::CommonTriangle& triangle, std::size_t red) const
    {
        double sum = 0.0;
        for (std::size_t i = 0; i < 3; ++i) {
            const Chromaticity hue = hueOf(corner(triangle, red, i).place, m_uvWhite);
            sum += hue.x * m_hues[i].x + hue.y * m_hues[i].y;
        }
        return sum;
    }

    Chromaticity placeOf(const Colour::CommonCorner& corner) const
    {
        if (corner.isOwn)
            return pointsOf(primariesOf(m_groups[corner.group].measured))[corner.primary];
        return Colour::fromUvPrime(corner.place);
    }

    const std::vector<MatchGroup>& m_groups;
    Chromaticity m_white;
    Chromaticity m_uvWhite;
    Points m_hues{};    ///< sums over all groups
    std::size_t m_turn; ///< from a primary's corner to the next one's, counter-clockwise
};

Result<void> requireSameTurn(const std::vector<MatchGroup>& groups, const std::vector<Primaries>& uv)
{
    const double turn = turnOf(pointsOf(uv.front()));
    for (std::size_t i = 1; i < uv.size(); ++i)
        if (turnOf(pointsOf(uv[i])) * turn < 0.0)
            return Fault{
                Fault::Kind::BadData, QStringLiteral("group %1").arg(groups[i].name),
                QStringLiteral("red, green and blue that turn like those of group %1").arg(groups.front().name),
                QStringLiteral("the other turn: are two primaries swapped?")};
    return {};
}

Fault nothingInCommon(const std::vector<MatchGroup>& groups, const std::vector<std::size_t>& excluding)
{
    QStringList names;
    for (const std::size_t group : excluding)
        names << groups[group].name;
    return {Fault::Kind::BadData,
            (names.size() == 1 ? QStringLiteral("group %1") : QStringLiteral("groups %1"))
                .arg(names.join(QStringLiteral(" and "))),
            QStringLiteral("triangles with room for a circle of %1 in u'v' in common").arg(leastCommonRadius),
            QStringLiteral("none"), QStringLiteral("match the others without one of them, or measure them again")};
}

/// Which of a triangle's corners lie on the line through two points.
std::array<bool, 3> cornersOn(const Points& corners, const Chromaticity& from, const Chromaticity& to)
{
    constexpr double tolerance = 1e-9;
    const double length = std::hypot(to.x - from.x, to.y - from.y);
    std::array<bool, 3> result{};
    for (std::size_t i = 0; i < 3; ++i)
        result[i] = std::abs(turnOf({from, to, corners[i]})) <= tolerance * length;
    return result;
}

void appendOnce(std::vector<std::size_t>& groups, std::size_t group)
{
    if (groups.empty() || groups.back() != group)
        groups.push_back(group);
}

void findLimits(CommonTarget& target, const std::vector<Primaries>& uv)
{
    const Points corners = pointsOf(uvPrime(target.triangle.primaries));
    for (std::size_t group = 0; group < uv.size(); ++group) {
        const Points own = pointsOf(uv[group]);
        for (std::size_t side = 0; side < 3; ++side) {
            const auto isOn = cornersOn(corners, own[side], own[(side + 1) % 3]);
            for (std::size_t i = 0; i < 3; ++i) {
                if (isOn[i])
                    appendOnce(target.corners[i], group);
                if (isOn[i] && isOn[(i + 1) % 3])
                    appendOnce(target.edges[i], group);
            }
        }
    }
}

} // namespace

Result<CommonTarget> commonTargetOf(const std::vector<MatchGroup>& groups, const Chromaticity& white)
{
    std::vector<Primaries> uv;
    uv.reserve(groups.size());
    for (const MatchGroup& group : groups)
        uv.push_back(uvPrime(primariesOf(group.measured)));
    const auto turn = requireSameTurn(groups, uv);
    if (!turn)
        return turn.fault();
    const Colour::CommonArea area(uv, leastCommonRadius);
    if (!area.excluding().empty())
        return nothingInCommon(groups, area.excluding());
    const Naming naming(groups, uv, white);
    CommonTarget target;
    target.triangle = naming.named(area.largest());
    findLimits(target, uv);
    if (groups.size() == 1)
        return target;
    target.without.reserve(groups.size());
    for (const Colour::CommonTriangle& triangle : area.largestWithoutEach())
        target.without.push_back(naming.named(triangle));
    return target;
}

} // namespace Calibration
