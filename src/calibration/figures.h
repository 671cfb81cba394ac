#pragma once

#include <suite/colour/correction.h>
#include <suite/colour/coverage.h>
#include <suite/common/result.h>
#include <suite/model/colorgamutinfo.h>

namespace Calibration {

/// What coefficients make of a wall of a measured gamut, beside the target: computed from the integers, as the cabinets
/// hold them.
struct Figures
{
    Model::ColorGamutInfo measured;
    Model::ColorGamutInfo target; ///< with the coefficients
    Colour::Coefficients coefficients{};
    Colour::Coverage coverageXy; ///< of the measured gamut against the target, CIE 1931 xy
    Colour::Coverage coverageUv; ///< the same in CIE 1976 u'v'
    Colour::ReachedGamut reached;
    std::array<double, 4> ciede2000{}; ///< red, green, blue, white: reached against target

    /// The largest difference of the four.
    double worstDifference() const;
};

/// Computes the coefficients of `target` on a wall of `measured`, and what they reach. Fault: bad data for gamuts that
/// have no correction.
Common::Result<Figures> computeFigures(const Model::ColorGamutInfo& measured, const Model::ColorGamutInfo& target);

/// The figures of the coefficients that `target` holds already. Fault: bad data for coefficients that give no light.
Common::Result<Figures> figuresOf(const Model::ColorGamutInfo& measured, const Model::ColorGamutInfo& target);

/// Coefficients that are held as two's-complement bits; missing ones are 0.
Colour::Coefficients signedCoefficients(const std::vector<unsigned short>& bits);

} // namespace Calibration
