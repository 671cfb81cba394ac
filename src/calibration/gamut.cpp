#include "gamut.h"

#include <suite/common/jsonreader.h>

#include <QFileInfo>
#include <QStringList>

#include <algorithm>
#include <cmath>

namespace Calibration {

namespace {

constexpr double defaultWhiteLuminance = 100.0;

using Gamut = Model::ColorGamutInfo;

Fault refusal(const QString& gamut, const QString& reason)
{
    return {Fault::Kind::BadData, QStringLiteral("gamut %1").arg(gamut), {}, reason};
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
                                    const QString& gamut)
{
    const QStringList parts = text.split(separator);
    if (parts.size() != count)
        return refusal(gamut, QStringLiteral("expected %1, found \"%2\"").arg(expected, text));
    std::vector<double> values;
    for (const QString& part : parts) {
        bool converted = false;
        values.push_back(part.toDouble(&converted));
        if (!converted || !std::isfinite(values.back()))
            return refusal(gamut, QStringLiteral("expected a number, found \"%1\"").arg(part));
    }
    return values;
}

Result<Gamut> fromChromaticities(const QString& text)
{
    const QStringList parts = text.split(QLatin1Char(':'));
    if (parts.size() != 4 && parts.size() != 5)
        return refusal(text, QStringLiteral("expected rx,ry:gx,gy:bx,by:wx,wy with an optional :luminance_cd_m2"));
    Colour::Chromaticity points[4];
    for (int i = 0; i < 4; ++i) {
        const auto xy = numbers(parts.at(i), QLatin1Char(','), 2, QStringLiteral("x,y"), text);
        if (!xy)
            return xy.fault();
        points[i] = {xy->at(0), xy->at(1)};
    }
    double luminance = defaultWhiteLuminance;
    if (parts.size() == 5) {
        const auto given = numbers(parts.at(4), QLatin1Char(':'), 1, QStringLiteral("a number"), text);
        if (!given)
            return given.fault();
        luminance = given->front();
    }
    return fromPrimaries({points[0], points[1], points[2], points[3]}, luminance);
}

Result<Gamut> fromFile(const QString& name)
{
    const auto input = readInput(name, QStringLiteral("gamut"));
    if (!input)
        return input.fault();
    const auto object = jsonObject(*input);
    if (!object)
        return object.fault();
    std::optional<Fault> fault;
    const Common::JsonReader root(*object, fault);
    const auto point = [&root](const char* key) {
        const Common::JsonReader place = root.member(key);
        if (!place.value().isObject())
            place.expect(QStringLiteral("an object with lum, x and y"));
        return Model::LXY{place.member("lum").number(), place.member("x").number(), place.member("y").number(), {}};
    };
    Gamut gamut;
    gamut.rLxy = point("RedPoint");
    gamut.gLxy = point("GreenPoint");
    gamut.bLxy = point("BluePoint");
    gamut.wLxy = point("WhitePoint");
    gamut.name = root.member("name").value().toString().toStdString();
    if (!fault)
        return gamut;
    return refusal(name, fault->message());
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

Result<Gamut> checked(Result<Gamut> read, const QString& text)
{
    constexpr double minShare = 1e-6; // of a primary in the luminance of white
    if (!read)
        return read;
    Gamut& gamut = *read;
    const auto points = pointsOf(gamut);
    for (std::size_t i = 0; i < points.size(); ++i) {
        const QString fault = chromaticityFault(*points[i], pointName(i));
        if (!fault.isEmpty())
            return refusal(text, fault);
    }
    if (Colour::isOnOneLine(primariesOf(gamut)))
        return refusal(text, QStringLiteral("the primaries lie on one line"));
    const auto shares = Colour::luminanceShares(primariesOf(gamut));
    if (!std::all_of(shares.begin(), shares.end(), [](double share) { return share > minShare; }))
        return refusal(text,
                       QStringLiteral("white (%1, %2) lies outside the triangle").arg(gamut.wLxy.x).arg(gamut.wLxy.y));
    // Only then: those that follow from a white outside the triangle are negative too.
    for (std::size_t i = 0; i < points.size(); ++i) {
        const double luminance = points[i]->lum;
        if (!(luminance >= 0.0) || !std::isfinite(luminance))
            return refusal(
                text, QStringLiteral("%1: luminance must be 0 or more, found %2").arg(pointName(i)).arg(luminance));
    }
    if (gamut.name.empty())
        gamut.name = text.toStdString();
    return read;
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
        return checked(fromFile(text), text);
    if (text.contains(QLatin1Char(':')))
        return checked(fromChromaticities(text), text);
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
