#pragma once

#include <suite/colour/corners.h>
#include <suite/colour/coverage.h>
#include <suite/common/result.h>
#include <suite/model/colorgamutinfo.h>

#include <QStringList>

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
    Colour::Corners corners;     ///< what it shows of each judged content

    /// The largest difference of what is shown from the nearest colour that the LEDs can show: the coefficients' part.
    double worstHeld() const;
    /// The largest difference of what is shown from the target.
    double worst() const;
};

/// Names of the judged contents in their order: "red", ... "white", "gray 75 %", ...
QString judgedName(std::size_t content);

/// Whether the LEDs cannot show a content: the nearest that they can show is off by what two decimals show.
bool isOutOfReach(const Colour::Corner& corner);

/// The contents that the LEDs cannot show, each with its CIEDE2000 from what they can and the drive that it asks (full
/// scale is 1): "yellow by 1.94 (asks 1.048 of green)"; empty where they show all.
QStringList outOfReach(const Colour::Corners& corners);

/// Computes the coefficients of `target` on a wall of `measured`, and what they reach. Fault: bad data for gamuts that
/// have no correction.
Common::Result<Figures> computeFigures(const Model::ColorGamutInfo& measured, const Model::ColorGamutInfo& target);

/// The figures of the coefficients that `target` holds already. Fault: bad data for coefficients that give no light.
Common::Result<Figures> figuresOf(const Model::ColorGamutInfo& measured, const Model::ColorGamutInfo& target);

/// Coefficients that are held as two's-complement bits; missing ones are 0.
Colour::Coefficients signedCoefficients(const std::vector<unsigned short>& bits);

} // namespace Calibration
