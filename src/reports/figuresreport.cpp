#include "figuresreport.h"

#include <calibration/gamut.h>

namespace Reports {

namespace {

using Calibration::Figures;
using Calibration::primariesOf;

std::array<Colour::Chromaticity, 4> points(const Colour::Primaries& p)
{
    return {p.red, p.green, p.blue, p.white};
}

QString xyText(const Colour::Chromaticity& c)
{
    return QStringLiteral("%1, %2").arg(c.x, 0, 'f', 4).arg(c.y, 0, 'f', 4);
}

QString nameOf(const Model::ColorGamutInfo& gamut)
{
    return QString::fromStdString(gamut.name);
}

} // namespace

Table reachTable(const Figures& figures)
{
    Table table({{QStringLiteral("point"), QStringLiteral("point")},
                 {{}, QStringLiteral("target x, y")},
                 {{}, QStringLiteral("reached x, y")},
                 {QStringLiteral("x"), {}},
                 {QStringLiteral("y"), {}},
                 {QStringLiteral("ciede2000"), QStringLiteral("CIEDE2000")},
                 {QStringLiteral("out_of_reach"), QStringLiteral("reach")}});
    const auto reached = points(figures.reached.primaries);
    const auto target = points(primariesOf(figures.target));
    for (std::size_t i = 0; i < reached.size(); ++i)
        table.add({Calibration::pointName(i), xyText(target[i]), xyText(reached[i]), decimal(reached[i].x, 4),
                   decimal(reached[i].y, 4), decimal(figures.ciede2000[i], 2),
                   flag(figures.reached.outOfReach[i], QStringLiteral("out of reach"), QStringLiteral("reached"))});
    return table;
}

Table figuresTable(const Figures& figures)
{
    QStringList coefficients;
    for (const int coefficient : figures.coefficients)
        coefficients << QString::number(coefficient);
    Table table(
        {{QStringLiteral("figure"), QStringLiteral("figure")}, {QStringLiteral("value"), QStringLiteral("value")}});
    table.add({QStringLiteral("measured"), nameOf(figures.measured)});
    table.add({QStringLiteral("target"), nameOf(figures.target)});
    table.add({QStringLiteral("light kept"), percent(figures.reached.whiteKept)});
    table.add({QStringLiteral("coverage of the target, xy"), percent(figures.coverageXy.covered)});
    table.add({QStringLiteral("coverage of the target, u'v'"), percent(figures.coverageUv.covered)});
    table.add({QStringLiteral("coefficients, Q1.14"), coefficients.join(QLatin1Char(' '))});
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
    object.insert(QStringLiteral("light_kept"), figures.reached.whiteKept);
    object.insert(QStringLiteral("reached"), reachTable(figures).toJson());
    return object;
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
    return Charts::chromaticityChart(QStringLiteral("%1 corrected to %2").arg(measured, target), plane,
                                     {{QStringLiteral("measured: %1").arg(measured), primariesOf(figures.measured),
                                       QStringLiteral("covers %1").arg(percent(coverage.covered).text)},
                                      {QStringLiteral("target: %1").arg(target), primariesOf(figures.target), {}},
                                      {QStringLiteral("reached"), figures.reached.primaries, {}}});
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
