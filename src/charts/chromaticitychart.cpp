#include "chromaticitychart.h"

#include "labelsitem_p.h"
#include "locusitem_p.h"
#include "planckianlocus.h"
#include "plotstyle_p.h"
#include "spectrallocus.h"

#include <qwt_plot_curve.h>
#include <qwt_plot_marker.h>
#include <qwt_symbol.h>

#include <algorithm>
#include <cmath>
#include <numeric>

namespace Charts {

namespace {

using Colour::Chromaticity;

const QColor darkInk(60, 60, 60);
constexpr double lowest = 10.0; // under the gamuts, over the grid

/// How each gamut in turn is drawn: later ones are thinner, so that earlier ones are seen under them.
struct GamutStyle
{
    QColor ink;
    Qt::PenStyle line;
    double width;
    QwtSymbol::Style marker;
};

const GamutStyle& styleOf(int index)
{
    static const GamutStyle styles[] = {
        {blackInk, Qt::SolidLine, 7.0, QwtSymbol::Ellipse},      {blueInk, Qt::DashLine, 4.0, QwtSymbol::Rect},
        {vermilionInk, Qt::SolidLine, 2.5, QwtSymbol::Triangle}, {greenInk, Qt::DashDotLine, 3.0, QwtSymbol::Diamond},
        {purpleInk, Qt::DotLine, 4.0, QwtSymbol::DTriangle},
    };
    return styles[index % static_cast<int>(std::size(styles))];
}

QVector<QPointF> cornersOf(const Colour::Primaries& p, Plane plane)
{
    return {toPlane(p.red, plane), toPlane(p.green, plane), toPlane(p.blue, plane)};
}

void addGamut(QwtPlot& plot, const ChartGamut& gamut, Plane plane, const GamutStyle& style, double markerSize)
{
    const QPen pen(style.ink, style.width, style.line);
    const Colour::Primaries& p = gamut.primaries;
    QVector<QPointF> outline = cornersOf(p, plane);
    outline << outline.first();
    const QSizeF size(markerSize, markerSize);
    const QPen markerPen(style.ink, 2.5);
    const QString remark = gamut.remark.isEmpty() ? QString() : QStringLiteral(", ") + printable(gamut.remark);
    auto* triangle = new QwtPlotCurve(plainText(fitted(gamut.label, labelPixels, remark), labelPixels));
    triangle->setSamples(outline);
    triangle->setPen(pen);
    triangle->setRenderHint(QwtPlotItem::RenderAntialiased);
    triangle->setSymbol(new QwtSymbol(style.marker, Qt::NoBrush, markerPen, size.toSize()));
    triangle->setLegendAttribute(QwtPlotCurve::LegendShowLine);
    triangle->setLegendAttribute(QwtPlotCurve::LegendShowSymbol);
    triangle->setLegendIconSize(QSize(70, 26));
    triangle->attach(&plot);

    auto* white = new QwtPlotMarker;
    white->setValue(toPlane(p.white, plane));
    white->setSymbol(new QwtSymbol(style.marker, QColor(255, 255, 255, 160), markerPen, size.toSize()));
    white->setItemAttribute(QwtPlotItem::Legend, false);
    white->setRenderHint(QwtPlotItem::RenderAntialiased);
    white->attach(&plot);
}

/// The first of them stands in the legend.
void addOutlines(QwtPlot& plot, const ChartOutlines& outlines, Plane plane)
{
    const QColor ink(90, 90, 90, 160);
    for (int i = 0; i < outlines.triangles.size(); ++i) {
        QVector<QPointF> outline = cornersOf(outlines.triangles.at(i), plane);
        outline << outline.first();
        auto* triangle = new QwtPlotCurve(plainText(fitted(outlines.label, labelPixels), labelPixels));
        triangle->setSamples(outline);
        triangle->setPen(ink, 1.5);
        triangle->setRenderHint(QwtPlotItem::RenderAntialiased);
        triangle->setItemAttribute(QwtPlotItem::Legend, i == 0);
        triangle->setLegendAttribute(QwtPlotCurve::LegendShowLine);
        triangle->setLegendIconSize(QSize(70, 26));
        triangle->setZ(lowest);
        triangle->attach(&plot);
    }
}

/// Points of the Planckian locus. Equal steps of the reciprocal temperature are about equal steps on the drawing.
QVector<QPointF> planckianPoints(Plane plane, double mireds)
{
    constexpr double mired = 1e6; // per reciprocal kelvin
    QVector<QPointF> points;
    for (double reciprocal = mired / hottestPlanckian; reciprocal < mired / coolestPlanckian; reciprocal += mireds)
        points << toPlane(planckian(mired / reciprocal), plane);
    return points;
}

void addPlanckianLocus(QwtPlot& plot, Plane plane)
{
    auto* locus = new QwtPlotCurve(QStringLiteral("Planckian locus"));
    locus->setSamples(planckianPoints(plane, 5.0));
    locus->setPen(darkInk, 2.0);
    locus->setRenderHint(QwtPlotItem::RenderAntialiased);
    locus->setLegendAttribute(QwtPlotCurve::LegendShowLine);
    locus->setLegendIconSize(QSize(70, 26));
    locus->setZ(lowest);
    locus->attach(&plot);
}

void addMark(QwtPlot& plot, const QPointF& position, QwtSymbol* symbol)
{
    auto* marker = new QwtPlotMarker;
    marker->setValue(position);
    marker->setSymbol(symbol);
    marker->setItemAttribute(QwtPlotItem::Legend, false);
    marker->setRenderHint(QwtPlotItem::RenderAntialiased);
    marker->setZ(lowest);
    marker->attach(&plot);
}

/// What is written into the diagram, in the order in which it takes its place, and what it keeps off.
class Labelling
{
public:
    Labelling(QwtPlot& plot, Plane plane) : m_plot(plot), m_plane(plane) {}

