#include "chart.h"

#include "plotstyle_p.h"

#include <qwt_legend.h>
#include <qwt_painter.h>
#include <qwt_plot.h>
#include <qwt_plot_grid.h>
#include <qwt_plot_renderer.h>
#include <qwt_scale_draw.h>
#include <qwt_scale_map.h>
#include <qwt_scale_widget.h>
#include <qwt_text.h>

#include <QBuffer>
#include <QFontMetricsF>
#include <QImage>
#include <QPainter>
#include <QRegularExpression>
#include <QSvgGenerator>

#include <algorithm>

namespace Charts {

namespace {

constexpr int titlePixels = 26;
constexpr int tickPixels = 22;

constexpr qreal margin = 12.0;

/// Where a plot is laid out on the page, below what is above it.
QRectF areaOf(const QwtPlot& plot, int top)
{
    return QRectF(0, top, plot.width(), plot.height()).adjusted(margin, margin, -margin, -margin);
}

void render(const QwtPlotRenderer& renderer, const QwtPlot& plot, QPainter& painter, int top)
{
    // The renderer lays the plot out anew for the device and puts the layout back: nothing of the plot changes.
    renderer.render(const_cast<QwtPlot*>(&plot), &painter, areaOf(plot, top));
}

void setUp(QwtPlotRenderer& renderer)
{
    renderer.setDiscardFlags(QwtPlotRenderer::DiscardBackground | QwtPlotRenderer::DiscardCanvasBackground |
                             QwtPlotRenderer::DiscardCanvasFrame);
}

/// Numbers as in the coordinates beside points, whatever the user's language.
class NumberScale : public QwtScaleDraw
{
public:
    QwtText label(double value) const override { return QwtText(QString::number(value), QwtText::PlainText); }
};

/// An image of the plot's resolution: the renderer scales a plot to that of its device.
QImage paperFor(const QwtPlot& plot, const QSize& size)
{
    constexpr double inchesPerMetre = 1.0 / 0.0254;
    QImage paper(size, QImage::Format_RGB32);
    paper.setDotsPerMeterX(qRound(plot.logicalDpiX() * inchesPerMetre));
    paper.setDotsPerMeterY(qRound(plot.logicalDpiY() * inchesPerMetre));
    return paper;
}

/// Lays a plot out as for drawing, draws no canvas, and keeps how long the axes came out.
class AxisMeasure : public QwtPlotRenderer
{
public:
    void renderCanvas(const QwtPlot*, QPainter*, const QRectF&, const QwtScaleMap* maps) const override
    {
        m_size = QSizeF(maps[QwtPlot::xBottom].pDist(), maps[QwtPlot::yLeft].pDist());
    }

