#include "colourgamuts.h"
#include <suite/colour/temperature.h>

#include <QTest>

#include <limits>

using namespace Colour;

namespace {

/// CIE 1960.
Chromaticity uv(const Chromaticity& xy)
{
    const double divisor = -2.0 * xy.x + 12.0 * xy.y + 3.0;
    return {4.0 * xy.x / divisor, 6.0 * xy.y / divisor};
}

Chromaticity fromUv(const Chromaticity& uv)
{
    const double divisor = 2.0 * uv.x - 8.0 * uv.y + 4.0;
    return {3.0 * uv.x / divisor, 2.0 * uv.y / divisor};
}

} // namespace

class TemperatureTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theLocusAgreesWithThePublishedTable()
    {
        // Mired, u, v of Robertson, "Computation of Correlated Color Temperature and Distribution Temperature", 1968.
        constexpr double table[][3] = {
            {10, .18066, .26589},  {20, .18133, .26846},  {30, .18208, .27119},  {40, .18293, .27407},
            {50, .18388, .27709},  {60, .18494, .28021},  {70, .18611, .28342},  {80, .18740, .28668},
            {90, .18880, .28997},  {100, .19032, .29326}, {125, .19462, .30141}, {150, .19962, .30921},
            {175, .20525, .31647}, {200, .21142, .32312}, {225, .21807, .32909}, {250, .22511, .33439},
            {275, .23247, .33904}, {300, .24010, .34308}, {325, .24792, .34655}, {350, .25591, .34951},
            {375, .26400, .35200}, {400, .27218, .35407}, {425, .28039, .35577}, {450, .28863, .35714},
            {475, .29685, .35823}, {500, .30505, .35907}, {525, .31320, .35968}, {550, .32129, .36011},
            {575, .32931, .36038}, {600, .33724, .36051},
        };
        for (const auto& [mired, u, v] : table) {
            const Chromaticity found = uv(*planckianWhite(1e6 / mired));
            QVERIFY(isNear(found.x, u, 6.5e-6)); // five digits
            QVERIFY(isNear(found.y, v, 6.5e-6));
        }
    }

    void illuminantsHaveTheirTemperatures_data()
    {
        QTest::addColumn<double>("x");
        QTest::addColumn<double>("y");
        QTest::addColumn<double>("kelvin"); // by thirty digits and a root search; published ones agree to the kelvin
        QTest::addColumn<double>("duv");
        QTest::newRow("A, 2856 K") << 0.44758 << 0.40745 << 2855.522214 << 0.000003288;
        QTest::newRow("B, 4874 K") << 0.34842 << 0.35161 << 4873.981850 << -0.001324262;
        QTest::newRow("C, 6774 K") << 0.31006 << 0.31616 << 6774.103866 << -0.002151283;
        QTest::newRow("E, 5455 K") << 1.0 / 3.0 << 1.0 / 3.0 << 5455.464932 << -0.004423217;
        QTest::newRow("D55, 5503 K") << 0.3324 << 0.3474 << 5503.624661 << 0.003248211;
        QTest::newRow("D65, 6504 K") << 0.3127 << 0.3290 << 6504.296349 << 0.003207406;
        QTest::newRow("20000 K") << 0.2565 << 0.2577 << 19952.609184 << 0.000006489;
    }

    void illuminantsHaveTheirTemperatures()
    {
        QFETCH(double, x);
        QFETCH(double, y);
        QFETCH(double, kelvin);
        QFETCH(double, duv);
        const auto found = correlatedTemperature({x, y});
        QVERIFY(found);
        QVERIFY(isNear(found->kelvin, kelvin, 1e-5));
        QVERIFY(isNear(found->duv, duv, 1e-9));
    }

    void aPointBesideTheLocusBelongsToItsFoot()
    {
        for (const double kelvin : {1100.0, 2000.0, 3000.0, 4500.0, 7000.0, 12000.0, 20000.0, 60000.0}) {
            const Chromaticity foot = uv(*planckianWhite(kelvin));
            const Chromaticity hotter = uv(*planckianWhite(1.0001 * kelvin));
            const Chromaticity cooler = uv(*planckianWhite(0.9999 * kelvin));
            const double du = cooler.x - hotter.x;
            const double dv = cooler.y - hotter.y;
            const double length = std::hypot(du, dv);
            for (const double duv : {-0.049, -0.02, 0.0, 0.001, 0.049}) {
                const Chromaticity point = fromUv({foot.x - duv * dv / length, foot.y + duv * du / length});
                const auto found = correlatedTemperature(point);
                QVERIFY(found);
                QVERIFY(isNear(found->kelvin, kelvin, 1e-6 * kelvin));
                QVERIFY(isNear(found->duv, duv, 1e-9));
            }
        }
    }

    void daylightIsThatOfTheIlluminants_data()
    {
        QTest::addColumn<double>("kelvin");
        QTest::addColumn<double>("x");
        QTest::addColumn<double>("y");
        QTest::newRow("D50") << 5003.0 << 0.3457 << 0.3585;
        QTest::newRow("D55") << 5503.0 << 0.3324 << 0.3474;
        QTest::newRow("D65") << 6504.0 << 0.3127 << 0.3290;
        QTest::newRow("D75") << 7504.0 << 0.2990 << 0.3149;
        QTest::newRow("least") << 4000.0 << 0.38234 << 0.38377;
        QTest::newRow("most") << 25000.0 << 0.24985 << 0.25480;
    }

    void daylightIsThatOfTheIlluminants()
    {
        QFETCH(double, kelvin);
        QFETCH(double, x);
        QFETCH(double, y);
        const auto found = daylightWhite(kelvin);
        QVERIFY(found);
        QVERIFY(isNear(found->x, x, 6e-5));
        QVERIFY(isNear(found->y, y, 1.5e-4));
    }

    void outOfRangeThereIsNothing()
    {
        const double nan = std::numeric_limits<double>::quiet_NaN();
        for (const double kelvin : {-6500.0, 0.0, 999.0, 100001.0, HUGE_VAL, nan})
            QVERIFY(!planckianWhite(kelvin));
        for (const double kelvin : {3999.0, 25001.0, nan})
            QVERIFY(!daylightWhite(kelvin));
        const Chromaticity none[] = {{0.17, 0.73}, {0.69, 0.30}, {0.13, 0.08}, {0.2394, 0.2330},
                                     {0.3, nan},   {nan, 0.3},   {0.3, 0.0},   {HUGE_VAL, 0.3}};
        for (const Chromaticity& xy : none) // LEDs, bluer than any black body, no numbers
            QVERIFY(!correlatedTemperature(xy));
    }
};

QTEST_APPLESS_MAIN(TemperatureTest)
#include "tst_temperature.moc"
