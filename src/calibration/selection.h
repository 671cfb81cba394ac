#pragma once

#include <qualityutility/tool/sender4th/cabinetsenderbase.h>
#include <suite/common/result.h>
#include <suite/service/walldocument.h>

#include <QStringList>

namespace Calibration {

/// Which devices and cabinets of a wall take part.
struct Selection
{
    std::vector<std::string> devices;         ///< empty: all
    std::vector<unsigned long long> cabinets; ///< identifiers; empty: all
};

/// Reads identifiers and ranges ("7", "5-9"). Fault: usage.
Common::Result<std::vector<unsigned long long>> parseCabinets(const QStringList& texts);

/// Identifiers as short text: "1-12, 20"; "none" without any.
QString cabinetRanges(std::vector<unsigned long long> cids);

/// The targets that a selection names. Faults: usage for a device or cabinet that the wall does not have; bad data,
/// without a subject, for a wall without devices.
Common::Result<CabinetSenderSpace::CabinetTargetMap> selectTargets(const Service::Wall& wall,
                                                                   const Selection& selection);

} // namespace Calibration
