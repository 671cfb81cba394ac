#include "commands.h"
#include "gamutargument.h"
#include "gamutfigures.h"
#include "hostcharts.h"
#include "hostlog.h"
#include "outputfile.h"

#include <CLI/CLI.hpp>

#include <QJsonArray>

namespace {

struct GamutPair
{
    std::string source;
    std::string target;
};

QString nameOf(const Model::ColorGamutInfo& gamut)
{
    return QString::fromStdString(gamut.name);
}

CommandResult listGamuts(const Output&)
{
    QList<QStringList> rows{{QStringLiteral("key"), QStringLiteral("name"), QStringLiteral("red"),
                             QStringLiteral("green"), QStringLiteral("blue"), QStringLiteral("white"),
                             QStringLiteral("source")}};
    QJsonArray gamuts;
    for (const Colour::StandardGamut& standard : Colour::standardGamuts) {
        QStringList row{QString::fromLatin1(standard.key), QString::fromLatin1(standard.name)};
        QJsonObject gamut{{QStringLiteral("key"), row.at(0)},
                          {QStringLiteral("name"), row.at(1)},
                          {QStringLiteral("standard"), QString::fromLatin1(standard.source)}};
        const auto& p = standard.primaries;
        int index = 0;
        for (const Colour::Chromaticity& c : {p.red, p.green, p.blue, p.white}) {
            row << QStringLiteral("%1, %2").arg(c.x).arg(c.y);
            gamut.insert(pointNames().at(index++), QJsonArray{c.x, c.y});
        }
        rows.append(row << QString::fromLatin1(standard.source));
        gamuts.append(gamut);
    }
    return {textTable(rows), {{QStringLiteral("gamuts"), gamuts}}};
}

CommandResult showCoverage(const GamutPair& pair)
{
    const auto source = parseGamut(pair.source);
    const auto target = parseGamut(pair.target);
    const auto xy = Colour::coverage(primariesOf(source), primariesOf(target));
    const auto uv = Colour::coverage(uvPrime(primariesOf(source)), uvPrime(primariesOf(target)));
    CommandResult result;
    result.text = QStringLiteral("%1 against %2\n\n").arg(nameOf(source), nameOf(target)) +
                  textTable({{QStringLiteral("plane"), QStringLiteral("area ratio"), QStringLiteral("coverage")},
                             {QStringLiteral("CIE 1931 xy"), percent(xy.ratio), percent(xy.covered)},
                             {QStringLiteral("CIE 1976 u'v'"), percent(uv.ratio), percent(uv.covered)}});
    result.json = {{QStringLiteral("source"), nameOf(source)}, {QStringLiteral("target"), nameOf(target)},
                   {QStringLiteral("ratio_xy"), xy.ratio},     {QStringLiteral("coverage_xy"), xy.covered},
                   {QStringLiteral("ratio_uv"), uv.ratio},     {QStringLiteral("coverage_uv"), uv.covered}};
    return result;
}

GamutFigures figuresOf(const GamutPair& pair, const Output& output)
{
    const auto source = parseGamut(pair.source);
    const auto target = parseGamut(pair.target);
    HostLog::install(output.quiet);
    return computeFigures(source, target);
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

QString matrixLines(const Colour::Matrix3& matrix)
{
    QString text;
    for (const Colour::Vector3& row : matrix) {
        text += QLatin1String("   ");
        for (const double value : row)
            text += QStringLiteral("%1").arg(value, 13, 'f', 8);
        text += QLatin1Char('\n');
    }
    return text;
}

CommandResult showCoefficients(const GamutPair& pair, const Output& output)
{
    const GamutFigures figures = figuresOf(pair, output);
    CommandResult result;
    result.text =
        QStringLiteral("%1 corrected to %2, signed Q1.14 (1.0 is 16384), rows are LED channels\n\n%3\n"
                       "white kept   %4\ncover        %5\narea ratio   %6\n\n")
            .arg(nameOf(figures.source), nameOf(figures.target), coefficientLines(figures.coefficients),
                 percent(figures.reached.whiteKept), percent(figures.target.cover), percent(figures.target.orgCover)) +
        textTable(reachRows(figures));
    result.json = toJson(figures);
    return result;
}

/// One figure of the explanation: what it is, how it is computed, where the formula stands, and its value.
struct Explanation
{
    QString title;
    QString formula;
    QString source;
    QString value;
};

QList<Explanation> explanations(const GamutFigures& figures)
{
    const auto sourceMatrix = Colour::rgbToXyz(primariesOf(figures.source)).value_or(Colour::Matrix3{});
    const auto targetMatrix = Colour::rgbToXyz(primariesOf(figures.target)).value_or(Colour::Matrix3{});
    const auto correction =
        Colour::correctionMatrix(primariesOf(figures.source), primariesOf(figures.target)).value_or(Colour::Matrix3{});
    const double scale = Colour::whiteScale(correction, 0.0, 0.0, 0.0).value_or(0.0);
    const QString line = QStringLiteral("    %1\n");
    const QString rp177 = QStringLiteral("SMPTE RP 177");
    return {
        {QStringLiteral("RGB of the wall to XYZ"),
         QStringLiteral("columns: XYZ of red, green, blue; scaled so that N (1,1,1) is white with Y = 1"), rp177,
         matrixLines(sourceMatrix)},
        {QStringLiteral("RGB of the target to XYZ"), QStringLiteral("as above"), rp177, matrixLines(targetMatrix)},
        {QStringLiteral("Correction"), QStringLiteral("A = N_wall^-1 N_target, no chromatic adaptation"),
         QStringLiteral("linear algebra"), matrixLines(correction)},
        {QStringLiteral("Scale"), QStringLiteral("s = 1 / largest row sum of A: no channel of white above full scale"),
         QStringLiteral("docs/colour.md"), line.arg(scale, 0, 'f', 8)},
        {QStringLiteral("Coefficients"),
         QStringLiteral("round(16384 s A), each row's largest entry adjusted to the rounded row sum"),
         QStringLiteral("docs/colour.md"), coefficientLines(figures.coefficients)},
        {QStringLiteral("White kept"), QStringLiteral("Y of white from the integers over Y of the wall's white"),
         QStringLiteral("CIE 15"), line.arg(percent(figures.reached.whiteKept))},
        {QStringLiteral("Area ratio, xy"), QStringLiteral("area(wall) / area(target), shoelace formula"),
         QStringLiteral("CIE 1931 xy"), line.arg(percent(figures.coverageXy.ratio))},
        {QStringLiteral("Coverage, xy"), QStringLiteral("area(wall and target) / area(target), clipped polygon"),
         QStringLiteral("Sutherland and Hodgman 1974"), line.arg(percent(figures.coverageXy.covered))},
        {QStringLiteral("Area ratio, u'v'"), QStringLiteral("the same with u', v' = 4x, 9y over -2x + 12y + 3"),
         QStringLiteral("CIE 1976 UCS, CIE 15"), line.arg(percent(figures.coverageUv.ratio))},
        {QStringLiteral("Coverage, u'v'"), QStringLiteral("the same"), QStringLiteral("CIE 1976 UCS, CIE 15"),
         line.arg(percent(figures.coverageUv.covered))},
        {QStringLiteral("Reached against target"),
         QStringLiteral("CIEDE2000 of full red, green, blue, white; L*a*b* beside the target's white"),
         QStringLiteral("Sharma, Wu, Dalal 2005"), textTable(reachRows(figures))},
    };
}

CommandResult explain(const GamutPair& pair, const Output& output)
{
    const GamutFigures figures = figuresOf(pair, output);
    CommandResult result;
    result.json = toJson(figures);
    QJsonArray formulas;
    for (const Explanation& explanation : explanations(figures)) {
        result.text += QStringLiteral("%1\n    %2 [%3]\n%4\n")
                           .arg(explanation.title, explanation.formula, explanation.source, explanation.value);
        formulas.append(QJsonObject{{QStringLiteral("figure"), explanation.title},
                                    {QStringLiteral("formula"), explanation.formula},
                                    {QStringLiteral("source"), explanation.source}});
    }
    result.json.insert(QStringLiteral("formulas"), formulas);
    return result;
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
    const QString path = QString::fromStdString(arguments.out);
    requireChartSuffix(path);
    requireNewFile(path, arguments.force);
    const auto plane = arguments.plane == "xy" ? Charts::Plane::Xy : Charts::Plane::UvPrime;
    writeChart(correctionChart(figuresOf(arguments.pair, output), plane), path);
    return {QStringLiteral("%1\n").arg(path), {{QStringLiteral("file"), path}}};
}

void addPair(CLI::App& command, GamutPair& pair)
{
    command
        .add_option("source,--source", pair.source,
                    "The wall's gamut: a standard name, a JSON file, or rx,ry:gx,gy:bx,by:wx,wy[:cd_m2]")
        ->required();
    command.add_option("target,--target", pair.target, "The gamut that is wanted, given alike")->required();
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
    addPairCommand(*gamut, chosen, "coverage", "How much of a target gamut a wall's gamut covers",
                   [](const GamutPair& pair, const Output&) { return showCoverage(pair); });
    addPairCommand(*gamut, chosen, "coefficients", "The correction's coefficients, and what they reach",
                   showCoefficients);
    addPairCommand(*gamut, chosen, "explain", "Every figure of a correction with its formula and source", explain);

    CLI::App* chart = gamut->add_subcommand("chart", "Draw a wall's, a target's and the reached gamut");
    const auto arguments = std::make_shared<ChartArguments>();
    addPair(*chart, arguments->pair);
    chart->add_option("--plane", arguments->plane, "xy: CIE 1931; uv: CIE 1976 u'v'")
        ->check(CLI::IsMember({"xy", "uv"}))
        ->capture_default_str();
    chart->add_option("--out", arguments->out, "The chart's file, .svg or .png")->required();
    chart->add_flag("--force", arguments->force, "Replace a file that is there");
    chart->callback(
        [&chosen, arguments] { chosen = [arguments](const Output& output) { return drawChart(*arguments, output); }; });
}
