#include "figures.h"

#include <calibration/gamut.h>
#include <qualityutility/data/computenicccoef.h>

#include <algorithm>

namespace Calibration {

namespace {

/// Whether a wall can be as bright as a target asks.
Result<void> requireBrightEnough(const Model::ColorGamutInfo& measured, const Model::ColorGamutInfo& target)
{
    constexpr double rounding = 1e-9;
    const auto correction = Colour::correctionMatrix(primariesOf(measured), primariesOf(target));
    const auto fit = correction ? Colour::whiteScale(*correction, 0.0, 0.0, 0.0) : std::nullopt;
    const double kept = fit.value_or(0.0) * measured.wLxy.lum; // a correction keeps luminance
    const double wanted = target.wLxy.lum;
    if (!correction || wanted <= kept * (1.0 + rounding))
        return {};
    return Fault{Fault::Kind::BadData, QStringLiteral("target %1").arg(nameOf(target)),
                 kept > 0.0 ? QStringLiteral("a white of at most %1 cd/m2, which the wall keeps").arg(kept, 0, 'f', 1)
                            : QStringLiteral("a measured gamut with luminances beside its own"),
                 QStringLiteral("%1 cd/m2").arg(wanted)};
}

/// Gives white a luminance in cd/m2, and the primaries those that add up to it; 0 is one that is not known.
void setLuminance(Model::ColorGamutInfo& gamut, double luminance)
{
    const auto shared = gamutOf(primariesOf(gamut), luminance);
    gamut.rLxy.lum = shared.rLxy.lum;
    gamut.gLxy.lum = shared.gLxy.lum;
    gamut.bLxy.lum = shared.bLxy.lum;
    gamut.wLxy.lum = luminance;
}

/// The channels that a colour drives beyond what LEDs can do: "1.048 of green".
QString askedTooMuch(const Colour::Corner& corner)
{
    constexpr double leastShown = 0.0005;
    QStringList channels;
    for (std::size_t i = 0; i < corner.exactDrive.size(); ++i) {
        const double drive = corner.exactDrive[i];
        if (drive < -leastShown || drive > 1.0 + leastShown)
            channels << QStringLiteral("%1 of %2").arg(QString::number(drive, 'f', 3), pointName(i));
    }
    return channels.join(QStringLiteral(" and "));
}

double largest(const Colour::Corners& corners, double Colour::Corner::*difference)
{
    double result = 0.0;
    for (const Colour::Corner& corner : corners.corners)
        result = std::max(result, corner.*difference);
    return result;
}

} // namespace

double Figures::worstHeld() const
{
    return largest(corners, &Colour::Corner::notHeld);
}

double Figures::worst() const
{
    return largest(corners, &Colour::Corner::difference);
}

QString judgedName(std::size_t content)
{
    static constexpr std::array corners{"red", "green", "blue", "yellow", "cyan", "magenta", "white"};
    if (content < corners.size())
        return QLatin1String(corners[content]);
    return QStringLiteral("gray %1 %").arg(100.0 * Colour::judgedContents[content][0]);
}

bool isOutOfReach(const Colour::Corner& corner)
{
    return corner.outOfReach >= 0.005;
}

QStringList outOfReach(const Colour::Corners& corners)
{
    QStringList names;
    for (std::size_t i = 0; i < corners.corners.size(); ++i) {
        const Colour::Corner& corner = corners.corners[i];
        if (isOutOfReach(corner))
            names << QStringLiteral("%1 by %2 (asks %3)")
                         .arg(judgedName(i), QString::number(corner.outOfReach, 'f', 2), askedTooMuch(corner));
    }
    return names;
}

Result<Figures> computeFigures(const Model::ColorGamutInfo& measured, const Model::ColorGamutInfo& target)
{
    const auto bright = requireBrightEnough(measured, target);
    if (!bright)
        return bright.fault();
    const bool isLuminanceGiven = target.wLxy.lum > 0.0;
    Model::ColorGamutInfo corrected = target;
    if (isLuminanceGiven)
        ComputeNICCCoef::computeSingleCoef(corrected, 1.0, ComputeNICCCoef::ColorGamutTransform(measured),
                                           ComputeNICCCoef::GetWhiteLxy(measured));
    else
        ComputeNICCCoef::createCoef(measured, corrected);
    auto figures = figuresOf(measured, corrected);
    if (figures && !isLuminanceGiven)
        setLuminance(figures->target, figures->corners.whiteKept * measured.wLxy.lum);
    return figures;
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
    const auto corners = Colour::corners(wall, wanted, figures.coefficients);
    if (!corners)
        return Fault{Fault::Kind::BadData,
                     QStringLiteral("gamut %1").arg(QString::fromStdString(measured.name)),
                     {},
                     QStringLiteral("the coefficients for the target %1 leave white without light")
                         .arg(QString::fromStdString(target.name))};
    figures.corners = *corners;
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
