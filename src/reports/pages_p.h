#pragma once

#include <QString>

#include <vector>

class QPdfWriter;
class QTextDocument;

// A text that is laid out as one long column, cut into pages. The pages that QTextDocument makes cut rows in two, and a
// page break inside of a table may leave a page empty.

namespace Reports {

/// A part of the column, from one height to another, in the device's units.
struct Strip
{
    double top = 0.0;
    double bottom = 0.0;

    double height() const { return bottom - top; }
    bool operator==(const Strip& other) const { return top == other.top && bottom == other.bottom; }
};

/// What a page's end must not cut: a line of a paragraph, or a row. They lie one below the other, without gaps.
struct Piece
{
    Strip strip;
    bool staysWithNext = false; ///< a heading, a table's head
    Strip head = {};            ///< above it, where a page begins with it: that of its table
};

/// What stands on a page: a table's head or nothing, and below it the body.
struct Page
{
    Strip head;
    Strip body;
};

/// Pages of a height, as full as may be. None ends below a piece that stays with its next, unless there is nothing else
/// on it; one piece that is higher than a page goes over several.
std::vector<Page> pagesOf(const std::vector<Piece>& pieces, double height);

/// Draws a text, which is laid out in the device's width, on as many pages as it needs, at the foot of each a line with
/// the page's number.
void drawPages(QPdfWriter& device, const QTextDocument& text, const QString& foot);

} // namespace Reports
