#include "pages_p.h"

#include <QAbstractTextDocumentLayout>
#include <QPainter>
#include <QPdfWriter>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextLayout>
#include <QTextTable>

#include <algorithm>

namespace Reports {

namespace {

double topOf(const QTextBlock& block)
{
    return block.document()->documentLayout()->blockBoundingRect(block).top();
}

/// Where a row begins: its highest cell's text, and padding and line above it, which formats give in pixels.
double topOf(const QTextTable& table, int row)
{
    constexpr double pixelsPerInch = 96.0;
    const double scale = table.document()->documentLayout()->paintDevice()->logicalDpiY() / pixelsPerInch;
    double top = topOf(table.cellAt(row, 0).firstCursorPosition().block());
    for (int column = 0; column < table.columns(); ++column) {
        const QTextTableCell cell = table.cellAt(row, column);
        const QTextTableCellFormat format = cell.format().toTableCellFormat();
        top = std::min(top,
                       topOf(cell.firstCursorPosition().block()) - (format.topPadding() + format.topBorder()) * scale);
    }
    return top;
}

/// Where the page ends that begins with a piece: behind the last one that fits and need not stay with its next. At
/// least one piece stands on a page, whatever its height.
std::size_t endOfPage(const std::vector<Piece>& pieces, std::size_t first, double room)
{
    const double floor = pieces[first].strip.top + room;
    std::size_t end = first + 1;
    while (end < pieces.size() && pieces[end].strip.bottom <= floor)
        ++end;
    std::size_t last = end;
    while (last < pieces.size() && last > first && pieces[last - 1].staysWithNext)
        --last;
    return last > first ? last : end; // headings and nothing else
}

std::vector<Piece> piecesOf(const QTextDocument& text)
{
    std::vector<Piece> pieces;
    for (QTextBlock block = text.begin(); block.isValid(); block = block.next()) {
        const QTextTable* table = QTextCursor(block).currentTable();
        if (!table && block.text().isEmpty())
            continue; // what Qt puts behind a table, over its last line: it goes with the last row
        if (!table) {
            const bool isHeading = block.blockFormat().headingLevel() > 0;
            for (int line = 0; line < block.layout()->lineCount(); ++line)
                pieces.push_back({{topOf(block) + block.layout()->lineAt(line).y(), 0.0}, isHeading});
            continue;
        }
        const QTextTableCell cell = table->cellAt(block.position());
        if (cell.column() > 0 || cell.firstCursorPosition().block() != block)
            continue;
        const int heads = table->format().headerRowCount();
        Piece piece{{topOf(*table, cell.row()), 0.0}, cell.row() < heads};
        if (cell.row() > heads && heads > 0)
            piece.head = {topOf(*table, 0), topOf(*table, heads)};
        pieces.push_back(piece);
    }
    for (std::size_t i = 0; i < pieces.size(); ++i)
        pieces[i].strip.bottom = i + 1 < pieces.size() ? pieces[i + 1].strip.top : text.size().height();
    return pieces;
}

void drawStrip(QPainter& painter, const QTextDocument& text, const Strip& strip, double y)
{
    QAbstractTextDocumentLayout::PaintContext context;
    context.clip = QRectF(0.0, strip.top, text.size().width(), strip.height());
    context.palette.setColor(QPalette::Text, Qt::black);
    painter.save();
    painter.translate(0.0, y - strip.top);
    painter.setClipRect(context.clip);
    text.documentLayout()->draw(&painter, context);
    painter.restore();
}

} // namespace

std::vector<Page> pagesOf(const std::vector<Piece>& pieces, double height)
{
    std::vector<Page> pages;
    for (std::size_t first = 0; first < pieces.size();) {
        const Strip head = pieces[first].head;
        const double room = height - head.height();
        const std::size_t end = endOfPage(pieces, first, room);
        Strip rest{pieces[first].strip.top, pieces[end - 1].strip.bottom};
        for (; rest.height() > room; rest.top += room) // a row that is longer than a page
            pages.push_back({head, {rest.top, rest.top + room}});
        pages.push_back({head, rest});
        first = end;
    }
    return pages;
}

void drawPages(QPdfWriter& device, const QTextDocument& text, const QString& foot)
{
    QPainter painter(&device);
    painter.setFont(text.defaultFont());
    const QRectF paper(0.0, 0.0, device.width(), device.height());
    const QFontMetrics metrics = painter.fontMetrics();
    const QString shortFoot = metrics.elidedText(foot, Qt::ElideRight, device.width() * 4 / 5); // beside it the number
    const double footHeight = 2.0 * metrics.height();
    const std::vector<Page> pages = pagesOf(piecesOf(text), paper.height() - footHeight);
    for (std::size_t i = 0; i < pages.size(); ++i) {
        if (i > 0)
            device.newPage();
        drawStrip(painter, text, pages[i].head, 0.0);
        drawStrip(painter, text, pages[i].body, pages[i].head.height());
        painter.drawText(paper, Qt::AlignLeft | Qt::AlignBottom, shortFoot);
        painter.drawText(paper, Qt::AlignRight | Qt::AlignBottom,
                         QStringLiteral("%1 / %2").arg(i + 1).arg(pages.size()));
    }
}

} // namespace Reports
