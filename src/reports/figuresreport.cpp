#include "figuresreport.h"

#include <calibration/gamut.h>
#include <calibration/known.h>

namespace Reports {

namespace {

using Calibration::Figures;
using Calibration::nameOf;
using Calibration::primariesOf;

QString xyText(const std::optional<Colour::Chromaticity>& c)
{
    return c ? QStringLiteral("%1, %2").arg(c->x, 0, 'f', 4).arg(c->y, 0, 'f', 4) : QStringLiteral("-");
}

/// In JSON only.
Cell coordinate(const std::optional<Colour::Chromaticity>& c, double Colour::Chromaticity::*axis)
{
    return {{}, c ? QJsonValue((*c).*axis) : QJsonValue(QJsonValue::Undefined)};
}

} // namespace

Table reachTable(const Figures& figures, const QString& known)
{
    Table table({{QStringLiteral("point"), QStringLiteral("point")},
                 {QStringLiteral("ciede2000"), QStringLiteral("CIEDE2000")},
                 {QStringLiteral("ciede2000_out_of_reach"), QStringLiteral("out of reach")},
                 {QStringLiteral("ciede2000_not_held"), QStringLiteral("not held")},
                 {{}, QStringLiteral("target x, y")},
                 {{}, QStringLiteral("shown x, y")},
                 {QStringLiteral("x"), {}},
                 {QStringLiteral("y"), {}},
                 {QStringLiteral("out_of_reach"), {}},
                 {QStringLiteral("known"), QStringLiteral("known")}});
    for (std::size_t i = 0; i < figures.corners.corners.size(); ++i) {
        const Colour::Corner& corner = figures.corners.corners[i];
        const auto shown = Colour::chromaticity(corner.shown);
        table.add({Calibration::judgedName(i),
                   decimal(corner.difference, 2),
                   decimal(corner.outOfReach, 2),
                   decimal(corner.notHeld, 2),
                   xyText(Colour::chromaticity(corner.target)),
                   xyText(shown),
                   coordinate(shown, &Colour::Chromaticity::x),
                   coordinate(shown, &Colour::Chromaticity::y),
                   {{}, Calibration::isOutOfReach(corner)},
                   known});
    }
    return table;
}

QString reachText(const Figures& figures)
{
    const QStringList colours = Calibration::outOfReach(figures.corners);
    return colours.isEmpty()
               ? QStringLiteral("The LEDs reach every colour of the target.")
               : QStringLiteral("Out of the LEDs' reach, in CIEDE2000: %1.").arg(colours.join(QStringLiteral(", ")));
}

Table figuresTable(const Figures& figures)
{
    Table table({{QStringLiteral("figure"), QStringLiteral("figure")},
                 {QStringLiteral("value"), QStringLiteral("value")},
                 {QStringLiteral("known"), QStringLiteral("known")}});
    const QString given = QStringLiteral("given");
    const QString computed = wordOf(Calibration::Known::Computed);
    table.add({QStringLiteral("measured"), nameOf(figures.measured), given});
    table.add({QStringLiteral("target"), nameOf(figures.target), given});
    table.add({QStringLiteral("light kept"), percent(figures.corners.whiteKept), computed});
    table.add({QStringLiteral("coverage of the target, xy"), percent(figures.coverageXy.covered), computed});
    table.add({QStringLiteral("coverage of the target, u'v'"), percent(figures.coverageUv.covered), computed});
    table.add({QStringLiteral("area over the target's, xy"), percent(figures.coverageXy.ratio), computed});
    table.add({QStringLiteral("area over the target's, u'v'"), percent(figures.coverageUv.ratio), computed});
    table.add({QStringLiteral("coefficients, Q1.14"), integersText(figures.coefficients), computed});
    return table;
}

Table coverageTable(const Colour::Coverage& xy, const Colour::Coverage& uv)
{
    Table table({{{}, QStringLiteral("plane")}, {{}, QStringLiteral("area ratio")}, {{}, QStringLiteral("coverage")}});
    table.add({QStringLiteral("CIE 1931 xy"), percent(xy.ratio), percent(xy.covered)});
    table.add({QStringLiteral("CIE 1976 u'v'"), percent(uv.ratio), percent(uv.covered)});
    return table;
}

QJsonArray toJson(const Colour::Coefficients& coefficients)
{
    QJsonArray result;
    for (const int coefficient : coefficients)
        result.append(coefficient);
    return result;
}

QJsonObject coverageJson(const Colour::Coverage& xy, const Colour::Coverage& uv)
{
    return {{QStringLiteral("area_ratio_xy"), xy.ratio},
            {QStringLiteral("coverage_xy"), xy.covered},
            {QStringLiteral("area_ratio_uv"), uv.ratio},
            {QStringLiteral("coverage_uv"), uv.covered}};
}

QJsonObject toJson(const Figures& figures)
{
    QJsonObject object = coverageJson(figures.coverageXy, figures.coverageUv);
    object.insert(QStringLiteral("measured"), nameOf(figures.measured));
    object.insert(QStringLiteral("target"), nameOf(figures.target));
    object.insert(QStringLiteral("coefficients"), toJson(figures.coefficients));
    object.insert(QStringLiteral("light_kept"), figures.corners.whiteKept);
    object.insert(QStringLiteral("known"), wordOf(Calibration::Known::Computed));
    object.insert(QStringLiteral("reached"), reachTable(figures, wordOf(Calibration::Known::Computed)).toJson());
    return object;
}

QString integersText(const Colour::Coefficients& coefficients)
{
    QStringList numbers;
    for (const int coefficient : coefficients)
        numbers << QString::number(coefficient);
    return numbers.join(QLatin1Char(' '));
}

QString coefficientLines(const Colour::Coefficients& coefficients)
{
    QString text;
    for (std::size_t row = 0; row < 3; ++row) {
        for (std::size_t column = 0; column < 3; ++column)
            text += QStringLiteral("%1").arg(coefficients[3 * row + column], 8);
        text += QLatin1Char('\n');
    }
    return text;
}

Charts::Chart correctionChart(const Figures& figures, Charts::Plane plane)
{
    const QString measured = nameOf(figures.measured);
    const QString target = nameOf(figures.target);
    const Colour::Coverage& coverage = plane == Charts::Plane::Xy ? figures.coverageXy : figures.coverageUv;
    QList<Charts::ChartGamut> gamuts{{QStringLiteral("measured: %1").arg(measured), primariesOf(figures.measured),
                                      QStringLiteral("covers %1").arg(percent(coverage.covered).text)},
                                     {QStringLiteral("target: %1").arg(target), primariesOf(figures.target), {}}};
    if (const auto shown = Colour::shownPrimaries(figures.corners))
        gamuts.append({QStringLiteral("reached"), *shown, {}});
    return Charts::chromaticityChart(QStringLiteral("%1 corrected to %2").arg(measured, target), plane, gamuts);
}

Charts::Chart grayTableChart(const Action::GrayTable& table, const QString& name)
{
    const auto curve = [](const QString& label, const std::vector<unsigned char>& column) {
        Charts::GrayCurve result{label, {}, false};
        for (std::size_t level = 0; level < column.size(); ++level)
            result.points.append(QPointF(static_cast<double>(level), column[level]));
        return result;
    };
    Charts::GrayCurve magnitude = curve(QStringLiteral("magnitude"), table.magnitude);
    magnitude.ownAxis = true;
    return Charts::grayChart(QStringLiteral("Gray table %1").arg(name), QStringLiteral("coefficient"),
                             {curve(QStringLiteral("red"), table.red), curve(QStringLiteral("green"), table.green),
                              curve(QStringLiteral("blue"), table.blue), magnitude});
}

} // namespace Reports
