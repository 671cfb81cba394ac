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

QString textOf(const Colour::MeasuredColour& white, bool isRelative)
{
    return QStringLiteral("%1, %2 at %3%4")
        .arg(QString::number(white.xy.x, 'f', 4), QString::number(white.xy.y, 'f', 4),
             QString::number(white.luminance, 'f', 1), isRelative ? QString() : QStringLiteral(" cd/m2"));
}

/// What readings say against themselves.
QStringList doubtsOf(const Measurement& measurement)
{
    constexpr double maxSpreadXy = 0.005;
    constexpr double maxSpreadLuminance = 0.05;
    QStringList doubts;
    for (std::size_t i = 0; i < measurement.patches.points.size(); ++i) {
        const PatchReadings& patch = measurement.patches.points[i];
        if (patch.spreadXy > maxSpreadXy || patch.spreadLuminance > maxSpreadLuminance)
            doubts << QStringLiteral("readings of %1 differ from their mean by up to %2 in x, y and %3 % of luminance")
                          .arg(pointName(i), QString::number(patch.spreadXy, 'f', 4),
                               QString::number(100.0 * patch.spreadLuminance, 'f', 1));
    }
    const auto& black = measurement.patches.black;
    if (black && black->mean.lum > maxSpreadLuminance * measurement.patches.points[3].mean.lum)
        doubts << QStringLiteral("black has more than %1 % of white's luminance").arg(100.0 * maxSpreadLuminance);
    const QString observer = measurement.observer;
    if (!observer.isEmpty() && !observer.startsWith(QLatin1String("1931")))
        doubts << QStringLiteral("the observer is %1, figures are computed for CIE 1931, 2 degrees").arg(observer);
    return doubts;
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
    return QStringLiteral("Red, green and blue add up to white %1, white was measured as %2: %3 % of luminance, "
                          "du'v' %4")
        .arg(textOf(sum, isRelative), textOf(measured, isRelative), QString::number(100.0 * luminance, 'f', 1),
             QString::number(duvPrime, 'f', 4));
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
    result.isRelative = measurement.patches.isRelative;
    result.luminance = sum->luminance / result.measured.luminance - 1.0;
    result.duvPrime = Colour::uvDistance(result.measured.xy, sum->xy);
    return result;
}

QString wordOf(WhiteSource white)
{
    return white == WhiteSource::Sum ? QStringLiteral("sum") : QStringLiteral("measured");
}

QStringList warningsOf(const Measurement& measurement, WhiteSource white)
{
    QStringList warnings;
    const auto additivity = additivityOf(measurement);
    if (additivity && additivity->isContradiction())
        warnings << additivity->sentence() +
                        (white == WhiteSource::Sum
                             ? QStringLiteral("; the correction is computed from the sum")
                             : QStringLiteral("; the correction is computed from the measured white"));
    warnings << doubtsOf(measurement);
    const auto labelled = requireLabels(measurement.gamut, measurement.subject);
    if (!labelled)
        warnings << labelled.fault().message();
    return warnings;
}

Result<Model::ColorGamutInfo> withWhite(const Measurement& measurement, WhiteSource white)
{
    Model::ColorGamutInfo gamut = measurement.gamut;
    if (white == WhiteSource::Measured || !measurement.file) // what was typed adds up
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
