#include "svgdrawing.h"
#include <charts/chromaticitychart.h>
#include <charts/graychart.h>

#include <QApplication>
#include <QFontMetricsF>
#include <QImage>
#include <QTest>

#include <algorithm>
#include <cmath>

using Charts::ChartGamut;
using Charts::GrayCurve;
using Charts::Plane;

Q_DECLARE_METATYPE(Plane)

namespace {

const QString blackInk = QStringLiteral("#000000");
const QString redInk = QStringLiteral("#d55e00");
const QString zeroInk = QStringLiteral("#5a5a5a");

constexpr Colour::Primaries panel{{0.69, 0.30}, {0.17, 0.73}, {0.13, 0.08}, {0.2863, 0.2949}};
constexpr Colour::Primaries rec709{{0.64, 0.33}, {0.30, 0.60}, {0.15, 0.06}, {0.3127, 0.3290}};
constexpr Colour::Primaries bt2020{{0.708, 0.292}, {0.170, 0.797}, {0.131, 0.046}, {0.3127, 0.3290}};
/// As reached: two corners are the target's but for what rounded coefficients change.
constexpr Colour::Primaries reached{{0.6402, 0.3298}, {0.3001, 0.5999}, {0.1508, 0.0882}, {0.3127, 0.3290}};

QList<ChartGamut> correction(const Colour::Primaries& target)
{
    return {{"measured: Panel", panel, "covers 97.92 %"}, {"target", target, {}}, {"reached", reached, {}}};
}

GrayCurve curve(const QString& label, int levels, double (*value)(double))
{
    GrayCurve result{label, {}, false};
    for (int level = 0; level < levels; ++level)
        result.points << QPointF(level, value(level));
    return result;
}

/// The places of the texts that stand at points of the diagram.
QVector<QPair<QString, QRectF>> pointLabels(const SvgDrawing& drawing)
{
    QFont font("DejaVu Sans");
    font.setPixelSize(20);
    const QFontMetricsF metrics(font);
    QVector<QPair<QString, QRectF>> places;
    for (const SvgDrawing::Text& text : drawing.texts)
        if (text.pixels == 20)
            places << qMakePair(text.text, metrics.tightBoundingRect(text.text).translated(text.start));
    return places;
}

} // namespace

class TestCharts : public QObject
{
    Q_OBJECT

public:
    static void initMain() { qputenv("QT_QPA_PLATFORM", "offscreen"); }

private Q_SLOTS:
    void axesAreEqual_data()
    {
        QTest::addColumn<Plane>("plane");
        QTest::addColumn<QString>("label");
        for (const auto& [name, plane] : {std::pair("xy", Plane::Xy), std::pair("u'v'", Plane::UvPrime)}) {
            QTest::addRow("%s", name) << plane << QStringLiteral("measured");
            QTest::addRow("%s, tall legend", name) << plane << QString(60, 'm');
        }
    }

    void axesAreEqual()
    {
        QFETCH(Plane, plane);
        QFETCH(QString, label);
        QList<ChartGamut> gamuts = correction(rec709);
        gamuts.first().label = label;
        const auto chart = Charts::chromaticityChart("Title", plane, gamuts);
        const SvgDrawing svg(chart.toSvg());
        QCOMPARE(svg.linesOf(blackInk, 4).size(), 1);
        const QPolygonF triangle = svg.linesOf(blackInk, 4).first();
        const QPointF drawn = triangle.at(0) - triangle.at(1);
        const QPointF real = Charts::toPlane(panel.red, plane) - Charts::toPlane(panel.green, plane);
        const double perX = drawn.x() / real.x();
        const double perY = -drawn.y() / real.y();
        QVERIFY2(std::abs(perX / perY - 1.0) < 1e-4, qPrintable(QStringLiteral("%1, %2").arg(perX).arg(perY)));

        const QImage png = QImage::fromData(chart.toPng());
        QCOMPARE(QSizeF(png.size()), svg.viewBox.size());
        for (int i = 0; i < 3; ++i) { // a third of each side: no other line crosses there
            const QPointF point = triangle.at(i) + (triangle.at(i + 1) - triangle.at(i)) * 0.3;
            QCOMPARE(QColor(png.pixel(point.toPoint())), QColor(Qt::black));
        }
    }

    void diagramIsLabelled()
    {
        const SvgDrawing svg(Charts::chromaticityChart("Panel & <Rec.709>", Plane::Xy, correction(rec709)).toSvg());
        QCOMPARE(svg.error, QString());
        QStringList corners = svg.textsLike(R"(0\.\d+, 0\.\d+)");
        corners.sort();
        QCOMPARE(corners, (QStringList{"0.1300, 0.0800", "0.1500, 0.0600", "0.1508, 0.0882", "0.1700, 0.7300",
                                       "0.3000, 0.6000", "0.6400, 0.3300", "0.6900, 0.3000"}));
        for (const char* text : {"Panel & <Rec.709>", "520 nm", "600 nm", "D65", "2000 K", "25000 K",
                                 "measured: Panel, covers 97.92 %", "target", "reached", "Planckian locus"})
            QVERIFY2(svg.textsLike(QRegularExpression::escape(text)).size() == 1, text);
        QCOMPARE(svg.textsLike("[3-7][0-9]0"), QStringList()); // no wavelength without its unit
        const SvgDrawing uv(Charts::chromaticityChart("Title", Plane::UvPrime, correction(rec709)).toSvg());
        QCOMPARE(uv.textsLike("0.1754, 0.1579").size(), 1); // blue of Rec.709
    }

