#pragma once

#include <calibration/figures.h>
#include <calibration/journal.h>

namespace Calibration {

/// What cabinets of one device show that hold the same.
struct Judgement
{
    QString device;
    HeldCorrection held;
    std::optional<Figures> figures; ///< none: the coefficients leave a primary or white without light
    bool isWithin = false;          ///< no difference above the limit
};

/// What a calibrated wall shows, computed from what its cabinets hold.
struct Verification
{
    QString target; ///< its name
    double maxDifference = 0.0;
    std::vector<Judgement> judgements; ///< by device
    QStringList faults;                ///< in words; empty: all is within
};

/// Judges a calibration by its journal: CIEDE2000 of red, green, blue and white against the target, at most
/// `maxDifference`. Fault: bad data where no device was served.
Common::Result<Verification> verify(const Journal& journal, double maxDifference);

} // namespace Calibration
