#include "matching.h"

#include <calibration/gamut.h>

#include <algorithm>

namespace Calibration {

namespace {

Result<MatchGroup> toMatch(const MeasuredGroup& group, const MatchNames& names)
{
    const Measurement& measurement = group.measurement;
    const auto labelled = names.force ? Result<void>() : requireLabels(measurement.gamut, measurement.subject);
    if (!labelled)
        return labelled.fault();
    const auto gamut = withWhite(measurement, names.white);
    if (!gamut)
        return gamut.fault();
    return MatchGroup{group.name.isEmpty() ? nameOf(*gamut) : group.name, *gamut};
}

} // namespace

Result<Matching> readMatching(const MatchNames& names)
{
    auto groups = readMeasuredGroups(names.measured);
    if (!groups)
        return groups.fault();
    Matching matching;
    std::vector<MatchGroup> members;
    for (const MeasuredGroup& group : *groups) {
        auto member = toMatch(group, names);
        if (!member)
            return member.fault();
        for (const QString& warning : warningsOf(group.measurement, names.white))
            matching.warnings << (group.name.isEmpty() ? warning
                                                       : QStringLiteral("group %1: %2").arg(group.name, warning));
        members.push_back(*std::move(member));
    }
    const auto target = readTarget(names.target, names.force);
    if (!target)
        return target.fault();
    auto match = matchOf(members, *target, names.options);
    if (!match)
        return match.fault();
    matching.groups = *std::move(groups);
    matching.target = names.target;
    matching.options = names.options;
    matching.match = *std::move(match);
    return matching;
}

std::vector<GroupSeam> seamsOf(const Match& match)
{
    std::vector<GroupSeam> seams;
    for (std::size_t second = 1; second < match.groups.size(); ++second) {
        for (std::size_t first = 0; first < second; ++first)
            seams.push_back({first, second, seamOf(match, first, second)});
    }
    const auto worst = [](const GroupSeam& seam) { return seam.seam.after[seam.seam.worstAfter()].ciede2000; };
    std::stable_sort(seams.begin(), seams.end(),
                     [&](const GroupSeam& a, const GroupSeam& b) { return worst(a) > worst(b); });
    return seams;
}

} // namespace Calibration
