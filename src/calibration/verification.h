#pragma once

#include <calibration/figures.h>
#include <calibration/journal.h>
#include <calibration/verdict.h>

#include <memory>

namespace Calibration {

/// What cabinets of one device show that hold the same.
struct Judgement
{
    QString device;
    HeldCorrection held;
    Known known = Known::Computed;          ///< how `held` is
    std::shared_ptr<const Figures> figures; ///< one for all judgements of equal integers; null: white gives no light
    double difference = 0.0;                ///< the largest CIEDE2000 that counts; infinite where white gives no light
    bool isWithin = false;                  ///< it is not above the limit
};

/// What a calibrated wall shows, computed from what its cabinets hold.
struct Verification
{
    QString measured;                  ///< the name of the measured gamut
    QString target;                    ///< the target's
    Colour::Coverage coverageXy;       ///< of the measured gamut against the target, CIE 1931 xy
    Colour::Coverage coverageUv;       ///< the same in CIE 1976 u'v'
    std::vector<Judgement> judgements; ///< by device
    Verdict verdict;
    QStringList warnings; ///< of the calibration, about its inputs
    QStringList faults;   ///< in words; empty: the verdict is that it passed
};

/// Judges what devices hold; there is a record for each that was to be served. What the wall shows of every judged
/// content counts. The verdict knows of no simulation.
Verification judge(const Model::ColorGamutInfo& measured, const Model::ColorGamutInfo& target,
                   const std::vector<DeviceRecord>& records, const Acceptance& acceptance);

/// Cabinets that can be asked now.
struct CabinetsNow
{
    const Action::CabinetReader& reader;
    const CabinetSenderSpace::CabinetTargetMap& targets;
};

/// Judges a calibration by its journal, or with `now` by what the cabinets of the devices that were served hold now;
/// blocks while they are asked. Faults are bad data: a journal that names no device, or whose gamuts are none.
Common::Result<Verification> verify(const Journal& journal, const Acceptance& acceptance,
                                    const CabinetsNow* now = nullptr);

} // namespace Calibration
