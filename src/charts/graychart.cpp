#include "graychart.h"

#include "plotstyle_p.h"

#include <qwt_plot_curve.h>
#include <qwt_plot_marker.h>
#include <qwt_scale_draw.h>
#include <qwt_scale_engine.h>

#include <QPen>

#include <algorithm>
#include <cmath>

namespace Charts {

namespace {

constexpr int curvesHeight = 680;
constexpr double underCurves = 15.0; // curves are at 20, the grid at 10

const QPen& penOf(int index)
{
    static const QPen pens[] = {
        QPen(vermilionInk, 7.0, Qt::SolidLine), QPen(greenInk, 5.0, Qt::DashLine),   QPen(blueInk, 4.0, Qt::DotLine),
        QPen(blackInk, 3.0, Qt::DashDotLine),   QPen(purpleInk, 3.0, Qt::SolidLine),
    };
    return pens[index % static_cast<int>(std::size(pens))];
}

QwtPlotCurve* addCurve(QwtPlot& plot, const QString& label, const QList<QPointF>& points, const QPen& pen)
{
    auto* curve = new QwtPlotCurve(plainText(fitted(label, labelPixels), labelPixels));
    curve->setSamples(points.toVector());
    curve->setPen(pen);
    curve->setRenderHint(QwtPlotItem::RenderAntialiased);
    curve->setLegendAttribute(QwtPlotCurve::LegendShowLine);
    curve->setLegendIconSize(QSize(70, 26));
    curve->attach(&plot);
    return curve;
}

/// What the curves' coordinate spans; 0 to 1 where there is no curve or no span.
template <typename Coordinate>
QwtInterval spanOf(const QList<GrayCurve>& curves, Coordinate coordinate)
{
    QwtInterval span;
    for (const GrayCurve& curve : curves)
        for (const QPointF& point : curve.points)
            span |= QwtInterval(coordinate(point), coordinate(point));
    return span.width() > 0.0 ? span : QwtInterval(0.0, 1.0);
}

/// An axis over a span and not beyond, with round ticks and the span's end.
QwtScaleDiv scaleOver(const QwtInterval& span)
{
    constexpr int majors = 6;
    constexpr int minors = 5;
    constexpr double nearEnd = 0.5; // of a step: a tick's label would run into the end's
    const QwtScaleDiv round = QwtLinearScaleEngine().divideScale(span.minValue(), span.maxValue(), majors, minors);
    QList<double> ticks = round.ticks(QwtScaleDiv::MajorTick);
    if (ticks.size() > 1 && span.maxValue() - ticks.last() < nearEnd * (ticks.at(1) - ticks.at(0)))
        ticks.removeLast();
    ticks << span.maxValue();
    return QwtScaleDiv(span.minValue(), span.maxValue(), round.ticks(QwtScaleDiv::MinorTick),
                       round.ticks(QwtScaleDiv::MediumTick), ticks);
}

/// All plots' canvases begin and end at the same x: an axis is as wide as the widest of its side, also where it shows
/// nothing.
void alignAxes(const std::vector<std::unique_ptr<QwtPlot>>& plots)
{
    for (const auto axis : {QwtPlot::yLeft, QwtPlot::yRight}) {
        double widest = 0.0;
        for (const auto& plot : plots) {
            plot->updateAxes();
            widest = std::max(widest, plot->axisScaleDraw(axis)->extent(plot->axisFont(axis)));
        }
        for (const auto& plot : plots)
            plot->axisScaleDraw(axis)->setMinimumExtent(widest);
    }
}

std::unique_ptr<QwtPlot> curvesPlot(const QString& yTitle, const QList<GrayCurve>& curves, const QString& rightTitle)
{
    auto plot = std::make_unique<QwtPlot>();
    applyStyle(*plot, curvesHeight, {}, yTitle);
    addLegend(*plot);
    QList<GrayCurve> left;
    for (int i = 0; i < curves.size(); ++i) {
        const GrayCurve& curve = curves.at(i);
        QwtPlotCurve* drawn = addCurve(
            *plot, curve.ownAxis ? curve.label + QStringLiteral(" (right axis)") : curve.label, curve.points, penOf(i));
        if (curve.ownAxis)
            drawn->setYAxis(QwtPlot::yRight);
        else
            left << curve;
    }
    plot->setAxisScaleDiv(QwtPlot::yLeft, scaleOver(spanOf(left, [](const QPointF& point) { return point.y(); })));
    if (!rightTitle.isEmpty())
        styleAxis(*plot, QwtPlot::yRight, rightTitle);
    return plot;
}

std::unique_ptr<QwtPlot> deviationPlot(const QList<GrayCurve>& curves, bool hasRightAxis)
{
    auto plot = std::make_unique<QwtPlot>();
    applyStyle(*plot, chartHeight - curvesHeight, QStringLiteral("gray level"), QStringLiteral("deviation from line"));
    auto* line = new QwtPlotMarker; // where a straight curve would be
    line->setLineStyle(QwtPlotMarker::HLine);
    line->setLinePen(QColor(90, 90, 90), 1.5);
    line->setZ(underCurves);
    line->attach(plot.get());
    for (int i = 0; i < curves.size(); ++i) {
        QPen pen = penOf(i);
        pen.setWidthF(3.0);
        if (!curves.at(i).ownAxis)
            addCurve(*plot, curves.at(i).label, deviationFromLine(curves.at(i).points), pen);
    }
    constexpr double step = 0.5; // what rounding a coefficient makes; an axis of less would show a computer's rounding
    plot->axisScaleEngine(QwtPlot::yLeft)->setAttribute(QwtScaleEngine::IncludeReference);
    plot->axisScaleEngine(QwtPlot::yLeft)->setMargins(step, step);
    plot->setAxisMaxMajor(QwtPlot::yLeft, 5);
    if (hasRightAxis) {
        styleAxis(*plot, QwtPlot::yRight, QStringLiteral(" "));
        for (const auto part : {QwtScaleDraw::Backbone, QwtScaleDraw::Ticks, QwtScaleDraw::Labels})
            plot->axisScaleDraw(QwtPlot::yRight)->enableComponent(part, false);
    }
    return plot;
}

} // namespace

QList<QPointF> deviationFromLine(const QList<QPointF>& points)
{
    QList<QPointF> result;
    for (const QPointF& point : points) {
        const QPointF whole = points.last() - points.first();
        const double share = whole.x() != 0.0 ? (point.x() - points.first().x()) / whole.x() : 0.0;
        result << QPointF(point.x(), point.y() - (points.first().y() + share * whole.y()));
    }
    return result;
}

Chart grayChart(const QString& title, const QString& yTitle, const QList<GrayCurve>& curves)
{
    QStringList rightTitle;
    for (const GrayCurve& curve : curves)
        if (curve.ownAxis)
            rightTitle << curve.label;
    const bool hasRightAxis = !rightTitle.isEmpty();
    std::vector<std::unique_ptr<QwtPlot>> plots;
    plots.push_back(curvesPlot(yTitle, curves, rightTitle.join(QStringLiteral(", "))));
    plots.push_back(deviationPlot(curves, hasRightAxis));
    addTitle(*plots.front(), title);
    const QwtScaleDiv levels = scaleOver(spanOf(curves, [](const QPointF& point) { return point.x(); }));
    for (const auto& plot : plots)
        plot->setAxisScaleDiv(QwtPlot::xBottom, levels);
    alignAxes(plots);
    return Chart(std::move(plots));
}

} // namespace Charts
