#include "chartfile.h"
#include "commands.h"
#include "hostlog.h"
#include "options.h"
#include <calibration/gamut.h>
#include <reports/explanation.h>
#include <reports/figuresreport.h>
#include <reports/measurementreport.h>

#include <CLI/CLI.hpp>

namespace {

using Calibration::nameOf;

/// A computed correction, and what speaks against its measurement.
struct Correction
{
    Calibration::GamutPair gamuts;
    Calibration::WhiteSource white;
    Calibration::Figures figures;

    QString warnings() const { return Reports::warningLines(gamuts.warnings); }
    QJsonObject toJson() const
    {
        QJsonObject json = Reports::toJson(figures);
        json.insert(QStringLiteral("additivity"), Reports::additivityJson(gamuts.measurement, white));
        json.insert(QStringLiteral("warnings"), QJsonArray::fromStringList(gamuts.warnings));
        return json;
    }
};

Correction correctionOf(const GamutArguments& arguments, const Output& output)
{
    const Calibration::ContentNames names = arguments.names();
    const auto gamuts = take(Calibration::readGamuts(names));
    HostLog::install(output.quiet);
    return {gamuts, names.white, take(Calibration::computeFigures(gamuts.measured, gamuts.target))};
}

CommandResult listGamuts(const Output&)
{
    Reports::Table table({{QStringLiteral("key"), QStringLiteral("key")},
                          {QStringLiteral("name"), QStringLiteral("name")},
                          {QStringLiteral("red"), QStringLiteral("red")},
                          {QStringLiteral("green"), QStringLiteral("green")},
                          {QStringLiteral("blue"), QStringLiteral("blue")},
                          {QStringLiteral("white"), QStringLiteral("white")},
                          {QStringLiteral("standard"), QStringLiteral("source")}});
    for (const Colour::StandardGamut& standard : Colour::standardGamuts) {
        std::vector<Reports::Cell> row{QString::fromLatin1(standard.key), QString::fromLatin1(standard.name)};
        const auto& p = standard.primaries;
        for (const Colour::Chromaticity& c : {p.red, p.green, p.blue, p.white})
            row.push_back({QStringLiteral("%1, %2").arg(c.x).arg(c.y), QJsonArray{c.x, c.y}});
        row.push_back(QString::fromLatin1(standard.source));
        table.add(row);
    }
    return {table.toText(), {{QStringLiteral("gamuts"), table.toJson()}}};
}

CommandResult showCoverage(const GamutArguments& arguments, const Output&)
{
    Calibration::ContentNames names = arguments.names();
    names.force = true; // the turn of a triangle does not matter
    const auto gamuts = take(Calibration::readGamuts(names));
    const auto& measured = gamuts.measured;
    const auto& target = gamuts.target;
    const auto wall = Calibration::primariesOf(measured);
    const auto wanted = Calibration::primariesOf(target);
    const auto xy = Colour::coverage(wall, wanted);
    const auto uv = Colour::coverage(uvPrime(wall), uvPrime(wanted));
    QJsonObject json = Reports::coverageJson(xy, uv);
    json.insert(QStringLiteral("measured"), nameOf(measured));
    json.insert(QStringLiteral("target"), nameOf(target));
    json.insert(QStringLiteral("warnings"), QJsonArray::fromStringList(gamuts.warnings));
    return {Reports::warningLines(gamuts.warnings) +
                QStringLiteral("%1 against %2\n\n").arg(nameOf(measured), nameOf(target)) +
                Reports::coverageTable(xy, uv).toText(),
            json};
}

CommandResult showCoefficients(const GamutArguments& arguments, const Output& output)
{
    const auto correction = correctionOf(arguments, output);
    const auto& figures = correction.figures;
    return {correction.warnings() +
                QStringLiteral("%1 corrected to %2, signed Q1.14 (1.0 is 16384), rows are LED channels\n\n%3\n"
                               "light kept   %4\ncoverage     %5\narea ratio   %6\n\n")
                    .arg(nameOf(figures.measured), nameOf(figures.target),
                         Reports::coefficientLines(figures.coefficients),
                         Reports::percent(figures.corners.whiteKept).text,
                         Reports::percent(figures.coverageXy.covered).text,
                         Reports::percent(figures.coverageXy.ratio).text) +
                Reports::reachTable(figures, wordOf(Calibration::Known::Computed)).toText() + QLatin1Char('\n') +
                Reports::reachText(figures) + QLatin1Char('\n'),
            correction.toJson()};
}

CommandResult explain(const GamutArguments& arguments, const Output& output)
{
    const auto correction = correctionOf(arguments, output);
    const auto explanations = Reports::explain(correction.figures);
    QJsonObject json = correction.toJson();
    json.insert(QStringLiteral("formulas"), Reports::toJson(explanations));
    return {correction.warnings() + Reports::toText(explanations), json};
}

struct ChartArguments
{
    GamutArguments gamuts;
    std::string plane = "xy";
    std::string out;
};

CommandResult drawChart(const ChartArguments& arguments, const Output& output)
{
    const ChartFile file(arguments.out, arguments.gamuts.force);
    const auto plane = arguments.plane == "xy" ? Charts::Plane::Xy : Charts::Plane::UvPrime;
    const Correction correction = correctionOf(arguments.gamuts, output);
    CommandResult result = file.write(Reports::correctionChart(correction.figures, plane));
    result.text += correction.warnings();
    result.json.insert(QStringLiteral("warnings"), QJsonArray::fromStringList(correction.gamuts.warnings));
    return result;
}

constexpr char measuredNames[] = "measured,--measured";
constexpr char targetNames[] = "target,--target";

using PairCommand = CommandResult (*)(const GamutArguments&, const Output&);

void addPairCommand(CLI::App& gamut, Command& chosen, const char* name, const char* help, PairCommand run)
{
    CLI::App* command = gamut.add_subcommand(name, help);
    const auto gamuts = std::make_shared<GamutArguments>();
    addGamuts(*command, *gamuts, measuredNames, targetNames);
    command->add_flag("--force", gamuts->force, "Take primaries that look swapped");
    command->callback(
        [&chosen, gamuts, run] { chosen = [gamuts, run](const Output& output) { return run(*gamuts, output); }; });
}

} // namespace

void addGamutCommands(CLI::App& app, Command& chosen)
{
    CLI::App* gamut = app.add_subcommand("gamut", "Compute with colour gamuts");
    gamut->require_subcommand(1);
    gamut->add_subcommand("list", "List the standard gamuts")->callback([&chosen] { chosen = listGamuts; });
    addPairCommand(*gamut, chosen, "coverage", "How much of a target gamut the LEDs' gamut covers", showCoverage);
    addPairCommand(*gamut, chosen, "coefficients", "The correction's coefficients, and what they reach",
                   showCoefficients);
    addPairCommand(*gamut, chosen, "explain", "Every figure of a correction with its formula and source", explain);

    CLI::App* chart = gamut->add_subcommand("chart", "Draw the measured, the target and the reached gamut");
    const auto arguments = std::make_shared<ChartArguments>();
    addGamuts(*chart, arguments->gamuts, measuredNames, targetNames);
    addPlane(*chart, arguments->plane);
    addChartFile(*chart, arguments->out, arguments->gamuts.force);
    chart->callback(
        [&chosen, arguments] { chosen = [arguments](const Output& output) { return drawChart(*arguments, output); }; });
}
