#include "colourgamuts.h"
#include <suite/colour/corners.h>

#include <QTest>

#include <array>

using namespace Colour;

using SevenFigures = std::array<double, 7>;

Q_DECLARE_METATYPE(Colour::Coefficients)
Q_DECLARE_METATYPE(SevenFigures)

class CornersTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cornersAgreeWithExactFigures_data()
    {
        QTest::addColumn<QString>("target");
        QTest::addColumn<Coefficients>("coefficients");
        QTest::addColumn<SevenFigures>("outOfReach");
        QTest::addColumn<SevenFigures>("notHeld");
        QTest::addColumn<SevenFigures>("difference");
        // By fractions up to XYZ and thirty digits from there; red, green, blue, yellow, cyan, magenta, white.
        QTest::newRow("within the type, blue out of reach")
            << "rec709" << Coefficients{10264, 5297, 823, 960, 16216, -1006, 99, 365, 11230}
            << SevenFigures{0, 0, 10.25582832, 1.93537901, 0, 0.17263380, 0}
            << SevenFigures{0.01023236, 0.00239898, 0.00202469, 0.00049859, 0.00106556, 0.00095194, 0.00160149}
            << SevenFigures{0.01023236, 0.00239898, 10.25508457, 1.93497155, 0.00106556, 0.17279434, 0.00160149};
        QTest::newRow("all primaries out of reach")
            << "bt2020" << Coefficients{16369, -113, 128, -407, 17908, -1331, -84, -775, 12553}
            << SevenFigures{2.69205371, 5.16566551, 14.56607831, 5.18397664, 0.37864869, 5.05419119, 0}
            << SevenFigures{0.00081018, 0, 0.00247523, 0.00124446, 0.00097883, 0.00027022, 0.00160149}
            << SevenFigures{2.69232412, 5.16566551, 14.56726154, 5.18410588, 0.37822425, 5.05425555, 0.00160149};
        QTest::newRow("a cabinet without a correction")
            << "rec709" << Coefficients{16384, 0, 0, 0, 16384, 0, 0, 0, 16384}
            << SevenFigures{0, 0, 10.25582832, 1.93574337, 0, 0.17263380, 0}
            << SevenFigures{7.63887130, 13.08079724, 7.24970459, 3.10049320, 11.63927435, 7.73286908, 13.42598630}
            << SevenFigures{7.63887130, 13.08079724, 16.68075703, 4.74399199, 11.63927435, 7.83803608, 13.42598630};
    }

    void cornersAgreeWithExactFigures()
    {
        QFETCH(QString, target);
        QFETCH(Coefficients, coefficients);
        QFETCH(SevenFigures, outOfReach);
        QFETCH(SevenFigures, notHeld);
        QFETCH(SevenFigures, difference);
        const auto found = corners(led, gamut(target), coefficients);
        QVERIFY(found);
        for (std::size_t i = 0; i < outOfReach.size(); ++i) {
            QVERIFY(isNear(found->corners[i].outOfReach, outOfReach[i], 1e-7));
            QVERIFY(isNear(found->corners[i].notHeld, notHeld[i], 1e-7));
            QVERIFY(isNear(found->corners[i].difference, difference[i], 1e-7));
        }
        for (std::size_t gray = judgedWhite + 1; gray < judgedContents.size(); ++gray) { // white's colour, but darker
            QVERIFY(isNear(found->corners[gray].target[1], judgedContents[gray][0], 1e-12));
            QVERIFY(isNear(found->corners[gray].shown[1], judgedContents[gray][0], 1e-12));
            QVERIFY(found->corners[gray].difference <= found->corners[judgedWhite].difference);
        }
    }

    void aGrayThatIsAsBrightAsWhiteIsNotHeld()
    {
        const auto steep = *corners(led, led, {32767, 0, 0, 0, 32767, 0, 0, 0, 32767});
        QVERIFY(isNear(steep.corners[judgedWhite].difference, 0.0, 1e-9));
        QVERIFY(isNear(steep.corners[judgedWhite + 1].shown[1], 1.0, 1e-9)); // 0.75, driven to 1.5
        QVERIFY(steep.corners[judgedWhite + 1].notHeld > 5.0);
    }

    void aWideWallReachesEverythingAndANarrowOneItsOwn()
    {
        const auto within =
            *corners(gamut("bt2020"), gamut("rec709"), quantised(*correctionMatrix(gamut("bt2020"), gamut("rec709"))));
        for (const Corner& corner : within.corners)
            QVERIFY(corner.outOfReach < 1e-9 && corner.difference < 0.05);
        const auto wide = *corners(led, gamut("bt2020"), {16369, -113, 128, -407, 17908, -1331, -84, -775, 12553});
        QVERIFY(isNear(shownPrimaries(wide)->red.x, led.red.x, 0.01));
        QVERIFY(isNear(shownPrimaries(wide)->white.y, 0.3290, 2e-4));
        QVERIFY(!shownPrimaries(*corners(led, led, {0, 0, 0, 0, 16384, 0, 0, 0, 0}))); // red gives no light
    }

    void aDimmerCorrectionReachesMore()
    {
        const Coefficients bright{10264, 5297, 823, 960, 16216, -1006, 99, 365, 11230};
        Coefficients dim = bright;
        for (std::int16_t& value : dim)
            value = static_cast<std::int16_t>(value / 2);
        constexpr std::size_t yellow = 3;
        const Corners full = *corners(led, gamut("rec709"), bright);
        const Corners half = *corners(led, gamut("rec709"), dim);
        QVERIFY(isNear(full.corners[yellow].exactDrive[1], 1.04835342, 1e-8)); // green has no more than 1
        QVERIFY(isNear(half.whiteKept, 0.5 * full.whiteKept, 1e-4));
        QVERIFY(isNear(half.corners[yellow].outOfReach, 0.0, 1e-9));
        QVERIFY(half.corners[yellow].difference < 0.02);
        for (const Vector3& white : {full.corners[6].target, full.corners[6].reachable, half.corners[6].shown})
            QVERIFY(isNear(white[1], 1.0, 1e-12));
    }

    void whereThereIsNoWhiteThereAreNoCorners()
    {
        const Coefficients unity{16384, 0, 0, 0, 16384, 0, 0, 0, 16384};
        Primaries outside = led;
        outside.white = {0.7, 0.2};
        QVERIFY(!corners(led, gamut("rec709"), {}));
        QVERIFY(!corners(outside, gamut("rec709"), unity));
        QVERIFY(!corners(led, outside, unity));
        QVERIFY(corners(led, led, {0, 0, 0, 0, 16384, 0, 0, 0, 0})); // red and blue dark: bad, but light
    }
};

QTEST_APPLESS_MAIN(CornersTest)
#include "tst_corners.moc"