    /// Wavelengths stand outside the locus.
    void addWavelengths();
    void addDaylight();
    void addTemperatures();
    void addGamuts(const QList<ChartGamut>& gamuts);
    void attach() const { (new LabelsItem(m_labels, m_marks, m_lines))->attach(&m_plot); }

private:
    void addCorners(const QVector<QPointF>& corners, const QColor& ink);

    QwtPlot& m_plot;
    Plane m_plane;
    QVector<PointLabel> m_labels;
    QVector<QPointF> m_marks;
    QVector<QLineF> m_lines;
    QVector<QPointF> m_corners;
};

void Labelling::addWavelengths()
{
    const QList<int> shown = m_plane == Plane::Xy ? QList<int>{460, 480, 490, 500, 510, 520, 540, 560, 580, 600, 620}
                                                  : QList<int>{440, 460, 480, 490, 500, 510, 530, 560, 590, 620, 650};
    const std::vector<SpectralPoint> locus = smoothLocus();
    for (std::size_t i = 1; i + 1 < locus.size(); ++i) {
        if (!shown.contains(locus[i].nanometres))
            continue;
        const QPointF position = toPlane(locus[i].chromaticity, m_plane);
        addMark(m_plot, position, new QwtSymbol(QwtSymbol::Ellipse, QColor(90, 90, 90), Qt::NoPen, QSize(6, 6)));
        m_marks << position;
        const QPointF along =
            toPlane(locus[i + 1].chromaticity, m_plane) - toPlane(locus[i - 1].chromaticity, m_plane); // clockwise
        m_labels << PointLabel{
            position, QStringLiteral("%1 nm").arg(locus[i].nanometres), darkInk, {-along.y(), along.x()}, false};
    }
}

void Labelling::addDaylight()
{
    constexpr Colour::Chromaticity d65{0.3127, 0.3290}; // CIE 15
    const QPointF position = toPlane(d65, m_plane);
    addMark(m_plot, position, new QwtSymbol(QwtSymbol::Cross, Qt::NoBrush, QPen(darkInk, 2.0), QSize(26, 26)));
    m_marks << position;
    m_labels << PointLabel{position, QStringLiteral("D65"), darkInk, {1.0, -0.2}};
}

void Labelling::addTemperatures()
{
    const QVector<QPointF> locus = planckianPoints(m_plane, 50.0);
    for (int i = 1; i < locus.size(); ++i)
        m_lines << QLineF(locus.at(i - 1), locus.at(i));
    const QPointF towards = m_plane == Plane::Xy ? QPointF(-0.3, 1.0) : QPointF(0.8, -0.6); // beside the locus
    for (const int kelvin : {2000, 3000, 4000, 10000, 25000}) {
        const QPointF position = toPlane(planckian(kelvin), m_plane);
        addMark(m_plot, position, new QwtSymbol(QwtSymbol::Ellipse, darkInk, Qt::NoPen, QSize(8, 8)));
        m_marks << position;
        m_labels << PointLabel{position, QStringLiteral("%1 K").arg(kelvin), darkInk, towards};
    }
}

void Labelling::addGamuts(const QList<ChartGamut>& gamuts)
{
    constexpr double firstMarker = 20.0; // smaller ones lie on larger ones, so that gamuts that coincide are all seen
    for (int i = 0; i < gamuts.size(); ++i) {
        const Colour::Primaries& primaries = gamuts.at(i).primaries;
        addGamut(m_plot, gamuts.at(i), m_plane, styleOf(i), std::max(8.0, firstMarker - 4.0 * i));
        const QVector<QPointF> corners = cornersOf(primaries, m_plane);
        for (int corner = 0; corner < corners.size(); ++corner)
            m_lines << QLineF(corners.at(corner), corners.at((corner + 1) % corners.size()));
        m_marks << corners << toPlane(primaries.white, m_plane);
        addCorners(corners, styleOf(i).ink);
    }
}

void Labelling::addCorners(const QVector<QPointF>& corners, const QColor& ink)
{
    constexpr double pixel = 0.001; // of either plane, about
    const QPointF centre = std::accumulate(corners.begin(), corners.end(), QPointF()) / corners.size();
    for (const QPointF& corner : corners) {
        const bool known = std::any_of(m_corners.begin(), m_corners.end(), [&](const QPointF& other) {
            return std::hypot(corner.x() - other.x(), corner.y() - other.y()) < pixel;
        });
        if (known)
            continue;
        m_corners << corner;
        m_labels << PointLabel{corner, QStringLiteral("%1, %2").arg(corner.x(), 0, 'f', 4).arg(corner.y(), 0, 'f', 4),
                               ink, corner - centre};
    }
}

} // namespace

Chart chromaticityChart(const QString& title, Plane plane, const QList<ChartGamut>& gamuts,
                        const ChartOutlines& outlines)
{
    auto plot = std::make_unique<QwtPlot>();
    const bool isXy = plane == Plane::Xy;
    applyStyle(*plot, chartHeight, isXy ? QStringLiteral("x, CIE 1931") : QStringLiteral("u', CIE 1976"),
               isXy ? QStringLiteral("y, CIE 1931") : QStringLiteral("v', CIE 1976"));
    addTitle(*plot, title);
    addLegend(*plot);
    (new LocusItem(plane))->attach(plot.get());
    Labelling labelling(*plot, plane);
    labelling.addWavelengths();
    labelling.addDaylight();
    labelling.addGamuts(gamuts);
    addOutlines(*plot, outlines, plane);
    labelling.addTemperatures();
    labelling.attach();
    addPlanckianLocus(*plot, plane);
    equalizeAxes(*plot, isXy ? QwtInterval(-0.11, 0.84) : QwtInterval(-0.08, 0.68),
                 isXy ? QwtInterval(-0.03, 0.9) : QwtInterval(-0.03, 0.63), 0.1);
    std::vector<std::unique_ptr<QwtPlot>> plots;
    plots.push_back(std::move(plot));
    return Chart(std::move(plots));
}

} // namespace Charts
