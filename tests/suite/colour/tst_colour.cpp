#include "colourgamuts.h"
#include <suite/colour/adapterquali.h>
#include <suite/colour/colourdifference.h>
#include <suite/colour/corners.h>
#include <suite/colour/coverage.h>

#include <QTest>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>

using namespace Colour;

namespace {

Primaries triangle(Chromaticity red, Chromaticity green, Chromaticity blue)
{
    return {red, green, blue, {}};
}

ColorGamutPARM parm(const Primaries& p)
{
    return {p.red.x, p.red.y, p.green.x, p.green.y, p.blue.x, p.blue.y};
}

struct Figures
{
    Coefficients coefficients{};
    double first = -1.0;
    double second = -1.0;
};

Figures adapted(const Primaries& source, const Primaries& target, double ratio = 0.0, double targetLuminance = 0.0,
                double sourceLuminance = 0.0)
{
    const AdapterQuali adapter;
    Figures figures;
    adapter.MICCMatrixCoef(figures.coefficients.data(), &ratio, parm(target), parm(source),
                           {targetLuminance, target.white.x, target.white.y},
                           {sourceLuminance, source.white.x, source.white.y});
    adapter.MICCGamutCoverge(&figures.first, &figures.second, parm(source), parm(target));
    return figures;
}

} // namespace

Q_DECLARE_METATYPE(Primaries)

class ColourTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void coverageAgreesWithExactFigures_data()
    {
        QTest::addColumn<QString>("subject");
        QTest::addColumn<QString>("against");
        QTest::addColumn<QList<double>>("percent"); // ratio and coverage in xy, then in u'v'
        const auto row = [](const char* subject, const char* against, const QList<double>& percent) {
            QTest::addRow("%s against %s", subject, against) << subject << against << percent;
        };
        row("rec709", "bt2020", {52.88707748, 52.88707748, 58.03102422, 58.03102422});
        row("p3-d65", "bt2020", {71.74329118, 71.72899709, 72.86559386, 72.84919140});
        row("rec709", "p3-d65", {73.71710526, 73.71710526, 79.64118748, 79.64118748});
        row("p3-d65", "rec709", {135.65372602, 100, 125.56317047, 100});
        row("led", "rec709", {158.50066934, 97.91856968, 134.01038176, 92.90170955});
    }

    void coverageAgreesWithExactFigures()
    {
        QFETCH(QString, subject);
        QFETCH(QString, against);
        QFETCH(QList<double>, percent);
        const Coverage xy = coverage(gamut(subject), gamut(against));
        const Coverage uv = coverage(uvPrime(gamut(subject)), uvPrime(gamut(against)));
        const double found[] = {xy.ratio, xy.covered, uv.ratio, uv.covered};
        for (int i = 0; i < 4; ++i)
            QVERIFY(
                isNear(100 * found[i], percent.at(i), 1e-9 * percent.at(i) + 5e-9)); // half a unit of the last digit
    }

    void coverageOfSimpleTriangles_data()
    {
        QTest::addColumn<Primaries>("subject");
        QTest::addColumn<Primaries>("against");
        QTest::addColumn<double>("ratio");
        QTest::addColumn<double>("covered");
        const Chromaticity o{0.1, 0.1};
        const Primaries unit = triangle(o, {0.5, 0.1}, {0.1, 0.5});
        const Primaries clockwise = triangle(o, {0.1, 0.5}, {0.5, 0.1});
        const Primaries half = triangle(o, {0.3, 0.1}, {0.1, 0.3});
        const double nan = std::numeric_limits<double>::quiet_NaN();
        QTest::newRow("the same") << unit << unit << 1.0 << 1.0;
        QTest::newRow("the same, turned round") << unit << clockwise << 1.0 << 1.0;
        QTest::newRow("inside") << half << unit << 0.25 << 0.25;
        QTest::newRow("inside, clockwise") << half << clockwise << 0.25 << 0.25;
        QTest::newRow("around") << unit << half << 4.0 << 1.0;
        QTest::newRow("disjoint") << triangle({0.6, 0.6}, {0.7, 0.6}, {0.6, 0.7}) << unit << 1.0 / 16.0 << 0.0;
        QTest::newRow("touching at a point") << triangle({0.5, 0.1}, {0.9, 0.1}, {0.5, 0.5}) << unit << 1.0 << 0.0;
        QTest::newRow("a star of six corners") << triangle({0.0, 0.1}, {0.6, 0.1}, {0.3, 0.7})
                                               << triangle({0.0, 0.5}, {0.3, -0.1}, {0.6, 0.5}) << 1.0 << 2.0 / 3.0;
        QTest::newRow("on one line") << triangle(o, {0.2, 0.2}, {0.3, 0.3}) << unit << 0.0 << 0.0;
        QTest::newRow("against a line") << unit << triangle(o, {0.2, 0.2}, {0.3, 0.3}) << 0.0 << 0.0;
        QTest::newRow("not a number") << triangle(o, {nan, 0.2}, {0.3, 0.1}) << unit << 0.0 << 0.0;
    }

    void coverageOfSimpleTriangles()
    {
        QFETCH(Primaries, subject);
        QFETCH(Primaries, against);
        QFETCH(double, ratio);
        QFETCH(double, covered);
        const Coverage found = coverage(subject, against);
        QVERIFY(isNear(found.ratio, ratio, 1e-12));
        QVERIFY(isNear(found.covered, covered, 1e-12));
        QVERIFY(found.covered >= 0.0 && found.covered <= 1.0);
    }

    void correctionAgreesWithReferenceMatrices_data()
    {
        QTest::addColumn<QString>("target");
        QTest::addColumn<QList<double>>("matrix");
        QTest::newRow("rec709") << "rec709"
                                << QList<double>{0.62646517,  0.32332303, 0.05021180, 0.05860744, 0.98975520,
                                                 -0.06141059, 0.00606645, 0.02225340, 0.68542715};
        QTest::newRow("bt2020") << "bt2020"
                                << QList<double>{0.99905836,  -0.00689433, 0.00783596,  -0.02484271, 1.09303003,
                                                 -0.08123527, -0.00513942, -0.04729352, 0.76617994};
    }

    void correctionAgreesWithReferenceMatrices()
    {
        QFETCH(QString, target);
        QFETCH(QList<double>, matrix);
        const auto correction = correctionMatrix(led, gamut(target));
        const double scale = *whiteScale(*correction, 0.0, 0.0, 0.0);
        QVERIFY(isNear(scale, 0.95365319, 1e-7));
        for (int i = 0; i < 9; ++i)
            QVERIFY(isNear(scale * (*correction)[std::size_t(i / 3)][std::size_t(i % 3)], matrix.at(i), 1e-7));
    }

    void theAdapterTakesTargetBeforeSourceAndSourceBeforeTarget()
    {
        const Figures figures = adapted(led, gamut("rec709"));
        QCOMPARE(figures.coefficients, (Coefficients{10264, 5297, 823, 960, 16216, -1006, 99, 365, 11230}));
        QVERIFY(isNear(figures.first, 1.5850066934, 1e-9));
        QVERIFY(isNear(figures.second, 0.9791856968, 1e-9));
        QCOMPARE(adapted(led, led).coefficients, (Coefficients{16384, 0, 0, 0, 16384, 0, 0, 0, 16384}));
    }

    void theRatioLeadsFromWhatFitsToTheTargetsLuminance_data()
    {
        QTest::addColumn<double>("ratio");
        QTest::addColumn<double>("targetLuminance");
        QTest::addColumn<double>("kept"); // luminance of white, of the source's
        QTest::newRow("fits") << 0.0 << 30.0 << 0.95365319;
        QTest::newRow("half way") << 0.5 << 60.0 << 0.5 * (0.95365319 + 0.6);
        QTest::newRow("the target's") << 1.0 << 60.0 << 0.6;
        QTest::newRow("no luminance known, what fits") << 1.0 << 0.0 << 0.95365319;
        QTest::newRow("brighter than fits") << 0.5 << 120.0 << 0.95365319;
        QTest::newRow("above one") << 7.0 << 60.0 << 0.6;
        QTest::newRow("not a number") << std::nan("") << 60.0 << 0.95365319;
    }

    void theRatioLeadsFromWhatFitsToTheTargetsLuminance()
    {
        QFETCH(double, ratio);
        QFETCH(double, targetLuminance);
        QFETCH(double, kept);
        const Coefficients q = adapted(led, gamut("rec709"), ratio, targetLuminance, 100.0).coefficients;
        const auto toXyz = *rgbToXyz(led);
        double luminance = 0.0;
        for (std::size_t i = 0; i < 3; ++i)
            luminance += toXyz[1][i] * (q[3 * i] + q[3 * i + 1] + q[3 * i + 2]) / fullScale;
        QVERIFY(isNear(luminance, kept, 5e-5));
    }

    void everyPairOfStandardGamutsKeepsWhite()
    {
        for (const StandardGamut& source : standardGamuts) {
            for (const StandardGamut& target : standardGamuts) {
                const Coefficients q = adapted(source.primaries, target.primaries).coefficients;
                const auto sums = rowSums(q);
                QCOMPARE(*std::max_element(sums.begin(), sums.end()), fullScale);
                const auto white = corners(source.primaries, target.primaries, q)->corners[judgedWhite];
                QVERIFY(white.outOfReach < 1e-9);
                QVERIFY(isNear(chromaticity(white.shown)->x, target.primaries.white.x, 2e-4));
                QVERIFY(isNear(chromaticity(white.shown)->y, target.primaries.white.y, 2e-4));
            }
        }
    }

    void aWallTooNarrowForTheTypeIsDimmedAndKeepsWhite()
    {
        const Primaries narrow{{0.40, 0.32}, {0.30, 0.42}, {0.24, 0.22}, {0.3127, 0.3290}};
        const Figures figures = adapted(narrow, gamut("bt2020"));
        // Exact fractions, the largest entry (3.303) brought to a unit below the type's limit; all rows sum to 9919.
        QCOMPARE(figures.coefficients,
                 (Coefficients{32765, -16872, -5974, -10185, 27112, -7008, -10499, -8758, 29176}));
        QCOMPARE(adapted(narrow, gamut("bt2020"), 1.0, 100.0, 50.0).coefficients, figures.coefficients);
        QVERIFY(corners(narrow, gamut("bt2020"), figures.coefficients)->corners[judgedWhite].difference < 0.01);
        std::mt19937 random(20261121); // NOLINT: the same cases in every run
        std::uniform_real_distribution<double> shift(-0.01, 0.01);
        for (int i = 0; i < 2000; ++i) {
            Primaries wall = narrow;
            for (double* value : {&wall.red.x, &wall.green.y, &wall.blue.x, &wall.white.x, &wall.white.y})
                *value += shift(random);
            const auto exact = *correctionMatrix(wall, gamut("bt2020"));
            const double scale = *whiteScale(exact, 0.0, 0.0, 0.0);
            const auto sums = rowSums(adapted(wall, gamut("bt2020")).coefficients);
            for (std::size_t row = 0; row < 3; ++row)
                QCOMPARE(sums[row], int(std::lround(rowSum(scaled(exact, scale)[row]) * fullScale)));
        }
    }

    void aWhiteBesideTheEdgeIsShownFromAMillionthOn_data()
    {
        QTest::addColumn<int>("missing"); // the primary whose share is small
        QTest::newRow("red") << 0;
        QTest::newRow("green") << 1;
        QTest::newRow("blue") << 2;
    }

    void aWhiteBesideTheEdgeIsShownFromAMillionthOn()
    {
        QFETCH(int, missing);
        for (const double share : {-0.1, -1e-9, 0.0, 1e-9, 0.99e-6, 1.01e-6}) {
            double luminance[] = {0.5 - 0.5 * share, 0.5 - 0.5 * share, 0.5 - 0.5 * share};
            luminance[missing] = share;
            Primaries edge = led;
            double weights[] = {luminance[0] / led.red.y, luminance[1] / led.green.y, luminance[2] / led.blue.y};
            const double sum = weights[0] + weights[1] + weights[2];
            edge.white.x = (weights[0] * led.red.x + weights[1] * led.green.x + weights[2] * led.blue.x) / sum;
            edge.white.y = 1.0 / sum;
            const bool isShown = share > 1e-6;
            QCOMPARE(showsWhite(edge), isShown);
            QCOMPARE(bool(correctionMatrix(edge, led)), isShown); // the source's
            QCOMPARE(bool(correctionMatrix(led, edge)), isShown); // the target's, and the target's on the source
            const Primaries around{{0.72, 0.28}, {0.10, 0.85}, {0.12, 0.03}, {0.3127, 0.3290}};
            Primaries wide = around;
            wide.white = edge.white;
            QCOMPARE(bool(correctionMatrix(led, wide)), isShown);    // inside of its own triangle, not of the wall's
            QCOMPARE(bool(correctionMatrix(around, edge)), isShown); // inside of the wall's, not of its own
            // A share that rounds to no drive at all is as dark as none.
            QCOMPARE(adapted(edge, led).coefficients, Coefficients{});
            QCOMPARE(adapted(led, edge).coefficients, Coefficients{});
        }
    }

    void whatMakesNoRgbSystemGivesZeros_data()
    {
        QTest::addColumn<Primaries>("broken");
        QTest::addColumn<bool>("isCovered"); // white plays no part in coverage
        const auto changed = [](void (*change)(Primaries&)) {
            Primaries p = led;
            change(p);
            return p;
        };
        QTest::newRow("y of zero") << changed([](Primaries& p) { p.green.y = 0.0; }) << false;
        QTest::newRow("y not a number") << changed([](Primaries& p) { p.red.y = std::nan(""); }) << false;
        QTest::newRow("on one line") << changed([](Primaries& p) { p.blue = {0.43, 0.515}; }) << false;
        QTest::newRow("infinite") << changed([](Primaries& p) { p.blue.x = HUGE_VAL; }) << false;
        QTest::newRow("y of white zero") << changed([](Primaries& p) { p.white.y = 0.0; }) << true;
    }

    void whatMakesNoRgbSystemGivesZeros()
    {
        QFETCH(Primaries, broken);
        QFETCH(bool, isCovered);
        for (const bool isSource : {true, false}) {
            const Figures figures = isSource ? adapted(broken, led) : adapted(led, broken);
            QCOMPARE(figures.coefficients, Coefficients{});
            QCOMPARE(figures.first > 0.0, isCovered);
            QCOMPARE(figures.second > 0.0 && figures.second <= 1.0, isCovered);
        }
        QVERIFY(!corners(broken, led, adapted(led, led).coefficients));
    }

    void randomPairsStayWithinRange()
    {
        std::mt19937 random(20261121); // NOLINT: the same cases in every run
        std::uniform_real_distribution<double> coordinate(-0.2, 1.2);
        const double odd[] = {0.0, 1.0, -1.0, 1e-300, 1e300, 1.0 / 3.0, HUGE_VAL, std::nan("")};
        const auto draw = [&] { return random() % 20 == 0 ? odd[random() % 8] : coordinate(random); };
        const auto point = [&] {
            Chromaticity c{draw(), draw()};
            return c;
        };
        for (int i = 0; i < 10'000; ++i) {
            Primaries source{point(), point(), point(), point()};
            const Primaries target{point(), point(), point(), point()};
            if (i % 10 == 0)
                source.blue = source.red;
            if (i % 10 == 1)
                source.white = source.red;
            const Figures figures = adapted(source, target, draw(), draw(), draw());
            QVERIFY(std::isfinite(figures.first) && figures.first >= 0.0);
            QVERIFY(figures.second >= 0.0 && figures.second <= 1.0);
            for (const int sum : rowSums(figures.coefficients))
                QVERIFY(figures.coefficients == Coefficients{} || (sum > 0 && sum <= fullScale));
            if (const auto judged = corners(source, target, figures.coefficients)) {
                QVERIFY(std::isfinite(judged->corners[judgedWhite].difference) && std::isfinite(judged->whiteKept));
            }
        }
    }

    void colourDifferencesAgreeWithPublishedPairs_data()
    {
        QTest::addColumn<QList<double>>("lab"); // L*, a*, b* of both
        QTest::addColumn<double>("expected");
        const auto row = [](const char* name, const QList<double>& lab, double expected) {
            QTest::newRow(name) << lab << expected;
        };
        // Pairs of Sharma, Wu and Dalal's table, chosen for the branches they take.
        row("blue, rotation", {50, 2.6772, -79.7751, 50, 0, -82.7485}, 2.0425);
        row("blue, other side", {50, -1.3802, -84.2814, 50, 0, -82.7485}, 1.0);
        row("a gray", {50, 0, 0, 50, -1, 2}, 2.3669);
        row("opposite hues", {50, 2.49, -0.001, 50, -2.49, 0.0009}, 7.1792);
        row("opposite hues, past 180 degrees", {50, 2.49, -0.001, 50, -2.49, 0.0011}, 7.2195);
        row("mean hue wraps", {50, -0.001, 2.49, 50, 0.0011, -2.49}, 4.7461);
        row("large lightness", {50, 2.5, 0, 73, 25, -18}, 27.1492);
        row("large", {50, 2.5, 0, 56, -27, -3}, 31.9030);
        row("green", {60.2574, -34.0099, 36.2677, 60.4626, -34.1751, 39.4387}, 1.2644);
        row("violet", {22.7233, 20.0904, -46.6940, 23.0331, 14.9730, -42.5619}, 2.0373);
        row("light", {90.8027, -2.0831, 1.4410, 91.1528, -1.6435, 0.0447}, 1.4441);
        row("dark", {2.0776, 0.0795, -1.1350, 0.9033, -0.0636, -0.5514}, 0.9082);
    }

    void colourDifferencesAgreeWithPublishedPairs()
    {
        QFETCH(QList<double>, lab);
        QFETCH(double, expected);
        const Lab first{lab.at(0), lab.at(1), lab.at(2)};
        const Lab second{lab.at(3), lab.at(4), lab.at(5)};
        QVERIFY(isNear(ciede2000(first, second), expected, 5e-5));
        QVERIFY(isNear(ciede2000(second, first), expected, 5e-5));
    }

    void theOlderDifferenceIsTheDistanceInLab()
    {
        const AdapterQuali adapter;
        const OnePointLxy white{100, 0.3127, 0.3290};
        // L* of a fifth of white is 51.8372 (116 cbrt(0.2) - 16), white's is 100.
        QVERIFY(isNear(adapter.MDeltaE76Lxy({20, 0.3127, 0.3290}, white, white), 100.0 - 51.8372115, 1e-6));
        QVERIFY(isNear(deltaE76({50, 3, 4}, {50, 0, 0}), 5.0, 1e-12));
        QVERIFY(isNear(toLab({0.5, 0.008, 0.5}, {1, 1, 1}).lightness, 7.226370, 1e-6)); // the straight part
    }

    void primariesAddUpToWhite()
    {
        const auto white = *sumOfPrimaries({{0.69, 0.30}, 809.05}, {{0.17, 0.73}, 1796.57}, {{0.13, 0.08}, 291.38});
        QVERIFY(isNear(white.xy.x, 0.312800410, 1e-9)); // exact fractions
        QVERIFY(isNear(white.xy.y, 0.329199378, 1e-9));
        QVERIFY(isNear(white.luminance, 2897.0, 1e-9));
        QVERIFY(!sumOfPrimaries({{0.69, 0.30}, 0.0}, {{0.17, 0.73}, 0.0}, {{0.13, 0.08}, 0.0})); // no light
        QVERIFY(!sumOfPrimaries({{0.69, 0.30}, -1.0}, {{0.17, 0.73}, 9.0}, {{0.13, 0.08}, 1.0}));
        QVERIFY(!sumOfPrimaries({{0.69, 0.0}, 1.0}, {{0.17, 0.73}, 9.0}, {{0.13, 0.08}, 1.0}));
        QVERIFY(!sumOfPrimaries({{std::nan(""), 0.3}, 1.0}, {{0.17, 0.73}, 9.0}, {{0.13, 0.08}, 1.0}));
    }

    void theSharesOfLuminanceAreThoseOfTheStandard()
    {
        const AdapterQuali adapter;
        const Primaries rec709 = gamut("rec709");
        double red = 0.0;
        double green = 0.0;
        double blue = 0.0;
        adapter.MWRGBxy2RGBLratio(parm(rec709), {5, rec709.white.x, rec709.white.y}, &red, &green, &blue);
        QVERIFY(isNear(red, 0.2126, 5e-5) && isNear(green, 0.7152, 5e-5) && isNear(blue, 0.0722, 5e-5)); // BT.709-6
        adapter.MWRGBxy2RGBLratio(parm(rec709), {5, 0.3, 0.0}, &red, &green, &blue);
        QVERIFY(red == 0.0 && green == 0.0 && blue == 0.0);
    }
};

QTEST_APPLESS_MAIN(ColourTest)
#include "tst_colour.moc"
