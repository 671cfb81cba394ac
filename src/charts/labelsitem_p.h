#pragma once

#include <qwt_plot_item.h>

#include <QColor>
#include <QLineF>
#include <QVector>

namespace Charts {

/// A text beside a point of the diagram. Positions and directions are the plot's, y up.
struct PointLabel
{
    QPointF position;
    QString text;
    QColor ink;
    QPointF towards;
    bool mayMove = true;
};

/// All labels of a diagram. They are placed when they are drawn, because only then the size of a text is known.
class LabelsItem : public QwtPlotItem
{
public:
    /// Labels keep off the marks and lines too.
    LabelsItem(const QVector<PointLabel>& labels, const QVector<QPointF>& marks, const QVector<QLineF>& lines);

    void draw(QPainter* painter, const QwtScaleMap& xMap, const QwtScaleMap& yMap, const QRectF& canvas) const override;

private:
    QVector<PointLabel> m_labels;
    QVector<QPointF> m_marks;
    QVector<QLineF> m_lines;
};

} // namespace Charts
