#include "gamut.h"

#include <calibration/measurement.h>

#include <QFileInfo>
#include <QStringList>

#include <algorithm>
#include <cmath>

namespace Calibration {

namespace {

constexpr double defaultWhiteLuminance = 100.0;

using Gamut = Model::ColorGamutInfo;

Fault refusal(const QString& subject, const QString& reason)
{
    return {Fault::Kind::BadData, subject, {}, reason};
}

Gamut fromPrimaries(const Colour::Primaries& primaries, double whiteLuminance)
{
    const auto point = [](const Colour::Chromaticity& c, double luminance) {
        return Model::LXY{luminance, c.x, c.y, {}};
    };
    const auto shares = Colour::luminanceShares(primaries);
    Gamut gamut;
    gamut.rLxy = point(primaries.red, shares[0] * whiteLuminance);
    gamut.gLxy = point(primaries.green, shares[1] * whiteLuminance);
    gamut.bLxy = point(primaries.blue, shares[2] * whiteLuminance);
    gamut.wLxy = point(primaries.white, whiteLuminance);
    return gamut;
}

/// The finite numbers between the separators of a text; `count` of them.
Result<std::vector<double>> numbers(const QString& text, QLatin1Char separator, int count, const QString& expected,
                                    const QString& subject)
{
    const QStringList parts = text.split(separator);
    if (parts.size() != count)
        return refusal(subject, QStringLiteral("expected %1, found \"%2\"").arg(expected, text));
    std::vector<double> values;
    for (const QString& part : parts) {
        bool converted = false;
        values.push_back(part.toDouble(&converted));
        if (!converted || !std::isfinite(values.back()))
            return refusal(subject, QStringLiteral("expected a number, found \"%1\"").arg(part));
    }
    return values;
}

Result<Gamut> fromChromaticities(const QString& text)
{
    const QString subject = QStringLiteral("gamut %1").arg(text);
    const QStringList parts = text.split(QLatin1Char(':'));
    if (parts.size() != 4 && parts.size() != 5)
        return refusal(subject, QStringLiteral("expected rx,ry:gx,gy:bx,by:wx,wy with an optional :luminance_cd_m2"));
    Colour::Chromaticity points[4];
    for (int i = 0; i < 4; ++i) {
        const auto xy = numbers(parts.at(i), QLatin1Char(','), 2, QStringLiteral("x,y"), subject);
        if (!xy)
            return xy.fault();
        points[i] = {xy->at(0), xy->at(1)};
    }
    double luminance = defaultWhiteLuminance;
    if (parts.size() == 5) {
        const auto given = numbers(parts.at(4), QLatin1Char(':'), 1, QStringLiteral("a number"), subject);
        if (!given)
            return given.fault();
        luminance = given->front();
    }
    Gamut gamut = fromPrimaries({points[0], points[1], points[2], points[3]}, luminance);
    gamut.name = text.toStdString();
    const auto made = requireGamut(gamut, subject);
    if (!made)
        return made.fault();
    return gamut;
}

Result<Gamut> fromFile(const QString& name)
{
    const auto input = readInput(name, QStringLiteral("gamut"));
    if (!input)
        return input.fault();
    const auto measurement = parseMeasurement(*input);
    if (!measurement)
        return measurement.fault();
    return measurement->gamut;
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

} // namespace

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
        return refusal(subject,
                       QStringLiteral("white (%1, %2) lies outside the triangle").arg(gamut.wLxy.x).arg(gamut.wLxy.y));
    // Only then: those that follow from a white outside the triangle are negative too.
    for (std::size_t i = 0; i < points.size(); ++i) {
        const double luminance = points[i]->lum;
        if (!(luminance >= 0.0) || !std::isfinite(luminance))
            return refusal(
                subject, QStringLiteral("%1: luminance must be 0 or more, found %2").arg(pointName(i)).arg(luminance));
    }
    return {};
}

Result<Gamut> readGamut(const QString& text)
{
    const auto* const standard =
        std::find_if(Colour::standardGamuts.begin(), Colour::standardGamuts.end(),
                     [&](const Colour::StandardGamut& known) { return text == QLatin1String(known.key); });
    if (standard != Colour::standardGamuts.end()) {
        Gamut gamut = fromPrimaries(standard->primaries, defaultWhiteLuminance);
        gamut.name = standard->name;
        return gamut;
    }
    if (text == QLatin1String("-") || QFileInfo::exists(text))
        return fromFile(text);
    if (text.contains(QLatin1Char(':')))
        return fromChromaticities(text);
    QStringList names;
    for (const Colour::StandardGamut& known : Colour::standardGamuts)
        names << QString::fromLatin1(known.key);
    return Fault{Fault::Kind::NoInput,
                 QStringLiteral("gamut %1").arg(text),
                 {},
                 QStringLiteral("neither a standard gamut nor a file"),
                 QStringLiteral("standard gamuts: %1").arg(names.join(QStringLiteral(", ")))};
}

} // namespace Calibration
