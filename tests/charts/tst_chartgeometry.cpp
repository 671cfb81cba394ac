#include <charts/graychart.h>
#include <charts/labelplacement.h>
#include <charts/naturalspline.h>
#include <charts/planckianlocus.h>
#include <charts/plane.h>
#include <charts/spectrallocus.h>

#include <QTest>

#include <cmath>

using Charts::LabelRequest;
using Charts::Plane;
using Colour::Chromaticity;

namespace {

double distance(const Chromaticity& a, const Chromaticity& b)
{
    return std::hypot(a.x - b.x, a.y - b.y);
}

constexpr QRectF canvas(0.0, 0.0, 400.0, 300.0);
constexpr QSizeF size(100.0, 20.0);
constexpr QPointF centre(200.0, 150.0);

} // namespace

Q_DECLARE_METATYPE(LabelRequest)

class TestChartGeometry : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void splineIsSmoothBetweenItsValues()
    {
        constexpr int steps = 5;
        std::vector<double> values;
        for (int i = 0; i <= 20; ++i)
            values.push_back(std::sin(i * 0.3141592653589793)); // no curvature at either end, like the spline
        const std::vector<double> fine = Charts::splineThrough(values, steps);
        QCOMPARE(fine.size(), std::size_t{101});
        for (std::size_t i = 0; i < fine.size(); ++i)
            QVERIFY2(std::abs(fine[i] - std::sin(static_cast<double>(i) * 0.06283185307179587)) < 1e-4,
                     qPrintable(QString::number(i)));
    }

    void splineOfFewValues()
    {
        using Values = std::vector<double>;
        QCOMPARE(Charts::splineThrough({}, 5), Values());
        QCOMPARE(Charts::splineThrough({3.0}, 5), Values{3.0});
        QCOMPARE(Charts::splineThrough({3.0, 5.0}, 4), (Values{3.0, 3.5, 4.0, 4.5, 5.0}));
        QCOMPARE(Charts::splineThrough({3.0, 5.0}, 1), (Values{3.0, 5.0}));
    }

    void locusMeetsTheTable()
    {
        const auto locus = Charts::smoothLocus();
        QCOMPARE(locus.size(), std::size_t{291});
        for (std::size_t i = 0; i < locus.size(); ++i)
            QCOMPARE(locus[i].nanometres, 380 + static_cast<int>(i));
        for (const auto& point : Charts::spectralLocus)
            QVERIFY(distance(locus[static_cast<std::size_t>(point.nanometres - 380)].chromaticity, point.chromaticity) <
                    1e-12);
    }

    /// Every other point of the table is left out and met all the same; half the spacing has a sixteenth of the error.
    void locusIsInterpolatedWell()
    {
        std::vector<double> x;
        std::vector<double> y;
        for (std::size_t i = 0; i < Charts::spectralPointCount; i += 2) {
            x.push_back(Charts::spectralLocus[i].chromaticity.x);
            y.push_back(Charts::spectralLocus[i].chromaticity.y);
        }
        x = Charts::splineThrough(x, 2);
        y = Charts::splineThrough(y, 2);
        double worst = 0.0;
        for (std::size_t i = 0; i < x.size(); ++i)
            worst = std::max(worst, distance({x[i], y[i]}, Charts::spectralLocus[i].chromaticity));
        QVERIFY2(worst < 0.003, qPrintable(QString::number(worst)));
    }

    void blackBodies_data()
    {
        QTest::addColumn<double>("kelvin");
        QTest::addColumn<QPointF>("expected");
        QTest::newRow("candle light") << 2000.0 << QPointF(0.5267, 0.4133);
        QTest::newRow("illuminant A") << 2856.0 << QPointF(0.4476, 0.4074);
        QTest::newRow("neutral") << 5000.0 << QPointF(0.3451, 0.3516);
        QTest::newRow("daylight") << 6500.0 << QPointF(0.3135, 0.3237);
        QTest::newRow("blue sky") << 10000.0 << QPointF(0.2807, 0.2884);
        QTest::newRow("hotter than the range") << 1e6 << QPointF(0.2525, 0.2523);
    }

    void blackBodies()
    {
        QFETCH(double, kelvin);
        QFETCH(QPointF, expected);
        const Chromaticity found = Charts::planckian(kelvin);
        QVERIFY2(distance(found, {expected.x(), expected.y()}) < 0.001,
                 qPrintable(QStringLiteral("%1, %2").arg(found.x).arg(found.y)));
    }

    void planckianLocusHasNoSteps()
    {
        for (const double joint : {2222.0, 4000.0})
            QVERIFY(distance(Charts::planckian(joint), Charts::planckian(joint + 0.01)) < 0.0005);
    }

    void planesAreInverse()
    {
        const Chromaticity colour{0.3127, 0.3290};
        const QPointF uv = Charts::toPlane(colour, Plane::UvPrime);
        QVERIFY(distance({uv.x(), uv.y()}, {0.1978, 0.4683}) < 0.0001);
        QVERIFY(distance(Charts::toXy(uv, Plane::UvPrime), colour) < 1e-12);
    }

    void deviations_data()
    {
        QTest::addColumn<QList<QPointF>>("curve");
        QTest::addColumn<QList<QPointF>>("expected");
        using Points = QList<QPointF>;
        QTest::newRow("nothing") << Points() << Points();
        QTest::newRow("one point") << Points{{3, 7}} << Points{{3, 0}};
        QTest::newRow("a straight line, not through zero")
            << Points{{0, 5}, {1, 7}, {2, 9}} << Points{{0, 0}, {1, 0}, {2, 0}};
        QTest::newRow("above and below") << Points{{0, 10}, {1, 30}, {2, 20}, {4, 30}}
                                         << Points{{0, 0}, {1, 15}, {2, 0}, {4, 0}};
        QTest::newRow("unequal steps") << Points{{0, 0}, {3, 1}, {4, 8}} << Points{{0, 0}, {3, -5}, {4, 0}};
        QTest::newRow("upright") << Points{{1, 2}, {1, 6}} << Points{{1, 0}, {1, 4}};
    }

    void deviations()
    {
        QFETCH(QList<QPointF>, curve);
        QTEST(Charts::deviationFromLine(curve), "expected");
    }

    void labelsFindRoom_data()
    {
        QTest::addColumn<QPointF>("anchor");
        QTest::addColumn<QPointF>("towards");
        QTest::addColumn<QRectF>("taken"); // by a label before
        QTest::addColumn<bool>("wantedSide");
        QTest::newRow("free") << centre << QPointF(1, 0) << QRectF() << true;
        QTest::newRow("another label there") << centre << QPointF(1, 0) << QRectF(205, 110, 190, 80) << false;
        QTest::newRow("at the right edge") << QPointF(390, 150) << QPointF(1, 0) << QRectF() << false;
        QTest::newRow("in a corner") << QPointF(5, 295) << QPointF(-1, 1) << QRectF() << false;
    }

    void labelsFindRoom()
    {
        QFETCH(QPointF, anchor);
        QFETCH(QPointF, towards);
        QFETCH(QRectF, taken);
        QVector<LabelRequest> requests;
        if (!taken.isEmpty()) // stands above its anchor, which is so far below
            requests << LabelRequest{{taken.center().x(), taken.bottom() + 14.0}, taken.size(), {0, -1}, false};
        requests << LabelRequest{anchor, size, towards};
        const QVector<QRectF> places = Charts::placeLabels(requests, {canvas, {}, {}});
        const QRectF place = places.last();
        QCOMPARE(place.size(), size);
        QVERIFY(canvas.contains(place));
        QVERIFY(!place.contains(anchor));
        QVERIFY(taken.isEmpty() || (places.first() == taken && !place.intersects(taken)));
        QTEST(QPointF::dotProduct(place.center() - anchor, towards) > 0.0, "wantedSide");
    }

    void labelsKeepOffMarksAndLines()
    {
        const QPointF mark(260.0, 150.0);
        const QLineF line(150.0, 120.0, 250.0, 120.0);
        const auto place = [&](const QPointF& towards, bool mayMove) {
            return Charts::placeLabels({{centre, size, towards, mayMove}}, {canvas, {centre, mark}, {line}}).first();
        };
        QVERIFY(!place({1, 0}, true).contains(mark));
        QVERIFY(place({1, 0}, false).contains(mark)); // it has no choice
        const QRectF above = place({0, -1}, true);
        QVERIFY(above.bottom() < line.y1() || above.top() > line.y1());
        QCOMPARE(Charts::leader(centre, QRectF(QPointF(240, 170), size)), QLineF(centre, QPointF(240, 170)));
    }
};

QTEST_GUILESS_MAIN(TestChartGeometry)
#include "tst_chartgeometry.moc"
