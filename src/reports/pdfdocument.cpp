#include "markup_p.h"
#include "pages_p.h"

#include <QAbstractTextDocumentLayout>
#include <QBuffer>
#include <QFontMetrics>
#include <QPainter>
#include <QPdfWriter>
#include <QSvgRenderer>
#include <QTextDocument>

namespace Reports {

namespace {

constexpr double margin = 16.0;  // of the page, millimetres
constexpr int resolution = 1200; // of the device that texts are laid out for, dots per inch
constexpr double dotsPerPixel = resolution / 96.0;
constexpr int chartWidth = 280; // less than half of the text's width, in pixels of 1/96 inch

const char style[] = R"(
h1 { font-size: 17pt; margin-top: 8px; margin-bottom: 8px; }
h2 { font-size: 12pt; margin-top: 18px; margin-bottom: 4px; }
h3 { font-size: 9pt; margin-top: 10px; margin-bottom: 2px; }
p { margin-top: 4px; margin-bottom: 4px; }
table { border-collapse: collapse; margin-top: 4px; margin-bottom: 8px; }
td, th { padding: 3px 14px 3px 0px; text-align: left; border-bottom: 1px solid #999999; }
th { vertical-align: bottom; color: #3d444b; }
td.number, th.number { text-align: right; }
td.name { color: #3d444b; }
td.boxed { padding: 6px 6px 6px 0px; vertical-align: middle; }
td.chart { border: 0px; padding: 2px 8px 2px 0px; }
)";

// Short texts of tables keep to one line. A cell with more than plain text that overrides this would be broken within
// words; only those in a <tbody> are sure to have none.
const char shortLines[] = R"(
thead th, tbody td { white-space: nowrap; }
tbody td.long { white-space: normal; }
)";

/// Paints the images of a text: each is an SVG document, called by its place in the list.
class Images : public QObject, public QTextObjectInterface
{
    Q_OBJECT
    Q_INTERFACES(QTextObjectInterface)

public:
    /// Markup of an image so many pixels wide.
    QString add(const QByteArray& svg, int width)
    {
        m_svgs.push_back(svg);
        const QSizeF size = QSvgRenderer(svg).viewBoxF().size();
        const int height = size.isEmpty() ? 1 : qRound(width * size.height() / size.width());
        return QStringLiteral("<img src=\"%1\" width=\"%2\" height=\"%3\">")
            .arg(m_svgs.size() - 1)
            .arg(width)
            .arg(height);
    }

    QSizeF intrinsicSize(QTextDocument*, int, const QTextFormat& format) override
    {
        const QTextImageFormat image = format.toImageFormat();
        return QSizeF(image.width(), image.height()) * dotsPerPixel;
    }

    void drawObject(QPainter* painter, const QRectF& place, QTextDocument*, int, const QTextFormat& format) override
    {
        const auto index = static_cast<std::size_t>(format.toImageFormat().name().toInt());
        // The PDF engine does not clip images.
        if (index < m_svgs.size() && painter->clipBoundingRect().intersects(place))
            QSvgRenderer(m_svgs[index]).render(painter, place);
    }

private:
    std::vector<QByteArray> m_svgs;
};

QString element(const QString& tag, const QString& text)
{
    return QStringLiteral("<%1>%2</%1>\n").arg(tag, escaped(text));
}

QString inkOf(Mark mark)
{
    switch (mark) {
    case Mark::Good:
        return QStringLiteral("#05603a");
    case Mark::Bad:
        return QStringLiteral("#8f1d14");
    case Mark::Open:
        break;
    }
    return QStringLiteral("#5a4100");
}

/// A box with a sign on its left. The text is markup.
QString boxed(const QString& sign, const QString& ink, const QString& text)
{
    return QStringLiteral("<table width=\"100%\"><tr><td class=\"boxed\" width=\"1\" style=\"border: 2px solid %1; "
                          "border-right: 0px; padding-left: 6px\">%2</td><td class=\"boxed\" style=\"color: %1; "
                          "border: 2px solid %1; border-left: 0px\">%3</td></tr></table>\n")
        .arg(ink, sign, text);
}

/// Blocks as the markup that QTextDocument reads.
class Markup
{
public:
    explicit Markup(Images& images) : m_images(images) {}

    QString operator()(const Heading& heading) const { return element(QStringLiteral("h2"), heading.text); }
    QString operator()(const Paragraph& paragraph) const { return element(QStringLiteral("p"), paragraph.text); }
    QString operator()(const Table& table) const { return table.toHtml(); }

    QString operator()(const FoldedTable& folded) const
    {
        return element(QStringLiteral("h3"), folded.summary) + folded.table.toHtml();
    }

    QString operator()(const Verdict& verdict) const
    {
        const QString ink = inkOf(verdict.mark);
        return boxed(m_images.add(markSvg(verdict.mark, ink).toUtf8(), 32), ink,
                     QStringLiteral("<span style=\"font-size: 13pt\"><b>") + escaped(verdict.result) +
                         QStringLiteral("</b>: ") + escaped(verdict.details) + QStringLiteral("</span>"));
    }

    QString operator()(const Warning& warning) const
    {
        const QString ink = inkOf(Mark::Open);
        return boxed(m_images.add(warningSvg(ink).toUtf8(), 18), ink,
                     QStringLiteral("<b>Warning</b>: ") + escaped(warning.text));
    }

    QString operator()(const Facts& facts) const
    {
        QString html = QStringLiteral("<table>\n");
        for (const auto& [name, value] : facts.pairs)
            html += QStringLiteral("<tr><td class=\"name\">") + escaped(name) + QStringLiteral("</td><td>") +
                    escaped(value) + QStringLiteral("</td></tr>\n");
        return html + QStringLiteral("</table>\n");
    }

    QString operator()(const Drawings& drawings) const
    {
        QString html = QStringLiteral("<table>\n");
        for (std::size_t i = 0; i < drawings.charts.size(); ++i) {
            const Drawing& chart = drawings.charts[i];
            html += (i % 2 == 0 ? QStringLiteral("<tr>") : QString()) + QStringLiteral("<td class=\"chart\">") +
                    m_images.add(chart.svg, chartWidth) + QStringLiteral("<br>") + escaped(chart.caption) +
                    QStringLiteral("</td>\n") + (i % 2 == 1 ? QStringLiteral("</tr>") : QString());
        }
        return html + QStringLiteral("</table>\n");
    }

private:
    Images& m_images;
};

QString markupOf(const Document& document, Images& images)
{
    const Markup markup(images);
    QString html = markup(document.verdict) + element(QStringLiteral("h1"), document.title);
    for (const Block& block : document.blocks)
        html += std::visit(markup, block);
    return html;
}

/// A font for documents: the first of these that is there, else any without serifs.
QFont documentFont()
{
    QFont font;
    font.setFamilies({QStringLiteral("Liberation Sans"), QStringLiteral("Helvetica Neue"), QStringLiteral("Arial"),
                      QStringLiteral("DejaVu Sans")});
    font.setStyleHint(QFont::SansSerif);
    font.setPointSizeF(9.0);
    return font;
}

/// Lays a text out in a column; if a table is too wide for it, with tables that break all their texts.
void layOut(QTextDocument& text, const QString& html, double width)
{
    for (const char* lines : {shortLines, ""}) {
        text.setDefaultStyleSheet(QString::fromLatin1(style) + QString::fromLatin1(lines));
        text.setHtml(html);
        text.setTextWidth(width);
        if (text.size().width() <= width)
            return;
    }
}

} // namespace

Common::Result<QByteArray> toPdf(const Document& document)
{
    const QFont font = documentFont();
    if (!QFontMetrics(font).inFont(QLatin1Char('A'))) // there are names of fonts even without any
        return Common::Fault{Common::Fault::Kind::Unavailable,
                             QStringLiteral("PDF"),
                             {},
                             QStringLiteral("no font is installed"),
                             QStringLiteral("install one, e.g. DejaVu")};
    QBuffer buffer;
    QPdfWriter writer(&buffer);
    buffer.open(QIODevice::WriteOnly);
    writer.setTitle(fullTitle(document));
    writer.setCreator(document.generator);
    writer.setResolution(resolution);
    writer.setPageSize(QPageSize(QPageSize::A4));
    writer.setPageMargins(QMarginsF(margin, margin, margin, margin), QPageLayout::Millimeter);

    Images images;
    QTextDocument text;
    text.documentLayout()->setPaintDevice(&writer);
    text.documentLayout()->registerHandler(QTextFormat::ImageObject, &images);
    text.setDocumentMargin(0.0);
    text.setDefaultFont(font);
    layOut(text, markupOf(document, images), writer.width());
    drawPages(writer, text, fullTitle(document));
    return buffer.data();
}

} // namespace Reports

#include "pdfdocument.moc"
