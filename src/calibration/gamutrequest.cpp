#include "gamutrequest.h"

#include <suite/colour/temperature.h>

#include <QFileInfo>
#include <QRegularExpression>
#include <QStringList>

#include <algorithm>
#include <cmath>
#include <numeric>

namespace Calibration {

namespace {

using Colour::Chromaticity;

const QString s_native = QStringLiteral("native");
const QString s_whites = QStringLiteral("D50, D55, D65, D75, 6500K, 6500K-planck or x,y");

/// CIE 15, 2 degree observer.
constexpr std::pair<const char*, Chromaticity> illuminants[] = {
    {"D50", {0.3457, 0.3585}}, {"D55", {0.3324, 0.3474}}, {"D65", {0.3127, 0.3290}}, {"D75", {0.2990, 0.3149}}};

Fault refusal(const QString& text, const QString& expected, const QString& found)
{
    return {Fault::Kind::BadData, QStringLiteral("gamut %1").arg(text), expected, QStringLiteral("\"%1\"").arg(found)};
}

bool isPair(const QString& part)
{
    return part.contains(QLatin1Char(','));
}

Result<Chromaticity> pairOf(const QString& part, const QString& text)
{
    const QStringList numbers = part.split(QLatin1Char(','));
    if (numbers.size() != 2)
        return refusal(text, QStringLiteral("x,y"), part);
    std::array<double, 2> values{};
    for (int i = 0; i < 2; ++i) {
        bool isNumber = false;
        values[static_cast<std::size_t>(i)] = numbers.at(i).toDouble(&isNumber);
        if (!isNumber || !std::isfinite(values[static_cast<std::size_t>(i)]))
            return refusal(text, QStringLiteral("a number"), numbers.at(i));
    }
    return Chromaticity{values[0], values[1]};
}

/// The white of a temperature: a phase of daylight, or a black body.
Result<Chromaticity> temperatureWhite(const QRegularExpressionMatch& match, const QString& text)
{
    const bool isPlanckian = !match.captured(2).isEmpty();
    const double kelvin = match.captured(1).toDouble();
    const auto white = isPlanckian ? Colour::planckianWhite(kelvin) : Colour::daylightWhite(kelvin);
    if (white)
        return *white;
    return refusal(text,
                   isPlanckian
                       ? QStringLiteral("%1K to %2K").arg(Colour::minPlanckian).arg(Colour::maxPlanckian, 0, 'f', 0)
                       : QStringLiteral("daylight of %1K to %2K (-planck is a black body)")
                             .arg(Colour::minDaylight)
                             .arg(Colour::maxDaylight),
                   match.captured());
}

/// The white that a part gives; nothing for a part that is no white.
std::optional<Result<Chromaticity>> whiteOf(const QString& part, const QString& text)
{
    for (const auto& [name, white] : illuminants) {
        if (part.compare(QLatin1String(name), Qt::CaseInsensitive) == 0)
            return white;
    }
    static const QRegularExpression temperature(QStringLiteral("^(\\d+(?:\\.\\d+)?)K(-planck)?$"),
                                                QRegularExpression::CaseInsensitiveOption);
    const auto match = temperature.match(part);
    if (match.hasMatch())
        return temperatureWhite(match, text);
    if (isPair(part))
        return pairOf(part, text);
    return std::nullopt;
}

/// A name without what people write differently.
QString normalised(const QString& name)
{
    QString result;
    for (const QChar c : name.toLower()) {
        if (c.isLetterOrNumber())
            result += c;
    }
    return result;
}

QStringList namesOf(const Colour::StandardGamut& gamut)
{
    return QString::fromLatin1(gamut.others).split(QLatin1Char(' ')) << normalised(QString::fromLatin1(gamut.key));
}

/// How many letters must be put in, left out or changed (Levenshtein).
int editDistance(const QString& from, const QString& to)
{
    std::vector<int> row(static_cast<std::size_t>(to.size()) + 1);
    std::iota(row.begin(), row.end(), 0);
    for (const QChar c : from) {
        int diagonal = row[0]++;
        for (std::size_t i = 1; i < row.size(); ++i) {
            const int changed = diagonal + (c == to.at(static_cast<int>(i) - 1) ? 0 : 1);
            diagonal = row[i];
            row[i] = std::min({changed, row[i] + 1, row[i - 1] + 1});
        }
    }
    return row.back();
}

bool isFile(const QString& text)
{
    const bool isKey =
        std::any_of(Colour::standardGamuts.begin(), Colour::standardGamuts.end(),
                    [&text](const Colour::StandardGamut& gamut) { return text == QLatin1String(gamut.key); });
    return text == QLatin1String("-") || (!isKey && QFileInfo::exists(text));
}

/// The key of the standard gamut that is nearly called so; empty where none is.
QString nearestKey(const QString& name)
{
    const QString wanted = normalised(name);
    int least = 3; // further is another word
    QString key;
    for (const Colour::StandardGamut& gamut : Colour::standardGamuts) {
        for (const QString& known : namesOf(gamut)) {
            const int distance = editDistance(wanted, known);
            if (distance < least && distance < known.size() / 2) {
                least = distance;
                key = QString::fromLatin1(gamut.key);
            }
        }
    }
    return key;
}

} // namespace

bool GamutRequest::isNative() const
{
    return primaries.compare(s_native, Qt::CaseInsensitive) == 0;
}

Result<GamutRequest> parseGamutRequest(const QString& text)
{
    GamutRequest request{text, text, {}, {}, {}, isFile(text)};
    if (request.isFile)
        return request;
    QStringList parts = text.split(QLatin1Char(':'));
    bool isNumber = false;
    const double luminance = parts.last().toDouble(&isNumber);
    if (isNumber && parts.size() > 1) {
        if (!(luminance > 0.0) || !std::isfinite(luminance))
            return refusal(text, QStringLiteral("a luminance above 0 cd/m2"), parts.last());
        request.luminance = luminance;
        parts.removeLast();
    }
    const bool isWhiteMissing = parts.size() == 3 && isPair(parts.first());
    const auto white = isWhiteMissing ? std::nullopt : whiteOf(parts.last(), text);
    if (white) {
        if (!*white)
            return white->fault();
        request.white = **white;
        request.whiteName = parts.takeLast();
    }
    request.primaries = parts.isEmpty() ? s_native : parts.join(QLatin1Char(':'));
    request.isFile = isFile(request.primaries);
    return request;
}

const Colour::StandardGamut* standardGamut(const QString& name)
{
    const QString wanted = normalised(name);
    const auto* const found = std::find_if(
        Colour::standardGamuts.begin(), Colour::standardGamuts.end(), [&wanted](const Colour::StandardGamut& gamut) {
            return namesOf(gamut).contains(wanted) || wanted == normalised(QString::fromLatin1(gamut.name));
        });
    return found == Colour::standardGamuts.end() ? nullptr : found;
}

Result<std::optional<Colour::Primaries>> typedPrimaries(const GamutRequest& request)
{
    const QStringList parts = request.primaries.split(QLatin1Char(':'));
    if (!isPair(parts.first()))
        return std::optional<Colour::Primaries>();
    if (parts.size() != 3)
        return refusal(request.text, QStringLiteral("rx,ry:gx,gy:bx,by with a white behind it"), request.primaries);
    std::array<Chromaticity, 3> points;
    for (std::size_t i = 0; i < points.size(); ++i) {
        const auto point = pairOf(parts.at(static_cast<int>(i)), request.text);
        if (!point)
            return point.fault();
        points[i] = *point;
    }
    return std::optional(Colour::Primaries{points[0], points[1], points[2], request.white.value_or(Chromaticity{})});
}

Fault unknownGamut(const GamutRequest& request)
{
    const QStringList parts = request.primaries.split(QLatin1Char(':'));
    if (parts.size() > 1 && (standardGamut(parts.first()) || parts.first().compare(s_native, Qt::CaseInsensitive) == 0))
        return refusal(request.text, QStringLiteral("a white (%1) or a luminance in cd/m2").arg(s_whites),
                       parts.last());
    QStringList names;
    for (const Colour::StandardGamut& known : Colour::standardGamuts)
        names << QString::fromLatin1(known.key);
    const QString key = nearestKey(parts.first());
    return {Fault::Kind::NoInput,
            request.subject(),
            {},
            QStringLiteral("neither a standard gamut nor a file"),
            (key.isEmpty() ? QString() : QStringLiteral("did you mean %1? ").arg(key)) +
                QStringLiteral("standard gamuts: %1").arg(names.join(QStringLiteral(", ")))};
}

} // namespace Calibration
