#include "additivity.h"

#include <calibration/gamut.h>
#include <suite/colour/coverage.h>

#include <cmath>

namespace Calibration {

namespace {

Colour::MeasuredColour colourOf(const Model::LXY& point)
{
    return {{point.x, point.y}, point.lum};
}

QString textOf(const Colour::MeasuredColour& white)
{
    return QStringLiteral("%1, %2 at %3")
        .arg(white.xy.x, 0, 'f', 4)
        .arg(white.xy.y, 0, 'f', 4)
        .arg(white.luminance, 0, 'f', 1);
}

} // namespace

bool Additivity::isContradiction() const
{
    constexpr double maxLuminance = 0.02;
    constexpr double maxDuvPrime = 0.003;
    return std::abs(luminance) > maxLuminance || duvPrime > maxDuvPrime;
}

QString Additivity::sentence() const
{
    return QStringLiteral("red, green and blue add up to white %1, white was measured as %2: %3 % of luminance, "
                          "du'v' %4")
        .arg(textOf(sum), textOf(measured))
        .arg(100.0 * luminance, 0, 'f', 1)
        .arg(duvPrime, 0, 'f', 4);
}

std::optional<Additivity> additivityOf(const Measurement& measurement)
{
    const auto& points = measurement.patches.points;
    for (const PatchReadings& patch : points) {
        if (patch.count == 0 || !(patch.mean.lum > 0.0))
            return std::nullopt;
    }
    const auto sum =
        Colour::sumOfPrimaries(colourOf(points[0].mean), colourOf(points[1].mean), colourOf(points[2].mean));
    if (!sum)
        return std::nullopt;
    Additivity result{colourOf(points[3].mean), *sum};
    const auto a = Colour::uvPrime(result.measured.xy);
    const auto b = Colour::uvPrime(sum->xy);
    result.luminance = sum->luminance / result.measured.luminance - 1.0;
    result.duvPrime = std::hypot(a.x - b.x, a.y - b.y);
    return result;
}

Result<Model::ColorGamutInfo> withWhite(const Measurement& measurement, WhiteSource white)
{
    Model::ColorGamutInfo gamut = measurement.gamut;
    if (white == WhiteSource::Measured)
        return gamut;
    const auto additivity = additivityOf(measurement);
    if (!additivity)
        return Fault{Fault::Kind::BadData, measurement.subject, QStringLiteral("luminances that add up to a white"),
                     QStringLiteral("none")};
    const auto& sum = additivity->sum;
    const bool isKnown = gamut.wLxy.lum > 0.0;
    gamut.wLxy = {isKnown ? sum.luminance : 0.0, sum.xy.x, sum.xy.y, {}};
    const auto made = requireGamut(gamut, measurement.subject);
    if (!made)
        return made.fault();
    return gamut;
}

} // namespace Calibration
