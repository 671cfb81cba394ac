#include "graychart.h"

#include "plotstyle_p.h"

#include <QPen>
#include <qwt_plot.h>
#include <qwt_plot_curve.h>
#include <qwt_scale_engine.h>
#include <qwt_text.h>

namespace Charts {

Chart grayChart(const QString& title, const QString& yTitle, const QList<GrayCurve>& curves)
{
    static const QPen pens[] = {
        QPen(vermilionInk, 7.0, Qt::SolidLine), QPen(greenInk, 5.0, Qt::DashLine),   QPen(blueInk, 4.0, Qt::DotLine),
        QPen(blackInk, 3.0, Qt::DashDotLine),   QPen(purpleInk, 3.0, Qt::SolidLine),
    };
    auto plot = std::make_unique<QwtPlot>();
    applyStyle(*plot, title, QStringLiteral("gray level"), yTitle);
    plot->axisScaleEngine(QwtPlot::xBottom)->setAttribute(QwtScaleEngine::Floating);
    int index = 0;
    for (const GrayCurve& curve : curves) {
        auto* drawn = new QwtPlotCurve(QwtText(printable(curve.label), QwtText::PlainText));
        drawn->setSamples(curve.points.toVector());
        drawn->setPen(pens[index++ % static_cast<int>(std::size(pens))]);
        drawn->setRenderHint(QwtPlotItem::RenderAntialiased);
        drawn->setLegendAttribute(QwtPlotCurve::LegendShowLine);
        drawn->setLegendIconSize(QSize(70, 26));
        drawn->attach(plot.get());
    }
    return Chart(std::move(plot));
}

} // namespace Charts
