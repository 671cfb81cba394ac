#pragma once

#include <calibration/measurement.h>
#include <qualityutility/tool/sender4th/cabinetsenderbase.h>

#include <string>

namespace Calibration {

/// Cabinets of a device.
struct CabinetSet
{
    std::string device;
    std::vector<unsigned long long> cids; ///< empty: all of them
};

/// A measured gamut with the cabinets that have it.
struct MeasuredGroup
{
    QString name;                     ///< its file's word, or its cabinets as they were given: "middle,right:1-4"
    std::vector<CabinetSet> cabinets; ///< none: all of the run, which is one group then
    Measurement measurement;
};

/// Reads measured gamuts as a user gives them: one as readMeasured() takes it, or CABINETS=GAMUT for each group, with
/// CABINETS as DEVICE or DEVICE:RANGE, parted by commas. A file with several gamuts (parseMeasurements()) stands alone
/// and gives a group for each. What names a file that is there is one, whatever it looks like. Faults: as
/// readMeasured(); usage for cabinets that are none, and for a gamut without them beside others.
Result<std::vector<MeasuredGroup>> readMeasuredGroups(const QStringList& texts);

/// Which cabinets of a run each group has; of a group that takes no part in it none. `wall` has all that there are, of
/// which `run` is a part. Faults: usage for a device or cabinet that the wall does not have; bad data that names the
/// cabinets of the run in no group, or in two.
Result<std::vector<CabinetSenderSpace::CabinetTargetMap>>
assignCabinets(const std::vector<MeasuredGroup>& groups, const CabinetSenderSpace::CabinetTargetMap& wall,
               const CabinetSenderSpace::CabinetTargetMap& run);

/// Cabinets as short text: "left:1-4, right".
QString cabinetsText(const CabinetSenderSpace::CabinetTargetMap& cabinets);

} // namespace Calibration
