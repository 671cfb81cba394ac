#include "measurementreport.h"

#include <calibration/gamut.h>
#include <suite/colour/temperature.h>

namespace Reports {

namespace {

using Calibration::Measurement;
using Calibration::PatchReadings;
using Calibration::WhiteSource;

/// Nothing where it is not known.
std::optional<double> luminanceOf(const Model::LXY& colour)
{
    return colour.lum > 0.0 ? std::optional(colour.lum) : std::nullopt;
}

void addPatch(Table& table, const QString& name, const PatchReadings& patch)
{
    table.add({name, patch.count, decimal(patch.mean.x, 5), decimal(patch.mean.y, 5),
               decimal(luminanceOf(patch.mean), 4), decimal(patch.spreadXy, 5), percent(patch.spreadLuminance)});
}

QJsonObject toJson(const Colour::MeasuredColour& colour)
{
    return {{QStringLiteral("x"), colour.xy.x},
            {QStringLiteral("y"), colour.xy.y},
            {QStringLiteral("luminance"), colour.luminance}};
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

Table colourTable()
{
    return Table({{QStringLiteral("point"), QStringLiteral("point")},
                  {QStringLiteral("x"), QStringLiteral("x")},
                  {QStringLiteral("y"), QStringLiteral("y")},
                  {QStringLiteral("luminance_cd_m2"), QStringLiteral("cd/m2")},
                  {QStringLiteral("cct_k"), QStringLiteral("CCT, K")},
                  {QStringLiteral("duv"), QStringLiteral("Duv")},
                  {QStringLiteral("known"), QStringLiteral("known")}});
}

void addColour(Table& table, const QString& name, const Model::LXY& colour, bool isWhite, const QString& known)
{
    const auto cct = isWhite ? Colour::correlatedTemperature({colour.x, colour.y}) : std::nullopt;
    table.add({name, decimal(colour.x, 4), decimal(colour.y, 4), decimal(luminanceOf(colour), 1),
               decimal(cct ? std::optional(cct->kelvin) : std::nullopt, 0),
               decimal(cct ? std::optional(cct->duv) : std::nullopt, 4), known});
}

Table pointTable(const Model::ColorGamutInfo& gamut, const QString& known)
{
    Table table = colourTable();
    const auto points = Calibration::pointsOf(gamut);
    for (std::size_t i = 0; i < points.size(); ++i)
        addColour(table, Calibration::pointName(i), *points[i], i + 1 == points.size(), known);
    return table;
}

QJsonValue additivityJson(const Measurement& measurement, WhiteSource white)
{
    const auto additivity = additivityOf(measurement);
    if (!additivity)
        return QJsonValue::Undefined;
    return QJsonObject{{QStringLiteral("measured"), toJson(additivity->measured)},
                       {QStringLiteral("sum"), toJson(additivity->sum)},
                       {QStringLiteral("luminance_difference"), additivity->luminance},
                       {QStringLiteral("duv_prime"), additivity->duvPrime},
                       {QStringLiteral("contradiction"), additivity->isContradiction()},
                       {QStringLiteral("white"), wordOf(white)}};
}

QString warningLines(const QStringList& warnings)
{
    QString text;
    for (const QString& warning : warnings)
        text += QStringLiteral("Warning: %1\n").arg(warning);
    return text.isEmpty() ? text : text + QLatin1Char('\n');
}

} // namespace Reports
