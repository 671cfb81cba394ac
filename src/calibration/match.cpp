#include "match.h"

#include <calibration/gamut.h>

#include <algorithm>
#include <limits>

namespace Calibration {

namespace {

using Colour::Primaries;

double coverageOf(const Primaries& target, const Primaries& standard)
{
    return Colour::coverage(uvPrime(target), uvPrime(standard)).covered;
}

double areaOf(const Primaries& xy)
{
    const Primaries p = uvPrime(xy);
    return 0.5 * std::abs((p.green.x - p.red.x) * (p.blue.y - p.red.y) - (p.green.y - p.red.y) * (p.blue.x - p.red.x));
}

QString subjectOf(const Target& target)
{
    return QStringLiteral("target %1").arg(target.text);
}

Result<void> requireMeasured(const MatchGroup& group, bool isAlone)
{
    const QString subject = QStringLiteral("group %1").arg(group.name);
    const auto gamut = requireGamut(group.measured, subject);
    if (!gamut)
        return gamut;
    if (!isAlone && !(group.measured.wLxy.lum > 0.0))
        return Fault{Fault::Kind::BadData, subject, QStringLiteral("a luminance of white in cd/m2"),
                     QStringLiteral("none")};
    return {};
}

Result<void> requireUsable(const std::vector<MatchGroup>& groups, const Target& target, const MatchOptions& options)
{
    if (groups.empty())
        return Fault{Fault::Kind::BadData, QStringLiteral("match"), QStringLiteral("a group of cabinets or more"),
                     QStringLiteral("none")};
    if (options.luminance == MatchLuminance::Own && target.gamut.wLxy.lum > 0.0)
        return Fault{Fault::Kind::Usage, subjectOf(target),
                     QStringLiteral("no luminance where each group keeps its own"),
                     QStringLiteral("%1 cd/m2").arg(target.gamut.wLxy.lum)};
    for (const MatchGroup& group : groups) {
        const auto usable = requireMeasured(group, groups.size() == 1);
        if (!usable)
            return usable;
    }
    return {};
}

/// Whether each group shows the target's white, and the target itself does.
Result<void> requireWhite(const std::vector<MatchGroup>& groups, const Target& target, const Primaries& triangle)
{
    for (const MatchGroup& group : groups) {
        Primaries driven = primariesOf(group.measured);
        driven.white = triangle.white;
        if (!Colour::showsWhite(driven))
            return Fault{Fault::Kind::BadData, QStringLiteral("group %1").arg(group.name),
                         QStringLiteral("a triangle with the white of target %1 inside").arg(target.text),
                         hiddenWhite(driven)};
    }
    if (!Colour::showsWhite(triangle))
        return Fault{Fault::Kind::BadData, subjectOf(target),
                     QStringLiteral("a white inside the largest triangle that all groups show"), hiddenWhite(triangle),
                     QStringLiteral("give another white, or primaries")};
    return {};
}

/// The triangle, its figures and those without each group, luminances apart.
Result<Match> triangleOf(const std::vector<MatchGroup>& groups, const Target& target, const MatchOptions& options)
{
    Match match;
    match.target = target.gamut;
    match.isCommon = target.isNative;
    SharedTriangle triangle{primariesOf(target.gamut), areaOf(primariesOf(target.gamut)), true};
    std::vector<SharedTriangle> without(groups.size() > 1 ? groups.size() : 0, triangle);
    if (target.isNative) {
        auto common = commonTargetOf(groups, triangle.primaries.white);
        if (!common)
            return common.fault();
        triangle = common->triangle;
        without = std::move(common->without);
        match.corners = std::move(common->corners);
        match.edges = std::move(common->edges);
        match.target = gamutOf(triangle.primaries, target.gamut.wLxy.lum);
        match.target.name = target.gamut.name;
    }
    const auto white = requireWhite(groups, target, triangle.primaries);
    if (!white)
        return white.fault();
    match.area = triangle.area;
    match.coverage = coverageOf(triangle.primaries, options.standard);
    match.without.reserve(without.size());
    for (const SharedTriangle& other : without)
        match.without.push_back(
            {other, other.area == match.area ? match.coverage : coverageOf(other.primaries, options.standard), 0.0, 0.0,
             other.area / match.area - 1.0});
    return match;
}

/// The brightest white of a target that a gamut reaches, in cd/m2.
double reachableOf(const Model::ColorGamutInfo& measured, const Model::ColorGamutInfo& target)
{
    const auto correction = Colour::correctionMatrix(primariesOf(measured), primariesOf(target));
    const auto fit = correction ? Colour::whiteScale(*correction, 0.0, 0.0, 0.0) : std::nullopt;
    return fit.value_or(0.0) * measured.wLxy.lum; // a correction keeps luminance
}

void findLuminances(Match& match, const std::vector<MatchGroup>& groups)
{
    double second = std::numeric_limits<double>::infinity(); // least but one
    match.reachable = second;
    match.groups.resize(groups.size());
    for (std::size_t i = 0; i < groups.size(); ++i) {
        const double reachable = reachableOf(groups[i].measured, match.target);
        match.groups[i].name = groups[i].name;
        match.groups[i].reachable = reachable;
        second = std::min(second, std::max(reachable, match.reachable));
        if (reachable < match.reachable) {
            match.reachable = reachable;
            match.limiting = i;
        }
    }
    for (std::size_t i = 0; i < match.without.size(); ++i) {
        match.without[i].luminance = i == match.limiting ? second : match.reachable;
        match.without[i].luminanceGain = match.without[i].luminance / match.reachable - 1.0;
    }
}

Result<void> setLuminance(Match& match, const Target& target)
{
    constexpr double rounding = 1e-9;
    const double wanted = target.gamut.wLxy.lum;
    if (wanted > match.reachable * (1.0 + rounding))
        return Fault{Fault::Kind::BadData, subjectOf(target),
                     QStringLiteral("a white of at most %1 cd/m2, which group %2 reaches")
                         .arg(match.reachable, 0, 'f', 1)
                         .arg(match.groups[match.limiting].name),
                     QStringLiteral("%1 cd/m2").arg(wanted)};
    match.luminance = wanted > 0.0 ? wanted : match.reachable;
    const std::string name = match.target.name;
    match.target = gamutOf(primariesOf(match.target), match.luminance);
    match.target.name = name;
    return {};
}

/// The target that a group's coefficients are computed for. One that is as bright as it can be has no luminance, as in
/// a single calibration.
Model::ColorGamutInfo targetOf(const MatchedGroup& group, const Match& match, const Target& target,
                               MatchLuminance luminance)
{
    const bool isFree = luminance == MatchLuminance::Own || group.reachable <= match.luminance;
    if (!isFree || target.gamut.wLxy.lum > 0.0)
        return match.target;
    auto free = gamutOf(primariesOf(match.target), 0.0);
    free.name = match.target.name;
    return free;
}

Result<void> computeGroup(MatchedGroup& group, const Model::ColorGamutInfo& measured,
                          const Model::ColorGamutInfo& target)
{
    auto figures = computeFigures(measured, target);
    if (!figures)
        return figures.fault();
    group.figures = *std::move(figures);
    const Colour::Corners& corners = group.figures.corners;
    group.white = {*Colour::chromaticity(corners.corners[Colour::judgedWhite].shown),
                   corners.whiteKept * measured.wLxy.lum};
    return {};
}

} // namespace

Result<Match> matchOf(const std::vector<MatchGroup>& groups, const Target& target, const MatchOptions& options)
{
    const auto usable = requireUsable(groups, target, options);
    if (!usable)
        return usable.fault();
    auto match = triangleOf(groups, target, options);
    if (!match)
        return match;
    findLuminances(*match, groups);
    const auto luminance = setLuminance(*match, target);
    if (!luminance)
        return luminance.fault();
    for (std::size_t i = 0; i < groups.size(); ++i) {
        MatchedGroup& group = match->groups[i];
        const auto computed =
            computeGroup(group, groups[i].measured, targetOf(group, *match, target, options.luminance));
        if (!computed)
            return computed.fault();
    }
    return match;
}

} // namespace Calibration
