#include "commands.h"
#include <calibration/gamut.h>
#include <calibration/journal.h>
#include <calibration/measurement.h>
#include <calibration/output.h>
#include <reports/table.h>

#include <CLI/CLI.hpp>

#include <QJsonDocument>

namespace {

using Calibration::Measurement;
using Calibration::PatchReadings;

Measurement readMeasurement(const std::string& file)
{
    return take(Calibration::parseMeasurement(
        take(Calibration::readInput(QString::fromStdString(file), QStringLiteral("measurement")))));
}

void addPatch(Reports::Table& table, const QString& name, const PatchReadings& patch)
{
    table.add({name, patch.count, Reports::decimal(patch.mean.x, 5), Reports::decimal(patch.mean.y, 5),
               Reports::decimal(patch.mean.lum, 4), Reports::decimal(patch.spreadXy, 5),
               Reports::percent(patch.spreadLuminance)});
}

Reports::Table patchTable(const Calibration::PatchTable& patches)
{
    Reports::Table table({{QStringLiteral("patch"), QStringLiteral("patch")},
                          {QStringLiteral("readings"), QStringLiteral("readings")},
                          {QStringLiteral("x"), QStringLiteral("x")},
                          {QStringLiteral("y"), QStringLiteral("y")},
                          {QStringLiteral("luminance_cd_m2"), QStringLiteral("cd/m2")},
                          {QStringLiteral("spread_xy"), QStringLiteral("spread xy")},
                          {QStringLiteral("spread_luminance"), QStringLiteral("spread luminance")}});
    for (std::size_t point = 0; point < patches.points.size(); ++point)
        addPatch(table, Calibration::pointName(point), patches.points[point]);
    if (patches.black)
        addPatch(table, QStringLiteral("black"), *patches.black);
    return table;
}

/// What the file says of the measuring, where it does.
Reports::Table detailTable(const Measurement& measurement)
{
    Reports::Table table({{{}, QStringLiteral("detail")}, {{}, QStringLiteral("value")}});
    table.add({QStringLiteral("kind"), measurement.kind});
    table.add({QStringLiteral("name"), QString::fromStdString(measurement.gamut.name)});
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

CommandResult show(const std::string& file, const Output&)
{
    const Measurement measurement = readMeasurement(file);
    const Reports::Table patches = patchTable(measurement.patches);
    QJsonObject keywords;
    for (const Measurement::Keyword& keyword : measurement.keywords)
        keywords.insert(keyword.name, keyword.value);
    return {detailTable(measurement).toText() + QLatin1Char('\n') + patches.toText(),
            {{QStringLiteral("file"), QString::fromStdString(file)},
             {QStringLiteral("kind"), measurement.kind},
             {QStringLiteral("name"), QString::fromStdString(measurement.gamut.name)},
             {QStringLiteral("instrument"), measurement.instrument},
             {QStringLiteral("observer"), measurement.observer},
             {QStringLiteral("date"), measurement.date},
             {QStringLiteral("notes"), QJsonArray::fromStringList(measurement.notes)},
             {QStringLiteral("keywords"), keywords},
             {QStringLiteral("patches"), patches.toJson()}}};
}

struct ConvertArguments
{
    std::string file;
    std::string out;
    bool force = false;
};

CommandResult convert(const ConvertArguments& arguments, const Output&)
{
    const QString out = QString::fromStdString(arguments.out);
    const Measurement measurement = readMeasurement(arguments.file);
    require(Calibration::requireNewFile(out, arguments.force));
    const QJsonObject gamut = Calibration::gamutToJson(measurement.gamut);
    require(Calibration::writeOutput(out, QJsonDocument(gamut).toJson()));
    return {QStringLiteral("%1: the gamut of %2\n").arg(out, QString::fromStdString(arguments.file)),
            {{QStringLiteral("gamut"), out}, {QStringLiteral("measurement"), QString::fromStdString(arguments.file)}}};
}

} // namespace

void addMeasureCommands(CLI::App& app, Command& chosen)
{
    constexpr char what[] = "Readings (CGATS .ti3 or CSV), a gamut in JSON, or a NICC document";
    CLI::App* measure = app.add_subcommand("measure", "Look at measurements of a wall, and convert them");
    measure->require_subcommand(1);
    CLI::App* shown = measure->add_subcommand("show", "Print a measurement: means and spread of each patch");
    const auto file = std::make_shared<std::string>();
    shown->add_option("FILE", *file, what)->required();
    shown->callback([&chosen, file] { chosen = [file](const Output& output) { return show(*file, output); }; });

    CLI::App* converted = measure->add_subcommand("convert", "Write a measurement's gamut as JSON");
    const auto arguments = std::make_shared<ConvertArguments>();
    converted->add_option("FILE", arguments->file, what)->required();
    converted->add_option("--out", arguments->out, "The gamut's file (JSON)")->required();
    converted->add_flag("--force", arguments->force, "Replace a file that is there");
    converted->callback(
        [&chosen, arguments] { chosen = [arguments](const Output& output) { return convert(*arguments, output); }; });
}
