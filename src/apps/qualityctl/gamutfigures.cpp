#include "gamutfigures.h"

#include "gamutargument.h"
#include "output.h"

#include <qualityutility/data/computenicccoef.h>

#include <algorithm>

namespace {

constexpr double noticeableDifference = 1.0;

std::array<Colour::Chromaticity, 4> points(const Colour::Primaries& p)
{
    return {p.red, p.green, p.blue, p.white};
}

} // namespace

double GamutFigures::worstDifference() const
{
    return *std::max_element(ciede2000.begin(), ciede2000.end());
}

GamutFigures computeFigures(const Model::ColorGamutInfo& source, const Model::ColorGamutInfo& target)
{
    Model::ColorGamutInfo corrected = target;
    ComputeNICCCoef::createCoef(source, corrected);
    return figuresOf(source, corrected);
}

GamutFigures figuresOf(const Model::ColorGamutInfo& source, const Model::ColorGamutInfo& target)
{
    const Colour::Primaries sourcePrimaries = primariesOf(source);
    const Colour::Primaries targetPrimaries = primariesOf(target);
    GamutFigures figures;
    figures.source = source;
    figures.target = target;
    figures.coefficients = signedCoefficients(target.coeff.getCoeffs());
    figures.coverageXy = Colour::coverage(sourcePrimaries, targetPrimaries);
    figures.coverageUv = Colour::coverage(uvPrime(sourcePrimaries), uvPrime(targetPrimaries));
    const auto reached = Colour::reachedGamut(sourcePrimaries, figures.coefficients);
    const auto differences = reached ? Colour::differences(*reached, targetPrimaries) : std::nullopt;
    if (!differences)
        throw CommandError{
            ExitCode::BadData,
            QStringLiteral("gamut %1: the coefficients for the target %2 leave a primary or white without light")
                .arg(QString::fromStdString(source.name), QString::fromStdString(target.name))};
    figures.reached = *reached;
    figures.ciede2000 = *differences;
    // Limits of the coefficients' type show only in the result.
    for (std::size_t i = 0; i < figures.ciede2000.size(); ++i)
        figures.reached.outOfReach[i] = figures.reached.outOfReach[i] || figures.ciede2000[i] > noticeableDifference;
    return figures;
}

const QStringList& pointNames()
{
    static const QStringList names{QStringLiteral("red"), QStringLiteral("green"), QStringLiteral("blue"),
                                   QStringLiteral("white")};
    return names;
}

Colour::Coefficients signedCoefficients(const std::vector<unsigned short>& bits)
{
    Colour::Coefficients result{};
    std::transform(bits.begin(), bits.begin() + std::min<std::ptrdiff_t>(9, static_cast<std::ptrdiff_t>(bits.size())),
                   result.begin(), [](unsigned short value) { return static_cast<std::int16_t>(value); });
    return result;
}

QString percent(double fraction)
{
    return QStringLiteral("%1 %").arg(100.0 * fraction, 0, 'f', 2);
}

QJsonArray coefficientsToJson(const Colour::Coefficients& coefficients)
{
    QJsonArray result;
    for (const int coefficient : coefficients)
        result.append(coefficient);
    return result;
}

QJsonObject toJson(const GamutFigures& figures)
{
    QJsonObject reached;
    const auto reachedPoints = points(figures.reached.primaries);
    for (std::size_t i = 0; i < 4; ++i)
        reached.insert(pointNames().at(static_cast<int>(i)),
                       QJsonObject{{QStringLiteral("x"), reachedPoints[i].x},
                                   {QStringLiteral("y"), reachedPoints[i].y},
                                   {QStringLiteral("ciede2000"), figures.ciede2000[i]},
                                   {QStringLiteral("out_of_reach"), figures.reached.outOfReach[i]}});
    return {{QStringLiteral("source"), QString::fromStdString(figures.source.name)},
            {QStringLiteral("target"), QString::fromStdString(figures.target.name)},
            {QStringLiteral("coefficients"), coefficientsToJson(figures.coefficients)},
            {QStringLiteral("cover"), figures.target.cover},
            {QStringLiteral("org_cover"), figures.target.orgCover},
            {QStringLiteral("white_kept"), figures.reached.whiteKept},
            {QStringLiteral("reached"), reached}};
}

QString reachText(const GamutFigures& figures, std::size_t point)
{
    return figures.reached.outOfReach[point] ? QStringLiteral("out of reach") : QStringLiteral("reached");
}

QList<QStringList> reachRows(const GamutFigures& figures)
{
    const auto reached = points(figures.reached.primaries);
    const auto target = points(primariesOf(figures.target));
    const auto text = [](const Colour::Chromaticity& c) {
        return QStringLiteral("%1, %2").arg(c.x, 0, 'f', 4).arg(c.y, 0, 'f', 4);
    };
    QList<QStringList> rows{{QStringLiteral("point"), QStringLiteral("target x, y"), QStringLiteral("reached x, y"),
                             QStringLiteral("CIEDE2000"), QStringLiteral("reach")}};
    for (std::size_t i = 0; i < 4; ++i)
        rows.append(QStringList{pointNames().at(static_cast<int>(i)), text(target[i]), text(reached[i]),
                                QString::number(figures.ciede2000[i], 'f', 2), reachText(figures, i)});
    return rows;
}
