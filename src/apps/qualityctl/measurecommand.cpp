#include "commands.h"
#include <calibration/gamut.h>
#include <calibration/journal.h>
#include <calibration/output.h>
#include <reports/measurementreport.h>

#include <CLI/CLI.hpp>

#include <QJsonDocument>

namespace {

using Calibration::Measurement;

/// Whether the figures agree with each other.
QString checksOf(const Measurement& measurement, const QStringList& warnings)
{
    const auto additivity = additivityOf(measurement);
    const bool isAdditive = additivity && !additivity->isContradiction();
    return (isAdditive ? additivity->sentence() + QLatin1Char('\n') : QString()) + Reports::warningLines(warnings);
}

CommandResult show(const std::string& file, const Output&)
{
    const Measurement measurement = take(Calibration::readMeasured(QString::fromStdString(file)));
    const Reports::Table patches = Reports::patchTable(measurement.patches);
    QJsonObject keywords;
    for (const Measurement::Keyword& keyword : measurement.keywords)
        keywords.insert(keyword.name, keyword.value);
    const bool isRead = measurement.file.has_value(); // else there are no readings
    const Reports::Table points = Reports::pointTable(measurement.gamut, measurement.known());
    const QStringList warnings = warningsOf(measurement, Calibration::WhiteSource::Measured);
    return {Reports::detailTable(measurement).toText() + QLatin1Char('\n') + (isRead ? patches : points).toText() +
                QLatin1Char('\n') + checksOf(measurement, warnings),
            {{QStringLiteral("file"), QString::fromStdString(file)},
             {QStringLiteral("kind"), measurement.kind},
             {QStringLiteral("name"), QString::fromStdString(measurement.gamut.name)},
             {QStringLiteral("instrument"), measurement.instrument},
             {QStringLiteral("observer"), measurement.observer},
             {QStringLiteral("date"), measurement.date},
             {QStringLiteral("notes"), QJsonArray::fromStringList(measurement.notes)},
             {QStringLiteral("keywords"), keywords},
             {QStringLiteral("warnings"), QJsonArray::fromStringList(warnings)},
             {QStringLiteral("additivity"), Reports::additivityJson(measurement, Calibration::WhiteSource::Measured)},
             {QStringLiteral("points"), points.toJson()},
             {QStringLiteral("patches"), isRead ? patches.toJson() : QJsonArray()}}};
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
    const QString file = QString::fromStdString(arguments.file);
    const Measurement measurement = take(Calibration::readMeasured(file));
    require(Calibration::requireLuminance(measurement.gamut, measurement.subject, file));
    if (!arguments.force)
        require(Calibration::requireLabels(measurement.gamut, measurement.subject));
    require(Calibration::requireNewFile(out, arguments.force));
    const QJsonObject gamut = Calibration::gamutToJson(measurement.gamut);
    require(Calibration::writeOutput(out, QJsonDocument(gamut).toJson()));
    return {QStringLiteral("%1: the gamut of %2\n").arg(out, file),
            {{QStringLiteral("gamut"), out}, {QStringLiteral("measurement"), file}}};
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
    converted->add_flag("--force", arguments->force, "Replace a file that is there; take primaries that look swapped");
    converted->callback(
        [&chosen, arguments] { chosen = [arguments](const Output& output) { return convert(*arguments, output); }; });
}
