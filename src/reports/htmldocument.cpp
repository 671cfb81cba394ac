#include "htmlstyle_p.h"
#include "markup_p.h"

#include <QRegularExpression>

namespace Reports {

namespace {

/// An opening tag from its beginning to its attributes' end, a text, and the closing tag.
QString element(const QString& opening, const QString& text)
{
    return QLatin1Char('<') + opening + QLatin1Char('>') + escaped(text) + QStringLiteral("</") +
           opening.section(QLatin1Char(' '), 0, 0) + QStringLiteral(">\n");
}

/// An SVG document as an element of HTML: without its declaration and name spaces, which HTML knows, as large as its
/// place, and with a name for those who do not see it; without a name it only adorns.
QString inlineSvg(const QString& svg, const QString& name)
{
    static const QRegularExpression opening(QStringLiteral("<svg\\b[^>]*\\bviewBox=\"([-+. 0-9]*)\"[^>]*>"));
    const QRegularExpressionMatch match = opening.match(svg);
    if (!match.hasMatch())
        return {};
    const QString role = name.isEmpty() ? QStringLiteral("aria-hidden=\"true")
                                        : QStringLiteral("role=\"img\" aria-label=\"") + escaped(name);
    return QStringLiteral("<svg ") + role + QStringLiteral("\" viewBox=\"") + match.captured(1) +
           QStringLiteral("\">") + svg.mid(match.capturedEnd());
}

/// A table that is too wide for its paper moves in a box of its own, which the keyboard reaches.
QString scrolled(const Table& table)
{
    return QStringLiteral("<div class=\"scroll\" tabindex=\"0\" role=\"region\" aria-label=\"Table\">\n") +
           table.toHtml() + QStringLiteral("</div>\n");
}

QString htmlOf(const Facts& facts)
{
    QString html = QStringLiteral("<table class=\"facts\">\n");
    for (const auto& [name, value] : facts.pairs)
        html += QStringLiteral("<tr>") + element(QStringLiteral("th scope=\"row\""), name) +
                element(QStringLiteral("td"), value) + QStringLiteral("</tr>\n");
    return html + QStringLiteral("</table>\n");
}

QString htmlOf(const Drawings& drawings)
{
    QString html = QStringLiteral("<div class=\"charts\">\n");
    for (const Drawing& chart : drawings.charts)
        html += QStringLiteral("<figure>\n") + inlineSvg(QString::fromUtf8(chart.svg), chart.caption) +
                element(QStringLiteral("figcaption"), chart.caption) + QStringLiteral("</figure>\n");
    return html + QStringLiteral("</div>\n");
}

QString htmlOf(const Verdict& verdict)
{
    return QStringLiteral("<div class=\"verdict %1\">").arg(className(verdict.mark)) +
           inlineSvg(markSvg(verdict.mark), wordFor(verdict.mark)) + QStringLiteral("<span><strong>") +
           escaped(verdict.result) + QStringLiteral("</strong>: ") + escaped(verdict.details) +
           QStringLiteral("</span></div>\n");
}

QString htmlOf(const Warning& warning)
{
    return QStringLiteral("<div class=\"warning\" role=\"note\">") + inlineSvg(warningSvg(), QString()) +
           QStringLiteral("<span><strong>Warning</strong>: ") + escaped(warning.text) +
           QStringLiteral("</span></div>\n");
}

QString htmlOf(const Block& block)
{
    return std::visit(
        Overloaded{
            [](const Heading& heading) {
                return QStringLiteral("</section>\n<section>\n") + element(QStringLiteral("h2"), heading.text);
            },
            [](const Paragraph& paragraph) { return element(QStringLiteral("p"), paragraph.text); },
            [](const Table& table) { return scrolled(table); },
            [](const FoldedTable& folded) {
                return QStringLiteral("<details>\n") + element(QStringLiteral("summary"), folded.summary) +
                       scrolled(folded.table) + QStringLiteral("</details>\n");
            },
            [](const auto& other) { return htmlOf(other); },
        },
        block);
}

/// What stands above the body.
QString headOf(const Document& document)
{
    return QStringLiteral("<head>\n<meta charset=\"utf-8\">\n"
                          "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
                          "<meta http-equiv=\"Content-Security-Policy\" "
                          "content=\"default-src 'none'; style-src 'unsafe-inline'; img-src data:\">\n"
                          "<meta name=\"generator\" content=\"") +
           escaped(document.generator) + QStringLiteral("\">\n") +
           element(QStringLiteral("title"), fullTitle(document)) + QStringLiteral("<style>") +
           QString::fromLatin1(htmlStyle) + QStringLiteral("</style>\n</head>\n");
}

} // namespace

QByteArray toHtml(const Document& document)
{
    QString html = QStringLiteral("<!DOCTYPE html>\n<html lang=\"en\">\n") + headOf(document) +
                   QStringLiteral("<body>\n<main>\n<section>\n") + htmlOf(document.verdict) +
                   element(QStringLiteral("h1"), document.title);
    for (const Block& block : document.blocks)
        html += htmlOf(block);
    return (html + QStringLiteral("</section>\n</main>\n</body>\n</html>\n")).toUtf8();
}

} // namespace Reports
