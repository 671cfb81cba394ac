#include "explanation.h"

#include <calibration/gamut.h>
#include <calibration/known.h>
#include <reports/figuresreport.h>

#include <QJsonObject>

namespace Reports {

namespace {

QString matrixLines(const Colour::Matrix3& matrix)
{
    QString text;
    for (const Colour::Vector3& row : matrix) {
        text += QLatin1String("   ");
        for (const double value : row)
            text += decimal(value, 8).text.rightJustified(13);
        text += QLatin1Char('\n');
    }
    return text;
}

QString indented(const QString& value)
{
    return QStringLiteral("    %1\n").arg(value);
}

/// How the coefficients come about.
std::vector<Explanation> correctionSteps(const Calibration::Figures& figures)
{
    const Colour::Primaries wall = Calibration::primariesOf(figures.measured);
    const Colour::Primaries target = Calibration::primariesOf(figures.target);
    const auto correction = Colour::correctionMatrix(wall, target).value_or(Colour::Matrix3{});
    const double scale = Colour::whiteScale(correction, 0.0, 0.0, 0.0).value_or(0.0);
    const QString rp177 = QStringLiteral("SMPTE RP 177");
    const QString derivation = QStringLiteral("docs/colour.md");
    return {
        {QStringLiteral("RGB of the wall to XYZ"),
         QStringLiteral("columns: XYZ of red, green, blue; scaled so that N (1,1,1) is white with Y = 1"), rp177,
         matrixLines(Colour::rgbToXyz(wall).value_or(Colour::Matrix3{}))},
        {QStringLiteral("RGB of the target to XYZ"), QStringLiteral("as above"), rp177,
         matrixLines(Colour::rgbToXyz(target).value_or(Colour::Matrix3{}))},
        {QStringLiteral("Correction"), QStringLiteral("A = N_wall^-1 N_target, no chromatic adaptation"),
         QStringLiteral("linear algebra"), matrixLines(correction)},
        {QStringLiteral("Scale"),
         QStringLiteral("s = 1 / largest row sum of A, or what the coefficients' type holds where that is less"),
         derivation, indented(QString::number(scale, 'f', 8))},
        {QStringLiteral("Coefficients"),
         QStringLiteral("round(16384 s A), each row's largest entry adjusted to the rounded row sum"), derivation,
         coefficientLines(figures.coefficients)},
    };
}

/// What they reach.
std::vector<Explanation> results(const Calibration::Figures& figures)
{
    const auto share = [](double fraction) { return indented(percent(fraction).text); };
    return {
        {QStringLiteral("Light kept"), QStringLiteral("Y of white from the integers over Y of the wall's white"),
         QStringLiteral("CIE 15"), share(figures.corners.whiteKept)},
        {QStringLiteral("Area ratio, xy"), QStringLiteral("area(wall) / area(target), shoelace formula"),
         QStringLiteral("CIE 1931 xy"), share(figures.coverageXy.ratio)},
        {QStringLiteral("Coverage, xy"), QStringLiteral("area(wall and target) / area(target), clipped polygon"),
         QStringLiteral("Sutherland and Hodgman 1974"), share(figures.coverageXy.covered)},
        {QStringLiteral("Area ratio, u'v'"), QStringLiteral("the same with u', v' = 4x, 9y over -2x + 12y + 3"),
         QStringLiteral("CIE 1976 UCS, CIE 15"), share(figures.coverageUv.ratio)},
        {QStringLiteral("Coverage, u'v'"), QStringLiteral("the same"), QStringLiteral("CIE 1976 UCS, CIE 15"),
         share(figures.coverageUv.covered)},
        {QStringLiteral("Shown against target"),
         QStringLiteral("CIEDE2000 of the colours shown by the integers, L*a*b* beside the target's white; out of "
                        "reach: of s A stopped at 0 and 1 from the target; not held: of the shown from that"),
         QStringLiteral("Sharma, Wu, Dalal 2005"), reachTable(figures, wordOf(Calibration::Known::Computed)).toText()},
    };
}

} // namespace

std::vector<Explanation> explain(const Calibration::Figures& figures)
{
    auto all = correctionSteps(figures);
    const auto reached = results(figures);
    all.insert(all.end(), reached.begin(), reached.end());
    return all;
}

QString toText(const std::vector<Explanation>& explanations)
{
    QString text;
    for (const Explanation& explanation : explanations)
        text += QStringLiteral("%1\n    %2 [%3]\n%4\n")
                    .arg(explanation.title, explanation.formula, explanation.source, explanation.value);
    return text;
}

QJsonArray toJson(const std::vector<Explanation>& explanations)
{
    QJsonArray array;
    for (const Explanation& explanation : explanations)
        array.append(QJsonObject{{QStringLiteral("figure"), explanation.title},
                                 {QStringLiteral("formula"), explanation.formula},
                                 {QStringLiteral("source"), explanation.source}});
    return array;
}

} // namespace Reports
