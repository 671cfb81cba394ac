#pragma once

#include <calibration/commontarget.h>
#include <calibration/figures.h>
#include <calibration/target.h>

namespace Calibration {

/// How bright the white of matched groups is.
enum class MatchLuminance {
    Common, ///< all as bright as the group that is dimmest, or as was asked for
    Own,    ///< each as bright as it can be
};

/// What a match is made of besides groups and target.
struct MatchOptions
{
    MatchLuminance luminance = MatchLuminance::Common;
    /// What coverage is taken of, CIE 1931: Rec.709 unless given.
    Colour::Primaries standard = Colour::standardGamuts.front().primaries;
};

/// A group's part in a match. Luminances are those of the target's white, in cd/m2; 0 where the only group's is not
/// known.
struct MatchedGroup
{
    QString name;           ///< as given
    double reachable = 0.0; ///< the most it can show with no channel above full scale
    Figures figures;        ///< as of a single calibration: coefficients, what they show, coverage
    /// White from the integers as sent.
    Colour::MeasuredColour white;
};

/// What a match of all others would be: no less in area and luminance, but its triangle may cover a standard less.
struct MatchWithout
{
    SharedTriangle triangle;    ///< of all others
    double coverage = 0.0;      ///< of the standard, CIE 1976 u'v', 0..1
    double luminance = 0.0;     ///< the most that all others reach, cd/m2
    double luminanceGain = 0.0; ///< over the match's, less 1: 0.157 is 15.7 % brighter
    double areaGain = 0.0;      ///< over the match's, less 1
};

/// Groups of cabinets that show the same colours.
struct Match
{
    Model::ColorGamutInfo target;      ///< of all groups; its white's luminance is `luminance`
    bool isCommon = false;             ///< the triangle is made of the groups' own, else it was asked for
    double area = 0.0;                 ///< of the target's triangle, CIE 1976 u'v'
    double coverage = 0.0;             ///< of the standard by the target's triangle, CIE 1976 u'v', 0..1
    double reachable = 0.0;            ///< the most that all groups reach, cd/m2
    double luminance = 0.0;            ///< of white: what was asked for, else `reachable`; of Own the dimmest group's
    std::size_t limiting = 0;          ///< the group that reaches least
    std::vector<MatchedGroup> groups;  ///< in the order given
    std::vector<MatchWithout> without; ///< by group; empty for one group
    /// Groups that hold red, green and blue, and the edges from each to the next, as CommonTarget has them; empty where
    /// the triangle was asked for.
    std::array<std::vector<std::size_t>, 3> corners;
    std::array<std::vector<std::size_t>, 3> edges;
};

/// Matches `groups`, whose names differ, to a target. That of "native" primaries is the largest triangle that all can
/// show (commonTargetOf()). White is the target's. One group alone gets what a single calibration gives, bit for bit.
/// O(n log n), and a few microseconds for the figures of each group. Faults: bad data about a group that is no gamut,
/// whose luminance is not known (of more than one), or that cannot show the white; about groups without a common
/// triangle, a triangle without the white, a luminance that not all reach; usage for a luminance beside Own.
Result<Match> matchOf(const std::vector<MatchGroup>& groups, const Target& target, const MatchOptions& options);

} // namespace Calibration
