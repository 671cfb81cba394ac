#pragma once

#include <charts/chart.h>

#include <QList>
#include <QPointF>

namespace Charts {

/// One curve over gray levels. Red, green, blue and further curves differ in colour and in line.
struct GrayCurve
{
    QString label; ///< in the legend
    QList<QPointF> points;
};

/// Up to five curves, drawn red, green, blue, black and purple in this order.
Chart grayChart(const QString& title, const QString& yTitle, const QList<GrayCurve>& curves);

} // namespace Charts
