#include "gamut.h"

#include <suite/colour/coverage.h>

#include <algorithm>
#include <cmath>

namespace Calibration {

namespace {

using Gamut = Model::ColorGamutInfo;

Fault refusal(const QString& subject, const QString& reason)
{
    return {Fault::Kind::BadData, subject, {}, reason};
}

Fault mislabelled(const QString& subject, const QString& reason)
{
    return {Fault::Kind::BadData, subject, {}, reason, QStringLiteral("--force takes them as they are")};
}

/// What is wrong with a point's place; empty when nothing is.
QString chromaticityFault(const Model::LXY& point, const QString& role)
{
    if (!(point.y > 0.0))
        return QStringLiteral("%1: y must be above 0, found %2").arg(role).arg(point.y);
    if (!(point.x >= 0.0 && point.x + point.y <= 1.0))
        return QStringLiteral("%1: (%2, %3) lies outside the chromaticity diagram").arg(role).arg(point.x).arg(point.y);
    return {};
}

/// Directions of red, green and blue from white in CIE 1976 u', v', in radians.
std::array<double, 3> hues(const Colour::Primaries& primaries)
{
    const Colour::Primaries uv = uvPrime(primaries);
    const auto hue = [&uv](const Colour::Chromaticity& c) { return std::atan2(c.y - uv.white.y, c.x - uv.white.x); };
    return {hue(uv.red), hue(uv.green), hue(uv.blue)};
}

/// The primary of Rec.709 whose hue is nearest to a hue.
std::size_t primaryOfHue(double hue)
{
    static const auto known = hues(Colour::standardGamuts.front().primaries);
    const auto distance = [hue](double other) { return std::abs(std::remainder(hue - other, 2.0 * M_PI)); };
    const auto* const nearest = std::min_element(known.begin(), known.end(),
                                                 [&distance](double a, double b) { return distance(a) < distance(b); });
    return static_cast<std::size_t>(nearest - known.begin());
}

} // namespace

QString hiddenWhite(const Colour::Primaries& primaries)
{
    constexpr int allDigits = 12;
    const auto shares = Colour::luminanceShares(primaries);
    const auto* const least = std::min_element(shares.begin(), shares.end());
    return QStringLiteral("white (%1, %2) needs %3 of %4 in its luminance, at least %5 is needed")
        .arg(QString::number(primaries.white.x, 'g', allDigits), QString::number(primaries.white.y, 'g', allDigits),
             QString::number(*least), pointName(static_cast<std::size_t>(least - shares.begin())),
             QString::number(Colour::minWhiteShare));
}

Gamut gamutOf(const Colour::Primaries& primaries, double luminance)
{
    const auto point = [](const Colour::Chromaticity& c, double lum) { return Model::LXY{lum, c.x, c.y, {}}; };
    const auto shares = Colour::luminanceShares(primaries);
    Gamut gamut;
    gamut.rLxy = point(primaries.red, shares[0] * luminance);
    gamut.gLxy = point(primaries.green, shares[1] * luminance);
    gamut.bLxy = point(primaries.blue, shares[2] * luminance);
    gamut.wLxy = point(primaries.white, luminance);
    return gamut;
}

Colour::Primaries primariesOf(const Gamut& gamut)
{
    const auto xy = [](const Model::LXY& point) { return Colour::Chromaticity{point.x, point.y}; };
    return {xy(gamut.rLxy), xy(gamut.gLxy), xy(gamut.bLxy), xy(gamut.wLxy)};
}

std::array<const Model::LXY*, 4> pointsOf(const Gamut& gamut)
{
    return {&gamut.rLxy, &gamut.gLxy, &gamut.bLxy, &gamut.wLxy};
}

QString pointName(std::size_t point)
{
    constexpr std::array names{"red", "green", "blue", "white"};
    return QString::fromLatin1(names.at(point));
}

QString nameOf(const Gamut& gamut)
{
    return QString::fromStdString(gamut.name);
}

Result<void> requireGamut(const Gamut& gamut, const QString& subject)
{
    const auto points = pointsOf(gamut);
    for (std::size_t i = 0; i < points.size(); ++i) {
        const QString fault = chromaticityFault(*points[i], pointName(i));
        if (!fault.isEmpty())
            return refusal(subject, fault);
    }
    const Colour::Primaries primaries = primariesOf(gamut);
    if (Colour::isOnOneLine(primaries))
        return refusal(subject, QStringLiteral("the primaries lie on one line"));
    if (!Colour::showsWhite(primaries))
        return refusal(subject, hiddenWhite(primaries));
    // Only then: those that follow from a white outside the triangle are negative too.
    for (std::size_t i = 0; i < points.size(); ++i) {
        const double luminance = points[i]->lum;
        if (!(luminance >= 0.0) || !std::isfinite(luminance))
            return refusal(
                subject, QStringLiteral("%1: luminance must be 0 or more, found %2").arg(pointName(i)).arg(luminance));
    }
    return {};
}

Result<void> requireLuminance(const Gamut& gamut, const QString& subject, const QString& text)
{
    const auto points = pointsOf(gamut);
    for (std::size_t i = 0; i < points.size(); ++i) {
        if (!(points[i]->lum > 0.0))
            return Fault{Fault::Kind::BadData, subject, QStringLiteral("luminances in cd/m2"),
                         QStringLiteral("none of %1").arg(pointName(i)),
                         QStringLiteral("%1:2800 gives white 2800 cd/m2, and red, green and blue theirs")
                             .arg(text == QLatin1String("-") ? QStringLiteral("FILE") : text)};
    }
    return {};
}

Result<void> requireLabels(const Gamut& gamut, const QString& subject)
{
    const auto points = pointsOf(gamut);
    const auto found = hues(primariesOf(gamut));
    for (std::size_t i = 0; i < found.size(); ++i) {
        const std::size_t nearest = primaryOfHue(found[i]);
        if (nearest != i)
            return mislabelled(subject, QStringLiteral("%1 (%2, %3) has the hue of %4: are the primaries swapped?")
                                            .arg(pointName(i))
                                            .arg(points[i]->x)
                                            .arg(points[i]->y)
                                            .arg(pointName(nearest)));
        if (gamut.wLxy.lum > 0.0 && points[i]->lum > gamut.wLxy.lum)
            return mislabelled(subject, QStringLiteral("%1, %2 cd/m2, is brighter than white, %3 cd/m2")
                                            .arg(pointName(i))
                                            .arg(points[i]->lum)
                                            .arg(gamut.wLxy.lum));
    }
    return {};
}

} // namespace Calibration
