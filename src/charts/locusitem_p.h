#pragma once

#include "plane.h"

#include <qwt_plot_item.h>

#include <QPolygonF>

namespace Charts {

/// The filled spectral locus with the line of purples. SVG painting knows no clipping, so the fill is an image that is
/// transparent outside.
class LocusItem : public QwtPlotItem
{
public:
    explicit LocusItem(Plane plane);

    void draw(QPainter* painter, const QwtScaleMap& xMap, const QwtScaleMap& yMap, const QRectF& canvas) const override;

private:
    QImage fill(const QPolygonF& outline, const QwtScaleMap& xMap, const QwtScaleMap& yMap, const QRectF& canvas) const;

    Plane m_plane;
    QPolygonF m_outline; // in the plane
};

} // namespace Charts
