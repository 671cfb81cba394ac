#pragma once

#include <calibration/input.h>
#include <suite/colour/primaries.h>
#include <suite/model/colorgamutinfo.h>

namespace Calibration {

/// Cabinets whose LEDs are alike, as those of one batch are.
struct MatchGroup
{
    QString name;                   ///< in messages: "right:5-8"
    Model::ColorGamutInfo measured; ///< of all of them
};

/// A triangle that every one of some groups can show.
struct SharedTriangle
{
    Colour::Primaries primaries; ///< CIE 1931, with the white that was asked for
    double area = 0.0;           ///< CIE 1976 u'v'
    /// Whether the primaries make that white: one of the largest triangles need not contain it.
    bool showsWhite = false;
};

/// The largest triangle that all groups can show, and what holds it there.
struct CommonTarget
{
    SharedTriangle triangle; ///< of all groups
    /// The groups on an edge of whose triangles red, green and blue lie, to 1e-9 in u'v'.
    std::array<std::vector<std::size_t>, 3> corners;
    /// The groups on an edge of whose triangles the whole edge lies: red to green, green to blue, blue to red.
    std::array<std::vector<std::size_t>, 3> edges;
    /// By group, the largest triangle of all others, never smaller; empty for one group.
    std::vector<SharedTriangle> without;
};

/// The least radius (CIE 1976 u'v') of a circle that has room in what groups have in common. Less is a sliver: a tenth
/// of what the eye tells apart.
inline constexpr double leastCommonRadius = 1e-4;

/// The target that all `groups` (gamuts as requireGamut() takes them) can show, with `white`; that of one group is its
/// own, bit for bit. O(n log n). Faults: bad data about the groups that have nothing in common, as few as show it, or
/// about one whose primaries turn the other way.
Result<CommonTarget> commonTargetOf(const std::vector<MatchGroup>& groups, const Colour::Chromaticity& white);

} // namespace Calibration