    void labelsAreApart_data()
    {
        QTest::addColumn<Plane>("plane");
        QTest::addColumn<bool>("wide");
        QTest::newRow("xy, Rec.709") << Plane::Xy << false;
        QTest::newRow("xy, BT.2020") << Plane::Xy << true;
        QTest::newRow("u'v', Rec.709") << Plane::UvPrime << false;
        QTest::newRow("u'v', BT.2020") << Plane::UvPrime << true;
    }

    void labelsAreApart()
    {
        QFETCH(Plane, plane);
        QFETCH(bool, wide);
        const SvgDrawing svg(Charts::chromaticityChart("Title", plane, correction(wide ? bt2020 : rec709)).toSvg());
        const auto labels = pointLabels(svg);
        QVERIFY(labels.size() > 20);
        for (int i = 0; i < labels.size(); ++i) {
            QVERIFY2(svg.viewBox.contains(labels.at(i).second), qPrintable(labels.at(i).first));
            for (int other = 0; other < i; ++other)
                QVERIFY2(!labels.at(i).second.intersects(labels.at(other).second),
                         qPrintable(labels.at(i).first + " on " + labels.at(other).first));
        }
    }

    void outlinesAreManyUnderOneName()
    {
        const Charts::ChartOutlines outlines{"3 groups", {panel, bt2020, rec709}};
        const QByteArray svg =
            Charts::chromaticityChart("Title", Plane::Xy, {{"common", rec709, {}}}, outlines).toSvg();
        const SvgDrawing drawing(svg);
        QCOMPARE(drawing.linesOf("#5a5a5a", 4).size(), 3);
        QCOMPARE(drawing.textsLike("3 groups").size(), 1);
        QCOMPARE(drawing.textsLike(R"(0\.\d+, 0\.\d+)").size(), 3); // of the gamut only
    }

    void longNamesLeaveRoomForCoverage()
    {
        QList<ChartGamut> gamuts = correction(rec709);
        gamuts.first().label = QString(300, 'W');
        const SvgDrawing svg(Charts::chromaticityChart(QString(300, 'W'), Plane::Xy, gamuts).toSvg());
        QCOMPARE(svg.textsLike("W+…W+, covers 97\\.92 %").size(), 1);
        QCOMPARE(svg.textsLike("W+…W+").size(), 1); // the title
    }

    void chartsAreWhole()
    {
        const auto chromaticity = [] {
            return Charts::chromaticityChart("Title", Plane::Xy, correction(rec709)).toSvg();
        };
        const SvgDrawing svg(chromaticity());
        QVERIFY(!svg.references.isEmpty());
        for (const QString& reference : svg.references)
            QVERIFY(reference.startsWith("data:"));
        QCOMPARE(chromaticity(), chromaticity());
    }

    void grayChartEndsAtItsLastLevel_data()
    {
        QTest::addColumn<int>("levels");
        QTest::newRow("256") << 256;
        QTest::newRow("1024") << 1024;
        QTest::newRow("ends soon after a round level") << 207;
        QTest::newRow("3") << 3;
    }

    void grayChartEndsAtItsLastLevel()
    {
        QFETCH(int, levels);
        GrayCurve magnitude = curve("magnitude", levels, [](double level) { return 1000.0 + level; });
        magnitude.ownAxis = true;
        const GrayCurve red = curve("red", levels, [](double level) { return 3.0 + level / 2.0; });
        const SvgDrawing svg(Charts::grayChart("Title", "y", {red, red, red, magnitude}).toSvg());

        const auto reds = svg.linesOf(redInk, levels);
        QCOMPARE(reds.size(), 2); // the curve, and its deviation below
        QCOMPARE(reds.at(0).last().x(), reds.at(1).last().x());
        const QPolygonF zeroLine = svg.linesOf(zeroInk, 2).last(); // across the canvas
        QVERIFY(zeroLine.last().x() - reds.at(0).last().x() < 6.0);
        QCOMPARE(svg.textsLike(QString::number(levels - 1)).size(), 2);
        QVERIFY(svg.textsLike("magnitude.*").contains("magnitude (right axis)"));

        for (const QPointF& point : reds.at(1))
            QVERIFY(std::abs(point.y() - zeroLine.first().y()) < 0.01); // it is a straight line
        const double height = reds.at(0).first().y() - reds.at(0).last().y();
        QCOMPARE(svg.linesOf(blackInk, levels).size(), 1); // the whole of it is on the canvas
        const QPolygonF right = svg.linesOf(blackInk, levels).first();
        QVERIFY(right.first().y() - right.last().y() > height / 2.0); // its axis begins near 1000
    }

    void grayChartOfNothing()
    {
        QVERIFY(!Charts::grayChart("Title", "y", {}).toSvg().isEmpty());
        QVERIFY(!Charts::grayChart("Title", "y", {{"red", {}, false}, {"magnitude", {}, true}}).toPng().isEmpty());
    }
};

QTEST_MAIN(TestCharts)
#include "tst_charts.moc"
