#pragma once

#include <calibration/known.h>

namespace Calibration {

/// What a correction is held to.
struct Acceptance
{
    double maxDifference = 1.0; ///< CIEDE2000
    /// Whether colours that the LEDs cannot show count: they are compared with the target, and not with the nearest
    /// colour that the LEDs can show.
    bool isStrict = false;
};

/// "at most 0.01 of 1.0", or "up to 4.21, above 1.0".
QString differenceText(double worst, double limit);

/// What a calibration came to.
struct Verdict
{
    enum class Kind { Passed, Differs, Partly, NotApplied, Interrupted };

    Kind kind = Kind::NotApplied;
    int holding = 0; ///< devices whose cabinets all hold everything
    int devices = 0; ///< all that were to be served
    /// The largest CIEDE2000 of what the devices that hold it show; infinite where they show no light.
    double worst = 0.0;
    double limit = Acceptance().maxDifference; ///< the largest `worst` that passes
    Known known = Known::Computed;             ///< how what they hold is known, at the weakest
    bool isSimulated = false;                  ///< the devices are
    bool isStrict = false;                     ///< see Acceptance
    bool isPast = false;                       ///< from a journal: they held it when they were served
    bool isAsBright = true; ///< the white of those has the luminance that is wanted, within 1 %, where both are known

    bool isPassed() const { return kind == Kind::Passed; }
    /// "PASSED", "NOT APPLIED"
    QString result() const;
    /// "3 of 3 devices hold the correction, CIEDE2000 at most 0.01 of 1.0 (read back, simulated)"
    QString details() const;
    /// Both: "PASSED: 3 of 3 devices hold the correction, CIEDE2000 at most 0.01 of 1.0 (read back, simulated)".
    QString sentence() const;
};

} // namespace Calibration
