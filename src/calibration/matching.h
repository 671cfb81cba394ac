#pragma once

#include <calibration/additivity.h>
#include <calibration/match.h>
#include <calibration/measuredgroups.h>
#include <calibration/seam.h>

namespace Calibration {

/// What a user gives for a match: gamuts as readMeasuredGroups() and readTarget() take them.
struct MatchNames
{
    QStringList measured;
    WhiteSource white = WhiteSource::Measured;
    QString target;
    MatchOptions options;
    bool force = false; ///< primaries that look swapped are taken all the same
};

/// Groups that were read, and their match.
struct Matching
{
    std::vector<MeasuredGroup> groups;
    QString target; ///< as it was given
    MatchOptions options;
    Match match;
    QStringList warnings; ///< what speaks against the figures, a sentence each
};

/// Reads and matches. Faults: as readMeasuredGroups(), requireLabels(), withWhite(), readTarget() and matchOf().
Result<Matching> readMatching(const MatchNames& names);

/// Two groups and what is between them.
struct GroupSeam
{
    std::size_t first;
    std::size_t second;
    Seam seam;
};

/// The seams of all pairs of groups, the worst after the match first. O(n^2): for a few hundred groups at most.
std::vector<GroupSeam> seamsOf(const Match& match);

} // namespace Calibration