    QSizeF size() const { return m_size; }

private:
    mutable QSizeF m_size;
};

QSizeF axisLengths(const QwtPlot& plot)
{
    AxisMeasure renderer;
    setUp(renderer);
    QImage paper = paperFor(plot, QSize(1, 1));
    QPainter painter(&paper);
    render(renderer, plot, painter, 0);
    return renderer.size();
}

} // namespace

QString printable(QString label)
{
    for (QChar& c : label)
        if (c.category() == QChar::Other_Control || c.isSurrogate() || c.isNonCharacter())
            c = QChar::ReplacementCharacter;
    return label;
}

QFont chartFont(int pixels)
{
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setPixelSize(pixels);
    return font;
}

QString fitted(const QString& label, int pixels, const QString& rest)
{
    constexpr double room = 860.0; // of the page beside a legend's icon, of the canvas under the title
    const QFontMetricsF metrics(chartFont(pixels));
    return metrics.elidedText(printable(label), Qt::ElideMiddle, room - metrics.horizontalAdvance(rest)) + rest;
}

QwtText plainText(const QString& content, int pixels)
{
    QwtText result(content, QwtText::PlainText);
    result.setFont(chartFont(pixels));
    return result;
}

void styleAxis(QwtPlot& plot, QwtPlot::Axis axis, const QString& title)
{
    plot.enableAxis(axis);
    plot.setAxisScaleDraw(axis, new NumberScale);
    plot.setAxisTitle(axis, plainText(printable(title), labelPixels));
    plot.setAxisFont(axis, chartFont(tickPixels));
}

void applyStyle(QwtPlot& plot, int height, const QString& xTitle, const QString& yTitle)
{
    plot.resize(chartWidth, height);
    styleAxis(plot, QwtPlot::xBottom, xTitle);
    styleAxis(plot, QwtPlot::yLeft, yTitle);
    auto* grid = new QwtPlotGrid;
    grid->setPen(QColor(0, 0, 0, 40), 1.0);
    grid->attach(&plot);
}

void addTitle(QwtPlot& plot, const QString& title)
{
    plot.setTitle(plainText(fitted(title, titlePixels), titlePixels));
}

void addLegend(QwtPlot& plot)
{
    auto* legend = new QwtLegend;
    legend->setFont(chartFont(labelPixels));
    plot.insertLegend(legend, QwtPlot::BottomLegend);
}

void equalizeAxes(QwtPlot& plot, const QwtInterval& x, const QwtInterval& y, double step)
{
    QwtInterval wideX = x;
    QwtInterval wideY = y;
    constexpr int rounds = 3; // a longer axis may have a longer label at its end, which takes room from the canvas
    for (int round = 0; round < rounds; ++round) {
        plot.setAxisScale(QwtPlot::xBottom, wideX.minValue(), wideX.maxValue(), step);
        plot.setAxisScale(QwtPlot::yLeft, wideY.minValue(), wideY.maxValue(), step);
        plot.updateAxes();
        const QSizeF lengths = axisLengths(plot);
        const double pixels = std::min(lengths.width() / x.width(), lengths.height() / y.width()); // per unit
        wideX.setMaxValue(x.minValue() + lengths.width() / pixels);
        wideY.setMaxValue(y.minValue() + lengths.height() / pixels);
    }
}

Chart::Chart(std::vector<std::unique_ptr<QwtPlot>> plots) : m_plots(std::move(plots))
{
    for (const auto& plot : m_plots)
        plot->updateAxes();
}

Chart::~Chart() = default;

Chart::Chart(Chart&&) noexcept = default;

QSize Chart::size() const
{
    int height = 0;
    for (const auto& plot : m_plots)
        height += plot->height();
    return {chartWidth, height};
}

void Chart::draw(QPaintDevice& device) const
{
    QwtPainter::setRoundingAlignment(false); // whole pixels would bend straight lines
    QwtPainter::setPolylineSplitting(false); // it would begin each dash pattern anew every few points
    QPainter painter(&device);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillRect(QRect(QPoint(), size()), Qt::white);
    QwtPlotRenderer renderer;
    setUp(renderer);
    int top = 0;
    for (const auto& plot : m_plots) {
        render(renderer, *plot, painter, top);
        top += plot->height();
    }
}

QByteArray Chart::toSvg() const
{
    const QwtPlot& first = *m_plots.front();
    QBuffer buffer;
    QSvgGenerator generator;
    generator.setOutputDevice(&buffer);
    generator.setResolution(first.logicalDpiX()); // otherwise texts are scaled down to 72 dpi
    generator.setSize(size());
    generator.setViewBox(QRect(QPoint(), size()));
    generator.setTitle(first.title().text().toHtmlEscaped()); // it writes the title as it is
    draw(generator);
    // A blank title, which keeps room, would be a path without points in PDF.
    static const QRegularExpression blankText(QStringLiteral("<text [^>]*>\\s*</text>"));
    return QString::fromUtf8(buffer.data()).remove(blankText).toUtf8();
}

QByteArray Chart::toPng() const
{
    QImage image = paperFor(*m_plots.front(), size());
    draw(image);
    QBuffer buffer;
    image.save(&buffer, "PNG");
    return buffer.data();
}

QByteArray Chart::toFormat(const QString& suffix) const
{
    if (suffix == QLatin1String("svg"))
        return toSvg();
    return suffix == QLatin1String("png") ? toPng() : QByteArray();
}

} // namespace Charts
