#include "gamutargument.h"

#include "inputfile.h"
#include "output.h"

#include <QFileInfo>
#include <QStringList>

#include <algorithm>
#include <cmath>

namespace {

constexpr double defaultWhiteLuminance = 100.0;

[[noreturn]] void refuse(const QString& gamut, const QString& reason)
{
    throw CommandError{ExitCode::BadData, QStringLiteral("gamut %1: %2").arg(gamut, reason)};
}

Model::LXY point(const Colour::Chromaticity& chromaticity, double luminance)
{
    return {luminance, chromaticity.x, chromaticity.y, {}};
}

Model::ColorGamutInfo fromPrimaries(const Colour::Primaries& primaries, double whiteLuminance)
{
    const auto shares = Colour::luminanceShares(primaries);
    Model::ColorGamutInfo gamut;
    gamut.rLxy = point(primaries.red, shares[0] * whiteLuminance);
    gamut.gLxy = point(primaries.green, shares[1] * whiteLuminance);
    gamut.bLxy = point(primaries.blue, shares[2] * whiteLuminance);
    gamut.wLxy = point(primaries.white, whiteLuminance);
    return gamut;
}

double number(const QString& text, const QString& gamut)
{
    bool converted = false;
    const double value = text.toDouble(&converted);
    if (!converted || !std::isfinite(value))
        refuse(gamut, QStringLiteral("expected a number, found \"%1\"").arg(text));
    return value;
}

Model::ColorGamutInfo fromChromaticities(const QString& text)
{
    const QStringList parts = text.split(QLatin1Char(':'));
    if (parts.size() != 4 && parts.size() != 5)
        refuse(text, QStringLiteral("expected rx,ry:gx,gy:bx,by:wx,wy with an optional :luminance_cd_m2"));
    Colour::Chromaticity points[4];
    for (int i = 0; i < 4; ++i) {
        const QStringList xy = parts.at(i).split(QLatin1Char(','));
        if (xy.size() != 2)
            refuse(text, QStringLiteral("expected x,y, found \"%1\"").arg(parts.at(i)));
        points[i] = {number(xy.at(0), text), number(xy.at(1), text)};
    }
    const double luminance = parts.size() == 5 ? number(parts.at(4), text) : defaultWhiteLuminance;
    return fromPrimaries({points[0], points[1], points[2], points[3]}, luminance);
}

Model::LXY readPoint(const QJsonObject& gamut, const QString& key, const QString& file)
{
    const QJsonValue value = gamut.value(key);
    if (!value.isObject())
        refuse(file, QStringLiteral("%1: expected an object with lum, x and y").arg(key));
    const QJsonObject object = value.toObject();
    const auto member = [&](const QString& name) {
        if (!object.value(name).isDouble())
            refuse(file, QStringLiteral("%1.%2: expected a number").arg(key, name));
        return object.value(name).toDouble();
    };
    return {member(QStringLiteral("lum")), member(QStringLiteral("x")), member(QStringLiteral("y")), {}};
}

Model::ColorGamutInfo fromFile(const QString& path)
{
    const QJsonObject object = readJsonObject(path, QStringLiteral("gamut"));
    Model::ColorGamutInfo gamut;
    gamut.rLxy = readPoint(object, QStringLiteral("RedPoint"), path);
    gamut.gLxy = readPoint(object, QStringLiteral("GreenPoint"), path);
    gamut.bLxy = readPoint(object, QStringLiteral("BluePoint"), path);
    gamut.wLxy = readPoint(object, QStringLiteral("WhitePoint"), path);
    gamut.name = object.value(QStringLiteral("name")).toString().toStdString();
    return gamut;
}

void checkChromaticity(const Model::LXY& point, const QString& role, const QString& gamut)
{
    if (!(point.y > 0.0))
        refuse(gamut, QStringLiteral("%1: y must be above 0, found %2").arg(role).arg(point.y));
    if (!(point.x >= 0.0 && point.x + point.y <= 1.0))
        refuse(
            gamut,
            QStringLiteral("%1: (%2, %3) lies outside the chromaticity diagram").arg(role).arg(point.x).arg(point.y));
}

void checkLuminance(const Model::LXY& point, const QString& role, const QString& gamut)
{
    if (!(point.lum >= 0.0) || !std::isfinite(point.lum))
        refuse(gamut, QStringLiteral("%1: luminance must be 0 or more, found %2").arg(role).arg(point.lum));
}

Model::ColorGamutInfo checked(Model::ColorGamutInfo gamut, const QString& text)
{
    constexpr double minShare = 1e-6; // of a primary in the luminance of white
    const std::pair<const Model::LXY*, QString> points[] = {{&gamut.rLxy, QStringLiteral("red")},
                                                            {&gamut.gLxy, QStringLiteral("green")},
                                                            {&gamut.bLxy, QStringLiteral("blue")},
                                                            {&gamut.wLxy, QStringLiteral("white")}};
    for (const auto& [point, role] : points)
        checkChromaticity(*point, role, text);
    if (Colour::isOnOneLine(primariesOf(gamut)))
        refuse(text, QStringLiteral("the primaries lie on one line"));
    const auto shares = Colour::luminanceShares(primariesOf(gamut));
    if (!std::all_of(shares.begin(), shares.end(), [](double share) { return share > minShare; }))
        refuse(text, QStringLiteral("white (%1, %2) lies outside the triangle").arg(gamut.wLxy.x).arg(gamut.wLxy.y));
    for (const auto& [point, role] : points)
        checkLuminance(*point, role, text);
    if (gamut.name.empty())
        gamut.name = text.toStdString();
    return gamut;
}

} // namespace

Colour::Primaries primariesOf(const Model::ColorGamutInfo& gamut)
{
    return {{gamut.rLxy.x, gamut.rLxy.y},
            {gamut.gLxy.x, gamut.gLxy.y},
            {gamut.bLxy.x, gamut.bLxy.y},
            {gamut.wLxy.x, gamut.wLxy.y}};
}

Model::ColorGamutInfo parseGamut(const std::string& text)
{
    for (const Colour::StandardGamut& standard : Colour::standardGamuts) {
        if (text == standard.key) {
            auto gamut = fromPrimaries(standard.primaries, defaultWhiteLuminance);
            gamut.name = standard.name;
            return gamut;
        }
    }
    const QString name = QString::fromStdString(text);
    if (QFileInfo::exists(name))
        return checked(fromFile(name), name);
    if (name.contains(QLatin1Char(':')))
        return checked(fromChromaticities(name), name);
    QStringList names;
    for (const Colour::StandardGamut& standard : Colour::standardGamuts)
        names << QString::fromLatin1(standard.key);
    throw CommandError{ExitCode::NoInput, QStringLiteral("gamut %1: neither a standard gamut nor a file").arg(name),
                       QStringLiteral("standard gamuts: %1").arg(names.join(QStringLiteral(", ")))};
}
