#include "support/calibrationsetup.h"
#include <calibration/match.h>
#include <calibration/seam.h>

#include <QLoggingCategory>
#include <QTest>

#include <random>

using namespace Calibration;

using Groups = std::vector<MatchGroup>;
using Indices = std::vector<std::size_t>;

Q_DECLARE_METATYPE(Groups)

namespace {

const Colour::Chromaticity s_d65{0.3127, 0.3290};
const Colour::Primaries s_wide{{0.70, 0.295}, {0.17, 0.74}, {0.13, 0.06}, {0.29, 0.30}};
const Colour::Primaries s_narrow{{0.66, 0.32}, {0.25, 0.66}, {0.15, 0.08}, {0.30, 0.32}};

MatchGroup group(const QString& name, const Colour::Primaries& primaries, double luminance)
{
    return {name, gamutOf(primaries, luminance)};
}

Target target(const QString& text)
{
    return good(readTarget(text, false));
}

Match matched(const Groups& groups, const QString& text = "native", const MatchOptions& options = {})
{
    return good(matchOf(groups, target(text), options));
}

Colour::Primaries swapped(const Colour::Primaries& primaries)
{
    return {primaries.green, primaries.red, primaries.blue, primaries.white};
}

bool isSame(const Colour::Primaries& a, const Colour::Primaries& b)
{
    const auto same = [](const Colour::Chromaticity& p, const Colour::Chromaticity& q) {
        return p.x == q.x && p.y == q.y;
    };
    return same(a.red, b.red) && same(a.green, b.green) && same(a.blue, b.blue) && same(a.white, b.white);
}

/// Batches of LEDs as they come.
class RandomGroups
{
public:
    Groups make(std::size_t count)
    {
        Groups groups;
        for (std::size_t i = 0; i < count; ++i)
            groups.push_back(group(QString("batch %1").arg(i),
                                   {near(0.68, 0.295), near(0.19, 0.71), near(0.14, 0.07), near(0.29, 0.31)},
                                   std::uniform_real_distribution<>(800.0, 5000.0)(m_random)));
        return groups;
    }

private:
    Colour::Chromaticity near(double x, double y)
    {
        std::uniform_real_distribution<> error(-0.01, 0.01);
        return {x + error(m_random), y + error(m_random)};
    }

    std::mt19937 m_random{11};
};

/// What a test compares of a match.
void requireNear(double actual, double expected, double tolerance)
{
    QVERIFY2(std::abs(actual - expected) <= tolerance,
             qPrintable(QString("%1, expected %2").arg(actual, 0, 'g', 12).arg(expected, 0, 'g', 12)));
}

} // namespace

class MatchTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { QLoggingCategory::setFilterRules("default.info=false"); } // inputs and outputs of each

    void oneGroupIsAsWithoutAMatch_data()
    {
        QTest::addColumn<bool>("isLuminanceGiven");
        for (const char* text : {"native", "native:D50", "rec709", "bt2020"})
            QTest::newRow(text) << false;
        for (const char* text : {"native:6500K:900", "rec709:1200"})
            QTest::newRow(text) << true;
    }

    void oneGroupIsAsWithoutAMatch()
    {
        const QString text = QTest::currentDataTag();
        const auto alone = group("all", s_wide, 3120.0);
        const auto single = good(computeFigures(alone.measured, good(onWall(target(text), alone.measured))));
        QFETCH(bool, isLuminanceGiven);
        for (const MatchLuminance luminance : {MatchLuminance::Common, MatchLuminance::Own}) {
            if (luminance == MatchLuminance::Own && isLuminanceGiven)
                continue;
            const Match match = matched({alone}, text, {luminance, Colour::standardGamuts[0].primaries});
            QCOMPARE(match.groups[0].figures.coefficients, single.coefficients);
            QCOMPARE(match.groups[0].figures.target, single.target);
            QVERIFY(isSame(primariesOf(match.target), primariesOf(single.target)));
            QVERIFY(match.without.empty());
        }
    }

    void allGroupsShowOneWhite_data()
    {
        QTest::addColumn<double>("luminance"); // asked for
        QTest::newRow("native") << 0.0;
        QTest::newRow("native:D50") << 0.0;
        QTest::newRow("rec709") << 0.0;
        QTest::newRow("p3-d65:500") << 500.0;
    }

    void allGroupsShowOneWhite()
    {
        QFETCH(double, luminance);
        RandomGroups random;
        for (std::size_t set = 0; set < 100; ++set) {
            const Match match = matched(random.make(2 + set % 4), QTest::currentDataTag());
            requireNear(match.luminance, luminance > 0.0 ? luminance : match.reachable, 0.0);
            for (const MatchedGroup& part : match.groups) {
                requireNear(part.white.xy.x, match.target.wLxy.x, 2e-4);
                requireNear(part.white.xy.y, match.target.wLxy.y, 2e-4);
                requireNear(part.white.luminance, match.luminance, 1e-3 * match.luminance);
                QVERIFY(part.reachable >= match.luminance);
            }
            QCOMPARE(match.groups[match.limiting].reachable, match.reachable);
            const Seam seam = seamOf(match, 0, match.groups.size() - 1);
            QVERIFY(seam.after[Colour::judgedWhite].ciede2000 < 0.2);
            if (match.isCommon) // nothing is out of anybody's reach
                QVERIFY(seam.after[seam.worstAfter()].ciede2000 < 0.5);
        }
    }

    void ownLuminancesAreTheGroupsBrightest()
    {
        const Match match = matched({group("a", s_wide, 3000.0), group("b", s_narrow, 2000.0)}, "native",
                                    {MatchLuminance::Own, Colour::standardGamuts[0].primaries});
        QVERIFY(match.groups[0].white.luminance > 1.2 * match.groups[1].white.luminance);
        for (const MatchedGroup& part : match.groups) {
            requireNear(part.white.luminance, part.reachable, 1e-3 * part.reachable);
            const auto& c = part.figures.coefficients;
            const auto sums = Colour::rowSums(c);
            QCOMPARE(*std::max_element(sums.begin(), sums.end()), Colour::fullScale); // one channel is at full
        }
    }

    /// The narrow group lies inside the wide one and is brighter: one holds the triangle, the other the luminance.
    void limitsAreNamedAndWeighed()
    {
        const Groups groups{group("wide", s_wide, 2000.0), group("narrow", s_narrow, 3000.0),
                            group("wider", Colour::standardGamuts[1].primaries, 2600.0)};
        const Match match = matched(groups);
        auto expected = s_narrow;
        expected.white = s_d65;
        QVERIFY(isSame(primariesOf(match.target), expected));
        for (std::size_t i = 0; i < 3; ++i) {
            QCOMPARE(match.corners[i], Indices{1});
            QCOMPARE(match.edges[i], Indices{1});
        }
        QCOMPARE(match.limiting, std::size_t{0});
        // By hand: each channel's drive is its share in the target's white over that in its own.
        const auto own = Colour::luminanceShares(s_wide);
        auto wall = s_wide;
        wall.white = s_d65;
        const auto wanted = Colour::luminanceShares(wall);
        const double drive = std::max({wanted[0] / own[0], wanted[1] / own[1], wanted[2] / own[2]});
        requireNear(match.reachable, 2000.0 / drive, 1e-9);
        const MatchWithout& wide = match.without[0];
        requireNear(wide.luminance, std::min(match.groups[1].reachable, match.groups[2].reachable), 0.0);
        requireNear(wide.luminanceGain, wide.luminance / match.reachable - 1.0, 1e-12);
        QVERIFY(wide.luminanceGain > 0.05 && wide.areaGain == 0.0 && wide.coverage == match.coverage);
        const MatchWithout& narrow = match.without[1];
        QVERIFY(narrow.areaGain > 0.1 && narrow.coverage > match.coverage && narrow.luminanceGain == 0.0);
    }

    void leavingOneOutIsTheMatchOfTheOthers()
    {
        RandomGroups random;
        for (std::size_t set = 0; set < 60; ++set) {
            const Groups groups = random.make(2 + set % 4);
            const Match match = matched(groups);
            for (std::size_t i = 0; i < groups.size(); ++i) {
                Groups others = groups;
                others.erase(others.begin() + static_cast<std::ptrdiff_t>(i));
                const Match rest = matched(others);
                const MatchWithout& without = match.without[i];
                requireNear(without.triangle.area, rest.area, 1e-12);
                requireNear(without.triangle.primaries.green.y, rest.target.gLxy.y, 1e-12);
                requireNear(without.luminance, rest.reachable, 1e-9);
                requireNear(without.coverage, rest.coverage, 1e-12);
                QVERIFY(without.areaGain >= 0.0 && without.luminanceGain >= 0.0 && without.triangle.showsWhite);
            }
        }
    }

    void anAskedTriangleStaysWithoutAGroup()
    {
        const Match match = matched({group("a", s_wide, 2000.0), group("b", s_narrow, 3000.0)}, "p3-d65");
        QVERIFY(!match.isCommon && match.corners[0].empty() && match.edges[0].empty());
        for (const MatchWithout& without : match.without)
            QVERIFY(isSame(without.triangle.primaries, primariesOf(match.target)) && without.areaGain == 0.0);
        QVERIFY(match.without[match.limiting].luminanceGain > 0.0);
    }

    void primariesKeepTheirNames()
    {
        const Groups groups{group("a", s_wide, 2000.0), group("b", s_narrow, 3000.0),
                            group("c", {{0.71, 0.28}, {0.21, 0.69}, {0.16, 0.05}, s_d65}, 3000.0)};
        Groups turned = groups;
        for (MatchGroup& part : turned)
            part.measured = gamutOf(swapped(primariesOf(part.measured)), part.measured.wLxy.lum);
        const Match match = matched(groups);
        QVERIFY(match.target.rLxy.x > 0.6 && match.target.gLxy.y > 0.6 && match.target.bLxy.y < 0.1);
        QVERIFY(isSame(primariesOf(matched(turned).target), swapped(primariesOf(match.target))));
    }

    void faults_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<Groups>("groups");
        QTest::addColumn<QString>("fault");
        const auto wide = group("wide", s_wide, 2000.0);
        const auto narrow = group("narrow", s_narrow, 3000.0);
        QTest::newRow("no group") << "native" << Groups{}
                                  << "BadData: match: expected a group of cabinets or more, found none";
        QTest::newRow("no gamut") << "native"
                                  << Groups{wide, group("b", {{0.3, 0.3}, {0.3, 0.6}, {0.3, 0.1}, s_d65}, 1)}
                                  << "BadData: group b: the primaries lie on one line";
        QTest::newRow("no luminance") << "native" << Groups{wide, group("b", s_narrow, 0.0)}
                                      << "BadData: group b: expected a luminance of white in cd/m2, found none";
        QTest::newRow("a white that one cannot show")
            << "native:0.2,0.7" << Groups{wide, narrow}
            << "BadData: group narrow: expected a triangle with the white of target native:0.2,0.7 inside, found white "
               "(0.2, 0.7) needs";
        QTest::newRow("nothing in common")
            << "native"
            << Groups{wide, group("low", {{0.6, 0.3}, {0.3, 0.31}, {0.2, 0.1}, {0.3, 0.25}}, 1), narrow,
                      group("high", {{0.6, 0.35}, {0.3, 0.6}, {0.2, 0.4}, {0.35, 0.45}}, 1)}
            << "BadData: groups low and high: expected triangles with room for a circle of 0.0001 in u'v' in common, "
               "found none";
        QTest::newRow("a white beside the largest triangle, in a fifth corner")
            << "native:0.298,0.6" << Groups{wide, group("b", {{0.62, 0.15}, {0.2, 0.78}, {0.01, 0.02}, {0.3, 0.3}}, 1)}
            << "BadData: target native:0.298,0.6: expected a white inside the largest triangle that all groups show, "
               "found white (0.298, 0.6) needs";
        QTest::newRow("swapped in one") << "native" << Groups{wide, group("b", swapped(s_narrow), 1000.0)}
                                        << "BadData: group b: expected red, green and blue that turn like those of "
                                           "group wide, found the other turn: are two primaries swapped?";
        QTest::newRow("too bright")
            << "rec709:2500" << Groups{narrow, wide}
            << QString("BadData: target rec709:2500: expected a white of at most %1 cd/m2, which group wide reaches, "
                       "found 2500 cd/m2")
                   .arg(matched({narrow, wide}, "rec709").reachable, 0, 'f', 1);
    }

    void faults()
    {
        QFETCH(QString, text);
        QFETCH(Groups, groups);
        QFETCH(QString, fault);
        const QString found = faultText(matchOf(groups, target(text), {}));
        QVERIFY2(!fault.isEmpty() && found.startsWith(fault), qPrintable(found));
    }

    void aLuminanceBesideOwnOnesIsRefused()
    {
        const auto match = matchOf({group("a", s_wide, 2000.0)}, target("native:D65:500"),
                                   {MatchLuminance::Own, Colour::standardGamuts[0].primaries});
        QCOMPARE(faultText(match),
                 "Usage: target native:D65:500: expected no luminance where each group keeps its own, "
                 "found 500 cd/m2");
    }

    void seams()
    {
        auto dim = s_wide;
        const Match match =
            matched({group("a", s_wide, 1000.0), group("b", dim, 800.0), group("c", s_narrow, 1500.0)}, "0.29,0.30");
        const Seam same = seamOf(match, 0, 0);
        QVERIFY(same.before[same.worstBefore()].ciede2000 == 0.0 && same.after[same.worstAfter()].duvPrime == 0.0);
        // Only luminance differs: L* 1000 / 800 beside 100 by the formula.
        const Seam brighter = seamOf(match, 0, 1);
        const double scale = match.luminance;
        const double first = 116.0 * std::cbrt(1000.0 / scale) - 16.0;
        const double second = 116.0 * std::cbrt(800.0 / scale) - 16.0;
        const double square = std::pow((first + second) / 2.0 - 50.0, 2);
        const double expected = (first - second) / (1.0 + 0.015 * square / std::sqrt(20.0 + square));
        requireNear(brighter.before[Colour::judgedWhite].ciede2000, expected, 1e-9);
        requireNear(brighter.before[Colour::judgedWhite].duvPrime, 0.0, 1e-12);
        QVERIFY(brighter.after[brighter.worstAfter()].ciede2000 < 0.1);
        const Seam other = seamOf(match, 1, 2);
        QVERIFY(other.before[other.worstBefore()].ciede2000 > 10.0 && other.before[1].duvPrime > 0.02);
        QVERIFY(other.after[other.worstAfter()].ciede2000 < 0.3 && other.after[1].duvPrime < 0.001);
    }
};

QTEST_GUILESS_MAIN(MatchTest)
#include "tst_match.moc"
