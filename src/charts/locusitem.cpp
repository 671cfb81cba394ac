#include "locusitem_p.h"
#include "spectrallocus.h"
#include <suite/colour/matrix.h>

#include <qwt_scale_map.h>

#include <QImage>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <cmath>

namespace Charts {

namespace {

using Colour::Chromaticity;

/// A chromaticity as an sRGB screen can hint at it: out-of-gamut channels are cut, the brightest is full, and all is
/// paled so that lines and markers stand out.
QColor hint(const Chromaticity& c)
{
    // XYZ to linear sRGB, IEC 61966-2-1.
    constexpr Colour::Matrix3 toSrgb{
        {{3.2406, -1.5372, -0.4986}, {-0.9689, 1.8758, 0.0415}, {0.0557, -0.2040, 1.0570}}};
    constexpr double paling = 0.45;
    if (!(c.y > 0.0))
        return Qt::white;
    Colour::Vector3 rgb = Colour::multiply(toSrgb, Colour::Vector3{c.x, c.y, 1.0 - c.x - c.y});
    for (double& channel : rgb)
        channel = std::max(channel, 0.0);
    const double brightest = *std::max_element(rgb.begin(), rgb.end());
    const auto encoded = [&](double channel) {
        return paling + (1.0 - paling) * std::pow(channel / brightest, 1.0 / 2.2);
    };
    return QColor::fromRgbF(encoded(rgb[0]), encoded(rgb[1]), encoded(rgb[2]));
}

} // namespace

LocusItem::LocusItem(Plane plane) : m_plane(plane)
{
    setZ(-1.0); // under the grid
    setRenderHint(RenderAntialiased);
    for (const SpectralPoint& point : smoothLocus())
        m_outline << toPlane(point.chromaticity, plane);
}

void LocusItem::draw(QPainter* painter, const QwtScaleMap& xMap, const QwtScaleMap& yMap, const QRectF& canvas) const
{
    QPolygonF outline;
    for (const QPointF& position : m_outline)
        outline << QwtScaleMap::transform(xMap, yMap, position);
    painter->drawImage(canvas, fill(outline, xMap, yMap, canvas));
    painter->setPen(QPen(QColor(90, 90, 90), 1.5));
    painter->setBrush(Qt::NoBrush);
    painter->drawPolygon(outline);
}

QImage LocusItem::fill(const QPolygonF& outline, const QwtScaleMap& xMap, const QwtScaleMap& yMap,
                       const QRectF& canvas) const
{
    constexpr double pixel = 2.0; // of the drawing per pixel of the image
    QImage image(QSizeF(canvas.size() / pixel).toSize(), QImage::Format_ARGB32);
    for (int row = 0; row < image.height(); ++row) {
        auto* line = reinterpret_cast<QRgb*>(image.scanLine(row));
        for (int column = 0; column < image.width(); ++column) {
            const QPointF position(xMap.invTransform(canvas.left() + (column + 0.5) * pixel),
                                   yMap.invTransform(canvas.top() + (row + 0.5) * pixel));
            line[column] = hint(toXy(position, m_plane)).rgb();
        }
    }
    QImage mask(image.size(), QImage::Format_ARGB32);
    mask.fill(Qt::transparent);
    QPainter painter(&mask);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(1.0 / pixel, 1.0 / pixel);
    painter.translate(-canvas.topLeft());
    QPainterPath path;
    path.addPolygon(outline);
    painter.fillPath(path, Qt::white);
    painter.end();
    QPainter combine(&image);
    combine.setCompositionMode(QPainter::CompositionMode_DestinationIn);
    combine.drawImage(0, 0, mask);
    return image;
}

} // namespace Charts
