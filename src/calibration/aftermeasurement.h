#pragma once

#include <calibration/measurement.h>
#include <calibration/verification.h>

namespace Calibration {

/// A colour as it was wanted, computed or measured.
struct ComparedColour
{
    Colour::Chromaticity xy;            ///< CIE 1931
    std::optional<Colour::Vector3> xyz; ///< relative to its own white, Y = 1; none where no luminance is known
    double luminance = 0.0;             ///< cd/m2; 0: not known
};

/// Red, green, blue or white at full drive, before a calibration and after it.
struct ComparedPoint
{
    ComparedColour target;
    ComparedColour computed;              ///< what the held coefficients should show
    ComparedColour before;                ///< as measured for the calibration
    ComparedColour after;                 ///< as measured after it; its `xyz` is known
    std::optional<double> beforeToTarget; ///< CIEDE2000 beside the target's white; none where before's luminance is
    double afterToTarget = 0.0;           ///< CIEDE2000
    double afterToComputed = 0.0;         ///< CIEDE2000
    double uvBeforeToTarget = 0.0;        ///< distance in CIE 1976 u'v'
    double uvAfterToTarget = 0.0;         ///< likewise
    double uvAfterToComputed = 0.0;       ///< likewise
};

/// A measurement of a calibrated wall, compared with what it should show.
struct AfterMeasurement
{
    std::array<ComparedPoint, 4> points; ///< red, green, blue, white
    Acceptance acceptance;

    /// The largest CIEDE2000 from what was computed; from the target where that counts.
    double worst() const;
    /// The luminance of white as measured over the computed one, less 1; none where either is not known.
    std::optional<double> whiteDifference() const;
    /// Whether colours are near enough, and white as bright as computed within 5 %, which is what instruments and
    /// their places differ by.
    bool isPassed() const;
    /// "PASSED: measured afterwards, CIEDE2000 from what was computed at most 0.45 of 1.0".
    QString sentence() const;
};

/// Compares with what most of the cabinets that were judged show. Faults are bad data: none shows light; a patch of
/// the measurement has no luminance, not even a relative one.
Result<AfterMeasurement> compareAfter(const Verification& verification, const Measurement& measurement,
                                      const Acceptance& acceptance);

} // namespace Calibration
