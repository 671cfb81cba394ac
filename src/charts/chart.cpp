#include "chart.h"

#include "plotstyle_p.h"

#include <QBuffer>
#include <QImage>
#include <QPainter>
#include <QSvgGenerator>
#include <qwt_legend.h>
#include <qwt_painter.h>
#include <qwt_plot.h>
#include <qwt_plot_grid.h>
#include <qwt_plot_renderer.h>
#include <qwt_scale_widget.h>
#include <qwt_text.h>

namespace Charts {

namespace {

constexpr int titlePixels = 26;
constexpr int labelPixels = 24;
constexpr int tickPixels = 22;

void draw(const QwtPlot& plot, QPaintDevice& device)
{
    QwtPainter::setPolylineSplitting(false); // it would begin each dash pattern anew every few points
    QPainter painter(&device);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillRect(QRect(0, 0, chartWidth, chartHeight), Qt::white);
    QwtPlotRenderer renderer;
    renderer.setDiscardFlags(QwtPlotRenderer::DiscardBackground | QwtPlotRenderer::DiscardCanvasBackground |
                             QwtPlotRenderer::DiscardCanvasFrame);
    constexpr qreal margin = 12.0;
    // The renderer lays the plot out anew for the device and puts the layout back: nothing of the plot changes.
    renderer.render(const_cast<QwtPlot*>(&plot), &painter,
                    QRectF(0, 0, chartWidth, chartHeight).adjusted(margin, margin, -margin, -margin));
}

QwtText text(const QString& content, int pixels)
{
    QwtText result(content, QwtText::PlainText);
    result.setFont(chartFont(pixels));
    return result;
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

void applyStyle(QwtPlot& plot, const QString& title, const QString& xTitle, const QString& yTitle)
{
    plot.resize(chartWidth, chartHeight);
    plot.setTitle(text(printable(title), titlePixels));
    for (const auto& [axis, axisTitle] : {std::pair(QwtPlot::xBottom, xTitle), std::pair(QwtPlot::yLeft, yTitle)}) {
        plot.setAxisTitle(axis, text(axisTitle, labelPixels));
        plot.setAxisFont(axis, chartFont(tickPixels));
    }
    auto* grid = new QwtPlotGrid;
    grid->setPen(QColor(0, 0, 0, 40), 1.0);
    grid->attach(&plot);
    auto* legend = new QwtLegend;
    legend->setFont(chartFont(labelPixels));
    legend->setMaxColumns(1);
    plot.insertLegend(legend, QwtPlot::BottomLegend);
}

Chart::Chart(std::unique_ptr<QwtPlot> plot) : m_plot(std::move(plot))
{
    m_plot->updateAxes();
}

Chart::~Chart() = default;

Chart::Chart(Chart&&) noexcept = default;

QByteArray Chart::toSvg() const
{
    QBuffer buffer;
    QSvgGenerator generator;
    generator.setOutputDevice(&buffer);
    generator.setResolution(m_plot->logicalDpiX()); // otherwise texts are scaled down to 72 dpi
    generator.setSize(QSize(chartWidth, chartHeight));
    generator.setViewBox(QRect(0, 0, chartWidth, chartHeight));
    generator.setTitle(m_plot->title().text().toHtmlEscaped()); // it writes the title as it is
    draw(*m_plot, generator);
    return buffer.data();
}

QByteArray Chart::toPng() const
{
    QImage image(chartWidth, chartHeight, QImage::Format_RGB32);
    draw(*m_plot, image);
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
