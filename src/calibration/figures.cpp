#include "figures.h"

#include <calibration/gamut.h>
#include <qualityutility/data/computenicccoef.h>

#include <algorithm>

namespace Calibration {

namespace {

constexpr double noticeableDifference = 1.0;

} // namespace

double Figures::worstDifference() const
{
    return *std::max_element(ciede2000.begin(), ciede2000.end());
}

Result<Figures> computeFigures(const Model::ColorGamutInfo& measured, const Model::ColorGamutInfo& target)
{
    Model::ColorGamutInfo corrected = target;
    ComputeNICCCoef::createCoef(measured, corrected);
    return figuresOf(measured, corrected);
}

Result<Figures> figuresOf(const Model::ColorGamutInfo& measured, const Model::ColorGamutInfo& target)
{
    const Colour::Primaries wall = primariesOf(measured);
    const Colour::Primaries wanted = primariesOf(target);
    Figures figures;
    figures.measured = measured;
    figures.target = target;
    figures.coefficients = signedCoefficients(target.coeff.getCoeffs());
    figures.coverageXy = Colour::coverage(wall, wanted);
    figures.coverageUv = Colour::coverage(uvPrime(wall), uvPrime(wanted));
    const auto reached = Colour::reachedGamut(wall, figures.coefficients);
    const auto differences = reached ? Colour::differences(*reached, wanted) : std::nullopt;
    if (!differences)
        return Fault{Fault::Kind::BadData,
                     QStringLiteral("gamut %1").arg(QString::fromStdString(measured.name)),
                     {},
                     QStringLiteral("the coefficients for the target %1 leave a primary or white without light")
                         .arg(QString::fromStdString(target.name))};
    figures.reached = *reached;
    figures.ciede2000 = *differences;
    // Limits of the coefficients' type show only in the result.
    for (std::size_t i = 0; i < figures.ciede2000.size(); ++i)
        figures.reached.outOfReach[i] = figures.reached.outOfReach[i] || figures.ciede2000[i] > noticeableDifference;
    return figures;
}

Colour::Coefficients signedCoefficients(const std::vector<unsigned short>& bits)
{
    Colour::Coefficients result{};
    for (std::size_t i = 0; i < std::min(result.size(), bits.size()); ++i)
        result[i] = static_cast<std::int16_t>(bits[i]);
    return result;
}

} // namespace Calibration
