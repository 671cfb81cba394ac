#include "chromaticitychart.h"

#include "plotstyle_p.h"
#include "spectrallocus.h"

#include <suite/colour/coverage.h>
#include <suite/colour/matrix.h>

#include <QImage>
#include <QPainter>
#include <QPainterPath>
#include <qwt_plot.h>
#include <qwt_plot_curve.h>
#include <qwt_plot_item.h>
#include <qwt_plot_marker.h>
#include <qwt_scale_map.h>
#include <qwt_symbol.h>
#include <qwt_text.h>

#include <algorithm>
#include <cmath>

namespace Charts {

namespace {

using Colour::Chromaticity;

QPointF toPlane(const Chromaticity& xy, Plane plane)
{
    const Chromaticity point = plane == Plane::Xy ? xy : Colour::uvPrime(xy);
    return {point.x, point.y};
}

/// The inverse of u', v': x = 9u' / (6u' - 16v' + 12), y = 4v' / (6u' - 16v' + 12).
Chromaticity toXy(const QPointF& point, Plane plane)
{
    if (plane == Plane::Xy)
        return {point.x(), point.y()};
    const double divisor = 6.0 * point.x() - 16.0 * point.y() + 12.0;
    return {9.0 * point.x() / divisor, 4.0 * point.y() / divisor};
}

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

/// The filled spectral locus with the line of purples. SVG painting knows no clipping, so the fill is an image that is
/// transparent outside.
class LocusItem : public QwtPlotItem
{
public:
    explicit LocusItem(Plane plane) : m_plane(plane) {}

    void draw(QPainter* painter, const QwtScaleMap& xMap, const QwtScaleMap& yMap, const QRectF& canvas) const override
    {
        QPolygonF outline;
        for (const SpectralPoint& point : spectralLocus) {
            const QPointF position = toPlane(point.chromaticity, m_plane);
            outline << QPointF(xMap.transform(position.x()), yMap.transform(position.y()));
        }
        painter->drawImage(canvas, fill(outline, xMap, yMap, canvas));
        painter->setPen(QPen(QColor(90, 90, 90), 1.5));
        painter->setBrush(Qt::NoBrush);
        painter->drawPolygon(outline);
    }

private:
    QImage fill(const QPolygonF& outline, const QwtScaleMap& xMap, const QwtScaleMap& yMap, const QRectF& canvas) const
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

    Plane m_plane;
};

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

void addGamut(QwtPlot& plot, const ChartGamut& gamut, Plane plane, const GamutStyle& style, double markerSize)
{
    const QPen pen(style.ink, style.width, style.line);
    const Colour::Primaries& p = gamut.primaries;
    const QVector<QPointF> corners{toPlane(p.red, plane), toPlane(p.green, plane), toPlane(p.blue, plane),
                                   toPlane(p.red, plane)};
    const QSizeF size(markerSize, markerSize);
    const QPen markerPen(style.ink, 2.5);
    auto* triangle = new QwtPlotCurve(QwtText(printable(gamut.label), QwtText::PlainText));
    triangle->setSamples(corners);
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
    white->attach(&plot);
}

/// The outward direction of the locus at a point, on the drawing.
QPointF outward(std::size_t index, Plane plane)
{
    const QPointF before = toPlane(spectralLocus[index - 1].chromaticity, plane);
    const QPointF after = toPlane(spectralLocus[index + 1].chromaticity, plane);
    const QPointF along = after - before; // clockwise around the locus
    return QPointF(-along.y(), along.x()) / std::hypot(along.x(), along.y());
}

Qt::Alignment labelSide(const QPointF& direction)
{
    constexpr double slight = 0.35;
    Qt::Alignment side;
    if (std::abs(direction.x()) > slight)
        side |= direction.x() < 0.0 ? Qt::AlignLeft : Qt::AlignRight;
    if (std::abs(direction.y()) > slight)
        side |= direction.y() < 0.0 ? Qt::AlignBottom : Qt::AlignTop;
    return side;
}

/// Wavelengths stand outside the locus.
void addWavelengths(QwtPlot& plot, Plane plane)
{
    const QList<int> shown = plane == Plane::Xy ? QList<int>{460, 480, 490, 500, 510, 520, 540, 560, 580, 600, 620}
                                                : QList<int>{440, 460, 480, 490, 500, 510, 530, 560, 590, 620, 650};
    for (std::size_t i = 1; i + 1 < spectralLocus.size(); ++i) {
        const SpectralPoint& point = spectralLocus[i];
        if (!shown.contains(point.nanometres))
            continue;
        auto* marker = new QwtPlotMarker;
        marker->setValue(toPlane(point.chromaticity, plane));
        marker->setSymbol(new QwtSymbol(QwtSymbol::Ellipse, QColor(90, 90, 90), Qt::NoPen, QSize(6, 6)));
        QwtText label(QString::number(point.nanometres));
        label.setFont(chartFont(20));
        label.setColor(QColor(60, 60, 60));
        marker->setLabel(label);
        marker->setLabelAlignment(labelSide(outward(i, plane)));
        marker->setItemAttribute(QwtPlotItem::Legend, false);
        marker->attach(&plot);
    }
}

} // namespace

Chart chromaticityChart(const QString& title, Plane plane, const QList<ChartGamut>& gamuts)
{
    auto plot = std::make_unique<QwtPlot>();
    const bool isXy = plane == Plane::Xy;
    applyStyle(*plot, title, isXy ? QStringLiteral("x, CIE 1931") : QStringLiteral("u', CIE 1976"),
               isXy ? QStringLiteral("y, CIE 1931") : QStringLiteral("v', CIE 1976"));
    plot->setAxisScale(QwtPlot::xBottom, isXy ? -0.06 : -0.04, isXy ? 0.8 : 0.68, 0.1);
    plot->setAxisScale(QwtPlot::yLeft, isXy ? -0.02 : -0.02, isXy ? 0.9 : 0.64, 0.1);
    auto* locus = new LocusItem(plane);
    locus->setZ(-1.0);
    locus->attach(plot.get());
    addWavelengths(*plot, plane);
    constexpr double firstMarker = 20.0; // smaller ones lie on larger ones, so that gamuts that coincide are all seen
    for (int i = 0; i < gamuts.size(); ++i)
        addGamut(*plot, gamuts.at(i), plane, styleOf(i), std::max(8.0, firstMarker - 4.0 * i));
    return Chart(std::move(plot));
}

} // namespace Charts
