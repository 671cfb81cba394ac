#include "matchreport.h"

#include <calibration/gamut.h>
#include <reports/figuresreport.h>
#include <reports/measurementreport.h>
#include <reports/table.h>

#include <QLocale>

#include <algorithm>
#include <set>

namespace Reports {

namespace {

using Calibration::GroupSeam;
using Calibration::Match;
using Calibration::Matching;
using Calibration::MatchWithout;

constexpr double leastSaid = 0.0005; ///< what a gain of one decimal in percent shows
constexpr std::size_t seamsInText = 10;
constexpr std::size_t seamsInJson = 1000;

/// "2,412"
QString candelas(double luminance)
{
    return QLocale(QLocale::English).toString(luminance, 'f', 0);
}

/// "+15.7 %"
QString gainText(double gain)
{
    return QStringLiteral("%1%2 %").arg(gain < 0.0 ? QString() : QStringLiteral("+")).arg(100.0 * gain, 0, 'f', 1);
}

QString percentText(double fraction)
{
    return QStringLiteral("%1 %").arg(100.0 * fraction, 0, 'f', 1);
}

QString namesOf(const Match& match, const std::vector<std::size_t>& groups)
{
    QStringList names;
    for (const std::size_t group : groups)
        names << match.groups[group].name;
    return (names.size() == 1 ? QStringLiteral("group ") : QStringLiteral("groups ")) +
           names.join(QStringLiteral(" and "));
}

QString luminanceSentence(const Match& match)
{
    const MatchWithout& without = match.without[match.limiting];
    if (without.luminanceGain < leastSaid)
        return QStringLiteral("group %1 and others as dim hold the wall at %2 cd/m2")
            .arg(match.groups[match.limiting].name, candelas(match.reachable));
    return QStringLiteral("group %1 holds the wall at %2 cd/m2; without it %3 (%4)")
        .arg(match.groups[match.limiting].name, candelas(match.reachable), candelas(without.luminance),
             gainText(without.luminanceGain));
}

/// What the wall would be without a group that holds the triangle.
QString withoutSentence(const Match& match, std::size_t group)
{
    const MatchWithout& without = match.without[group];
    const QString sentence = QStringLiteral("without group %1 the common triangle has %2 of area in u'v' and covers %3 "
                                            "of Rec. 709 (now %4)")
                                 .arg(match.groups[group].name, gainText(without.areaGain),
                                      percentText(without.coverage), percentText(match.coverage));
    return without.triangle.showsWhite ? sentence : sentence + QStringLiteral(", without the white inside");
}

/// The groups that hold a corner or an edge.
std::set<std::size_t> holdersOf(const Match& match)
{
    std::set<std::size_t> holders;
    for (const auto* places : {&match.corners, &match.edges}) {
        for (const std::vector<std::size_t>& groups : *places)
            holders.insert(groups.begin(), groups.end());
    }
    return holders;
}

std::optional<double> known(double luminance)
{
    return luminance > 0.0 ? std::optional(luminance) : std::nullopt;
}

Cell pointCell(const Colour::Chromaticity& xy)
{
    return {QStringLiteral("%1, %2").arg(xy.x, 0, 'f', 4).arg(xy.y, 0, 'f', 4), QJsonArray{xy.x, xy.y}};
}

Table groupTable(const Match& match)
{
    Table table({{QStringLiteral("group"), QStringLiteral("group")},
                 {QStringLiteral("reachable"), QStringLiteral("reaches"), QStringLiteral("cd/m2")},
                 {QStringLiteral("luminance"), QStringLiteral("shows"), QStringLiteral("cd/m2")},
                 {QStringLiteral("white_xy"), QStringLiteral("white x, y")},
                 {QStringLiteral("light_kept"), QStringLiteral("light kept")},
                 {QStringLiteral("coefficients"), QStringLiteral("coefficients, Q1.14")}});
    for (const Calibration::MatchedGroup& group : match.groups)
        table.add({group.name, decimal(known(group.reachable), 1), decimal(known(group.white.luminance), 1),
                   pointCell(group.white.xy), percent(group.figures.corners.whiteKept),
                   Cell(integersText(group.figures.coefficients), toJson(group.figures.coefficients))});
    return table;
}

/// What each group's leaving would give; of groups that hold something only, or of all.
Table withoutTable(const Match& match, bool isWhole)
{
    Table table({{QStringLiteral("group"), QStringLiteral("without group")},
                 {QStringLiteral("luminance"), QStringLiteral("luminance"), QStringLiteral("cd/m2")},
                 {QStringLiteral("luminance_gain"), QStringLiteral("gain")},
                 {QStringLiteral("area_gain"), QStringLiteral("area in u'v'")},
                 {QStringLiteral("coverage"), QStringLiteral("covers")},
                 {QStringLiteral("shows_white"), QStringLiteral("white inside")}});
    for (std::size_t i = 0; i < match.without.size(); ++i) {
        const MatchWithout& without = match.without[i];
        if (isWhole || without.luminanceGain > 0.0 || without.areaGain > 0.0)
            table.add({match.groups[i].name, decimal(without.luminance, 1),
                       Cell(gainText(without.luminanceGain), without.luminanceGain),
                       Cell(gainText(without.areaGain), without.areaGain), percent(without.coverage),
                       flag(without.triangle.showsWhite, QStringLiteral("yes"), QStringLiteral("no"))});
    }
    return table;
}

std::vector<Cell> seamCells(const std::array<Calibration::SeamDifference, Colour::judgedContents.size()>& differences,
                            std::size_t worst)
{
    const auto& white = differences[Colour::judgedWhite];
    return {Calibration::judgedName(worst), decimal(differences[worst].ciede2000, 2), decimal(white.ciede2000, 2),
            decimal(white.duvPrime, 4)};
}

Table seamTable(const Match& match, const std::vector<GroupSeam>& seams, std::size_t most)
{
    std::vector<Column> columns{{QStringLiteral("between"), QStringLiteral("between")},
                                {QStringLiteral("and"), QStringLiteral("and")}};
    for (const QString& when : {QStringLiteral("before"), QStringLiteral("after")}) {
        columns.push_back({when + QStringLiteral("_worst"), when});
        columns.push_back({when + QStringLiteral("_ciede2000"), QStringLiteral("CIEDE2000")});
        columns.push_back({when + QStringLiteral("_white_ciede2000"), QStringLiteral("white")});
        columns.push_back({when + QStringLiteral("_white_duv_prime"), QStringLiteral("du'v'")});
    }
    Table table(columns);
    for (std::size_t i = 0; i < std::min(most, seams.size()); ++i) {
        const auto& [first, second, seam] = seams[i];
        std::vector<Cell> row{match.groups[first].name, match.groups[second].name};
        for (const auto& cells : {seamCells(seam.before, seam.worstBefore()), seamCells(seam.after, seam.worstAfter())})
            row.insert(row.end(), cells.begin(), cells.end());
        table.add(row);
    }
    return table;
}

QString headOf(const Matching& matching)
{
    const Match& match = matching.match;
    const bool isOwn = matching.options.luminance == Calibration::MatchLuminance::Own;
    QString head = QStringLiteral("%1 to %2")
                       .arg(match.groups.size() == 1 ? QStringLiteral("1 group")
                                                     : QStringLiteral("%1 groups").arg(match.groups.size()),
                            Calibration::nameOf(match.target));
    if (match.luminance > 0.0)
        head += isOwn ? QStringLiteral(", each at its own luminance")
                      : QStringLiteral(", white at %1 cd/m2").arg(match.luminance, 0, 'f', 1);
    return head;
}

} // namespace

QStringList limitsOf(const Match& match)
{
    if (match.without.empty())
        return {};
    QStringList sentences{luminanceSentence(match)};
    static constexpr std::array corners{"red", "green", "blue"};
    static constexpr std::array edges{"red to green", "green to blue", "blue to red"};
    for (std::size_t i = 0; i < corners.size(); ++i) {
        if (!match.corners[i].empty())
            sentences
                << QStringLiteral("%1 lies on %2").arg(QLatin1String(corners[i]), namesOf(match, match.corners[i]));
    }
    for (std::size_t i = 0; i < edges.size(); ++i) {
        if (!match.edges[i].empty())
            sentences << QStringLiteral("the edge %1 is that of %2")
                             .arg(QLatin1String(edges[i]), namesOf(match, match.edges[i]));
    }
    for (const std::size_t group : holdersOf(match)) {
        if (match.without[group].areaGain >= leastSaid)
            sentences << withoutSentence(match, group);
    }
    return sentences;
}

QString toText(const Matching& matching, const std::vector<GroupSeam>& seams)
{
    const Match& match = matching.match;
    QString text = warningLines(matching.warnings) + headOf(matching) + QStringLiteral("\n\n");
    for (const QString& sentence : limitsOf(match))
        text += sentence + QLatin1Char('\n');
    text += match.without.empty() ? QString() : QStringLiteral("\n");
    text += pointTable(match.target, QStringLiteral("computed")).toText() + QLatin1Char('\n');
    text += groupTable(match).toText();
    const Table without = withoutTable(match, false);
    if (!without.isEmpty())
        text += QLatin1Char('\n') + without.toText();
    if (!seams.empty())
        text += QStringLiteral("\nSeams, the worst content and white, computed from the integers:\n\n") +
                seamTable(match, seams, seamsInText).toText();
    if (seams.size() > seamsInText)
        text += QStringLiteral("and %1 seams that are not worse\n").arg(seams.size() - seamsInText);
    return text;
}

Charts::Chart matchChart(const Matching& matching, Charts::Plane plane)
{
    constexpr std::size_t fewGroups = 4; // beside the target, as many as a chart tells apart
    const Match& match = matching.match;
    const QString target = Calibration::nameOf(match.target);
    QList<Charts::ChartGamut> gamuts{{target, Calibration::primariesOf(match.target), {}}};
    Charts::ChartOutlines outlines{QStringLiteral("%1 groups").arg(match.groups.size()), {}};
    for (const Calibration::MatchedGroup& group : match.groups) {
        const Colour::Primaries primaries = Calibration::primariesOf(group.figures.measured);
        if (match.groups.size() <= fewGroups)
            gamuts.append({QStringLiteral("group %1").arg(group.name), primaries, {}});
        else
            outlines.triangles.append(primaries);
    }
    return Charts::chromaticityChart(QStringLiteral("Groups matched to %1").arg(target), plane, gamuts, outlines);
}

QJsonObject toJson(const Matching& matching, const std::vector<GroupSeam>& seams)
{
    const Match& match = matching.match;
    return {{QStringLiteral("target"),
             QJsonObject{{QStringLiteral("name"), Calibration::nameOf(match.target)},
                         {QStringLiteral("common"), match.isCommon},
                         {QStringLiteral("points"), pointTable(match.target, QStringLiteral("computed")).toJson()},
                         {QStringLiteral("area"), match.area},
                         {QStringLiteral("coverage"), match.coverage}}},
            {QStringLiteral("luminance"), match.luminance},
            {QStringLiteral("reachable"), match.reachable},
            {QStringLiteral("limits"), QJsonArray::fromStringList(limitsOf(match))},
            {QStringLiteral("groups"), groupTable(match).toJson()},
            {QStringLiteral("without"), withoutTable(match, true).toJson()},
            {QStringLiteral("seams"), seamTable(match, seams, seamsInJson).toJson()},
            {QStringLiteral("warnings"), QJsonArray::fromStringList(matching.warnings)}};
}

} // namespace Reports
