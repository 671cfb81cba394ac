#include "chartfile.h"
#include "commands.h"
#include "hostlog.h"
#include "options.h"
#include <calibration/gamut.h>
#include <reports/explanation.h>
#include <reports/figuresreport.h>

#include <CLI/CLI.hpp>

namespace {

struct GamutPair
{
    std::string measured;
    std::string target;
};

QString nameOf(const Model::ColorGamutInfo& gamut)
{
    return QString::fromStdString(gamut.name);
}

Model::ColorGamutInfo gamutOf(const std::string& argument)
{
    return take(Calibration::readGamut(QString::fromStdString(argument)));
}

Calibration::Figures figuresOf(const GamutPair& pair, const Output& output)
{
    const auto measured = gamutOf(pair.measured);
    const auto target = gamutOf(pair.target);
    HostLog::install(output.quiet);
    return take(Calibration::computeFigures(measured, target));
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

CommandResult showCoverage(const GamutPair& pair, const Output&)
{
    const auto measured = gamutOf(pair.measured);
    const auto target = gamutOf(pair.target);
    const auto wall = Calibration::primariesOf(measured);
    const auto wanted = Calibration::primariesOf(target);
    const auto xy = Colour::coverage(wall, wanted);
    const auto uv = Colour::coverage(uvPrime(wall), uvPrime(wanted));
    QJsonObject json = Reports::coverageJson(xy, uv);
    json.insert(QStringLiteral("measured"), nameOf(measured));
    json.insert(QStringLiteral("target"), nameOf(target));
    return {QStringLiteral("%1 against %2\n\n").arg(nameOf(measured), nameOf(target)) +
                Reports::coverageTable(xy, uv).toText(),
            json};
}

CommandResult showCoefficients(const GamutPair& pair, const Output& output)
{
    const auto figures = figuresOf(pair, output);
    return {QStringLiteral("%1 corrected to %2, signed Q1.14 (1.0 is 16384), rows are LED channels\n\n%3\n"
                           "light kept   %4\ncoverage     %5\narea ratio   %6\n\n")
                    .arg(nameOf(figures.measured), nameOf(figures.target),
                         Reports::coefficientLines(figures.coefficients),
                         Reports::percent(figures.reached.whiteKept).text,
                         Reports::percent(figures.coverageXy.covered).text,
                         Reports::percent(figures.coverageXy.ratio).text) +
                Reports::reachTable(figures).toText(),
            Reports::toJson(figures)};
}

CommandResult explain(const GamutPair& pair, const Output& output)
{
    const auto figures = figuresOf(pair, output);
    const auto explanations = Reports::explain(figures);
    QJsonObject json = Reports::toJson(figures);
    json.insert(QStringLiteral("formulas"), Reports::toJson(explanations));
    return {Reports::toText(explanations), json};
}

struct ChartArguments
{
    GamutPair pair;
    std::string plane = "xy";
    std::string out;
    bool force = false;
};

CommandResult drawChart(const ChartArguments& arguments, const Output& output)
{
    const ChartFile file(arguments.out, arguments.force);
    const auto plane = arguments.plane == "xy" ? Charts::Plane::Xy : Charts::Plane::UvPrime;
    return file.write(Reports::correctionChart(figuresOf(arguments.pair, output), plane));
}

void addPair(CLI::App& command, GamutPair& pair)
{
    addGamut(command, pair.measured, "measured,--measured", "The LEDs' gamut", true);
    addGamut(command, pair.target, "target,--target", "The gamut that is wanted", true);
}

using PairCommand = CommandResult (*)(const GamutPair&, const Output&);

void addPairCommand(CLI::App& gamut, Command& chosen, const char* name, const char* help, PairCommand run)
{
    CLI::App* command = gamut.add_subcommand(name, help);
    const auto pair = std::make_shared<GamutPair>();
    addPair(*command, *pair);
    command->callback(
        [&chosen, pair, run] { chosen = [pair, run](const Output& output) { return run(*pair, output); }; });
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
    addPair(*chart, arguments->pair);
    chart->add_option("--plane", arguments->plane, "xy: CIE 1931; uv: CIE 1976 u'v'")
        ->check(CLI::IsMember({"xy", "uv"}))
        ->capture_default_str();
    addChartFile(*chart, arguments->out, arguments->force);
    chart->callback(
        [&chosen, arguments] { chosen = [arguments](const Output& output) { return drawChart(*arguments, output); }; });
}
