#include "chartfile.h"
#include "commands.h"
#include "hostlog.h"
#include "options.h"
#include "wallargument.h"
#include <reports/matchreport.h>

#include <CLI/CLI.hpp>

namespace {

struct MatchArguments
{
    std::vector<std::string> measured;
    std::string white = "measured";
    std::string target;
    std::string luminance = "common";
    WallArgument wall; ///< a file only; empty: cabinets are not looked at
    std::string chart; ///< empty: none
    std::string plane = "uv";
    bool force = false;
};

constexpr std::size_t mostForSeams = 500; ///< groups: all pairs of these take a second

Calibration::MatchNames namesOf(const MatchArguments& arguments)
{
    Calibration::MatchNames names;
    for (const std::string& measured : arguments.measured)
        names.measured << QString::fromStdString(measured);
    names.white = whiteSourceOf(arguments.white);
    names.target = QString::fromStdString(arguments.target);
    names.options.luminance =
        arguments.luminance == "own" ? Calibration::MatchLuminance::Own : Calibration::MatchLuminance::Common;
    names.force = arguments.force;
    return names;
}

CommandResult match(const MatchArguments& arguments, const Output& output)
{
    HostLog::install(output.quiet);
    const auto matching = take(Calibration::readMatching(namesOf(arguments)));
    if (!arguments.wall.file.empty()) {
        const OpenWall wall = openWall(arguments.wall);
        take(Calibration::assignCabinets(matching.groups, wall.targets, wall.targets));
    }
    std::optional<ChartFile> chart;
    if (!arguments.chart.empty())
        chart.emplace(arguments.chart, arguments.force);
    const auto seams = matching.groups.size() <= mostForSeams ? Calibration::seamsOf(matching.match)
                                                              : std::vector<Calibration::GroupSeam>();
    CommandResult result{Reports::toText(matching, seams), Reports::toJson(matching, seams)};
    if (chart) {
        const auto plane = arguments.plane == "xy" ? Charts::Plane::Xy : Charts::Plane::UvPrime;
        const CommandResult written = chart->write(Reports::matchChart(matching, plane));
        result.text += QStringLiteral("\nChart: %1").arg(written.text);
        result.json.insert(QStringLiteral("chart"), written.json.value(QStringLiteral("file")));
    }
    return result;
}

} // namespace

void addMatchCommand(CLI::App& app, Command& chosen)
{
    CLI::App* command = app.add_subcommand("match", "Compute one look for groups of cabinets whose LEDs differ");
    const auto arguments = std::make_shared<MatchArguments>();
    command
        ->add_option("--measured", arguments->measured,
                     "The LEDs' gamuts: CABINETS=GAMUT for each group (left=a.ti3, middle,right:1-4=b.csv), repeated; "
                     "or a file that says where its readings were made")
        ->required();
    addGamut(*command, arguments->target, "--target",
             "common (the largest triangle that all groups show, with a WHITE), native for the same, or", true);
    addWhite(*command, arguments->white);
    command
        ->add_option("--luminance", arguments->luminance,
                     "common: all as bright as the dimmest; own: each as bright as it can be")
        ->check(CLI::IsMember({"common", "own"}))
        ->capture_default_str();
    command->add_option("--wall", arguments->wall.file,
                        "Wall document: each of its cabinets must then be in exactly one group");
    command->add_option("--chart", arguments->chart, "A chart of the triangles, .svg or .png");
    addPlane(*command, arguments->plane);
    command->get_option("--plane")->needs("--chart");
    command->add_flag("--force", arguments->force, "Take primaries that look swapped; replace a chart that is there");
    command->callback(
        [&chosen, arguments] { chosen = [arguments](const Output& output) { return match(*arguments, output); }; });
}
