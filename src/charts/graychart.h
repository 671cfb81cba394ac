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
    bool ownAxis = false; ///< drawn on the axis on the right, whose title is the label
};

/// How far each point of a curve lies above the straight line between its first and its last point. Where both
/// have the same x the line is level through the first.
QList<QPointF> deviationFromLine(const QList<QPointF>& points);

/// Up to five curves, drawn red, green, blue, black and purple in this order, from the first to the last gray level;
/// below them how far those of the left axis deviate from straight lines.
Chart grayChart(const QString& title, const QString& yTitle, const QList<GrayCurve>& curves);

} // namespace Charts
