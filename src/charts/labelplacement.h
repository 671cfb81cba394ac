#pragma once

#include <QLineF>
#include <QRectF>
#include <QVector>

namespace Charts {

/// A text that wants a place near its anchor. All in pixels of the drawing, y down.
struct LabelRequest
{
    QPointF anchor;
    QSizeF size;
    QPointF towards;     ///< the side it would rather be on; of any length but zero
    bool mayMove = true; ///< else it stands on that side, whatever is there
};

/// What labels keep off.
struct Surroundings
{
    QRectF canvas;
    QVector<QPointF> marks;
    QVector<QLineF> lines;
};

/// A place for each label in turn, beside its anchor: inside the canvas, off the labels before it, then off marks, off
/// lines, near, and on the wanted side, in this order of weight.
QVector<QRectF> placeLabels(const QVector<LabelRequest>& labels, const Surroundings& surroundings);

/// From the anchor to the label's nearest point.
QLineF leader(const QPointF& anchor, const QRectF& label);

} // namespace Charts
