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
const QString s_common = QStringLiteral("common"); // the LEDs' own, of all groups
const QString s_whites = QStringLiteral("D50, D55, D65, D75, 6500K, 6500K-planck or x,y");

constexpr double minLuminance = 1e-3; // cd/m2: no display has more or less
constexpr double maxLuminance = 1e6;

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

/// How many letters must be put in, left out, changed, or exchanged with their neighbour.
int editDistance(const QString& from, const QString& to)
{
    const auto size = static_cast<std::size_t>(to.size()) + 1;
    std::vector<std::vector<int>> rows(static_cast<std::size_t>(from.size()) + 1, std::vector<int>(size));
    std::iota(rows[0].begin(), rows[0].end(), 0);
    const auto letter = [](const QString& text, std::size_t i) { return text.at(static_cast<int>(i) - 1); };
    for (std::size_t i = 1; i < rows.size(); ++i) {
        rows[i][0] = static_cast<int>(i);
        for (std::size_t j = 1; j < size; ++j) {
            const int changed = rows[i - 1][j - 1] + (letter(from, i) == letter(to, j) ? 0 : 1);
            rows[i][j] = std::min({changed, rows[i - 1][j] + 1, rows[i][j - 1] + 1});
            if (i > 1 && j > 1 && letter(from, i) == letter(to, j - 1) && letter(from, i - 1) == letter(to, j))
                rows[i][j] = std::min(rows[i][j], rows[i - 2][j - 2] + 1);
        }
    }
    return rows.back().back();
}

bool isFile(const QString& text)
{
    const bool isKey =
        std::any_of(Colour::standardGamuts.begin(), Colour::standardGamuts.end(),
                    [&text](const Colour::StandardGamut& gamut) { return text == QLatin1String(gamut.key); });
    const QFileInfo info(text); // a folder, or one of Qt's own resources, is none
    return text == QLatin1String("-") ||
           (!isKey && !text.startsWith(QLatin1Char(':')) && info.exists() && !info.isDir());
}

/// What was probably meant by a name that nobody has; empty where nothing is near.
QString nearestName(const QString& name)
{
    constexpr int maxLetters = 40; // longer is no name
    const QString wanted = normalised(name.left(maxLetters));
    int least = 3; // further is another word
    QString nearest;
    const auto consider = [&](const QString& known, const QString& key) {
        const bool isBegin = wanted.size() > 3 && known.startsWith(wanted);
        const int distance = isBegin ? 1 : editDistance(wanted, known);
        if (distance < least && distance <= known.size() / 3) {
            least = distance;
            nearest = key;
        }
    };
    for (const Colour::StandardGamut& gamut : Colour::standardGamuts) {
        for (const QString& known : namesOf(gamut))
            consider(known, QString::fromLatin1(gamut.key));
    }
    consider(s_native, s_native);
    consider(s_common, s_common);
    for (const auto& [illuminant, white] : illuminants)
        consider(normalised(QLatin1String(illuminant)), QLatin1String(illuminant));
    static const QRegularExpression number(QStringLiteral("^[0-9.]+"));
    const QString digits = number.match(name).captured();
    return nearest.isEmpty() && !digits.isEmpty() ? QStringLiteral("native:%1K or native:%1").arg(digits) : nearest;
}

} // namespace

bool GamutRequest::isNative() const
{
    return primaries.compare(s_native, Qt::CaseInsensitive) == 0 ||
           primaries.compare(s_common, Qt::CaseInsensitive) == 0;
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
        if (!(luminance >= minLuminance && luminance <= maxLuminance))
            return refusal(text, QStringLiteral("a luminance of 0.001 to 1000000 cd/m2"), parts.last());
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
    if (name.contains(QLatin1Char(':')))
        return nullptr; // more than a name
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
    if (parts.size() != 3 || !request.white)
        return refusal(request.text, QStringLiteral("rx,ry:gx,gy:bx,by with a white behind it"), request.primaries);
    std::array<Chromaticity, 3> points;
    for (std::size_t i = 0; i < points.size(); ++i) {
        const auto point = pairOf(parts.at(static_cast<int>(i)), request.text);
        if (!point)
            return point.fault();
        points[i] = *point;
    }
    return std::optional(Colour::Primaries{points[0], points[1], points[2], *request.white});
}

Fault unknownGamut(const GamutRequest& request)
{
    const QStringList parts = request.primaries.split(QLatin1Char(':'));
    if (parts.size() > 1 && (standardGamut(parts.first()) || parts.first().compare(s_native, Qt::CaseInsensitive) == 0))
        return refusal(request.text, QStringLiteral("a white (%1), and behind it a luminance in cd/m2").arg(s_whites),
                       parts.last());
    QStringList names;
    for (const Colour::StandardGamut& known : Colour::standardGamuts)
        names << QString::fromLatin1(known.key);
    const QString nearest = nearestName(parts.first());
    return {
        Fault::Kind::NoInput,
        request.subject(),
        {},
        QStringLiteral("neither a standard gamut nor a file"),
        (nearest.isEmpty() ? QString() : QStringLiteral("did you mean %1? ").arg(nearest)) +
            QStringLiteral("standard gamuts: %1; native; whites: %2").arg(names.join(QStringLiteral(", ")), s_whites)};
}

} // namespace Calibration
