#include "measurementreport.h"

#include <calibration/gamut.h>
#include <suite/colour/temperature.h>

namespace Reports {

namespace {

using Calibration::Measurement;
using Calibration::PatchReadings;
using Calibration::WhiteSource;

void addPatch(Table& table, const QString& name, const PatchReadings& patch)
{
    table.add({name, patch.count, decimal(patch.mean.x, 5), decimal(patch.mean.y, 5), decimal(patch.mean.lum, 4),
               decimal(patch.spreadXy, 5), percent(patch.spreadLuminance)});
}

QJsonObject toJson(const Colour::MeasuredColour& colour)
{
    return {{QStringLiteral("x"), colour.xy.x},
            {QStringLiteral("y"), colour.xy.y},
            {QStringLiteral("luminance"), colour.luminance}};
}

/// A number that may not be known.
Cell known(bool isKnown, double number, int decimals)
{
    return isKnown ? decimal(number, decimals) : Cell(QStringLiteral("-"), QJsonValue::Undefined);
}

} // namespace

Table patchTable(const Calibration::PatchTable& patches)
{
    const QString luminance =
        patches.isRelative ? QStringLiteral("relative_luminance") : QStringLiteral("luminance_cd_m2");
    Table table({{QStringLiteral("patch"), QStringLiteral("patch")},
                 {QStringLiteral("readings"), QStringLiteral("readings")},
                 {QStringLiteral("x"), QStringLiteral("x")},
                 {QStringLiteral("y"), QStringLiteral("y")},
                 {luminance, patches.isRelative ? QStringLiteral("luminance, relative") : QStringLiteral("cd/m2")},
                 {QStringLiteral("spread_xy"), QStringLiteral("spread xy")},
                 {QStringLiteral("spread_luminance"), QStringLiteral("spread luminance")}});
    for (std::size_t point = 0; point < patches.points.size(); ++point)
        addPatch(table, Calibration::pointName(point), patches.points[point]);
    if (patches.black)
        addPatch(table, QStringLiteral("black"), *patches.black);
    return table;
}

Table detailTable(const Measurement& measurement)
{
    Table table({{{}, QStringLiteral("detail")}, {{}, QStringLiteral("value")}});
    table.add({QStringLiteral("kind"), measurement.kind});
    table.add({QStringLiteral("name"), Calibration::nameOf(measurement.gamut)});
    const std::pair<QString, QString> details[] = {{QStringLiteral("instrument"), measurement.instrument},
                                                   {QStringLiteral("observer"), measurement.observer},
                                                   {QStringLiteral("date"), measurement.date}};
    for (const auto& [name, value] : details) {
        if (!value.isEmpty())
            table.add({name, value});
    }
    for (const QString& note : measurement.notes)
        table.add({QStringLiteral("note"), note});
    return table;
}

Table pointTable(const Model::ColorGamutInfo& gamut)
{
    Table table({{QStringLiteral("point"), QStringLiteral("point")},
                 {QStringLiteral("x"), QStringLiteral("x")},
                 {QStringLiteral("y"), QStringLiteral("y")},
                 {QStringLiteral("luminance_cd_m2"), QStringLiteral("cd/m2")},
                 {QStringLiteral("cct_k"), QStringLiteral("CCT, K")},
                 {QStringLiteral("duv"), QStringLiteral("Duv")}});
    const auto points = Calibration::pointsOf(gamut);
    for (std::size_t i = 0; i < points.size(); ++i) {
        const Model::LXY& point = *points[i];
        const bool isWhite = i + 1 == points.size();
        const auto cct = isWhite ? Colour::correlatedTemperature({point.x, point.y}) : std::nullopt;
        table.add({Calibration::pointName(i), decimal(point.x, 4), decimal(point.y, 4),
                   known(point.lum > 0.0, point.lum, 1), known(cct.has_value(), cct ? cct->kelvin : 0.0, 0),
                   known(cct.has_value(), cct ? cct->duv : 0.0, 4)});
    }
    return table;
}

QJsonValue additivityJson(const Measurement& measurement, WhiteSource white)
{
    const auto additivity = additivityOf(measurement);
    if (!additivity)
        return QJsonValue::Null;
    return QJsonObject{
        {QStringLiteral("measured"), toJson(additivity->measured)},
        {QStringLiteral("sum"), toJson(additivity->sum)},
        {QStringLiteral("luminance_difference"), additivity->luminance},
        {QStringLiteral("duv_prime"), additivity->duvPrime},
        {QStringLiteral("contradiction"), additivity->isContradiction()},
        {QStringLiteral("white"), white == WhiteSource::Sum ? QStringLiteral("sum") : QStringLiteral("measured")}};
}

QString additivityWarning(const Measurement& measurement, WhiteSource white)
{
    const auto additivity = additivityOf(measurement);
    if (!additivity || !additivity->isContradiction())
        return {};
    return additivity->sentence() + (white == WhiteSource::Sum
                                         ? QStringLiteral(". The correction is computed from their sum")
                                         : QStringLiteral(". The correction is computed from the measured white; "
                                                          "--white sum takes the other"));
}

QString warningLine(const QString& warning)
{
    return warning.isEmpty() ? QString() : QStringLiteral("Warning: %1\n").arg(warning);
}

} // namespace Reports
