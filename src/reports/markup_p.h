#pragma once

#include "document.h"

#include <QSizeF>

// What HTML and PDF share: texts as markup, and the shapes.

namespace Reports {

/// A text on one line, without characters that control anything.
QString printable(QString text);

/// A printable text that is nothing but text in markup, attributes included.
QString escaped(const QString& text);

/// "good", "bad", "open": how style sheets call it.
QString className(Mark mark);

/// What stands for a mark where it cannot be seen.
QString wordFor(Mark mark);

/// A drawing of a mark, 24 units wide and high, an SVG document. Without a colour it has that of the text around it. @{
QString markSvg(Mark mark, const QString& colour = QStringLiteral("currentColor"));
QString warningSvg(const QString& colour = QStringLiteral("currentColor"));
/// @}

/// "PASSED: Calibration of left wall", printable.
QString fullTitle(const Document& document);

/// For std::visit: one function for each kind of block.
template <typename... Functions>
struct Overloaded : Functions...
{
    using Functions::operator()...;
};
template <typename... Functions>
Overloaded(Functions...) -> Overloaded<Functions...>;

} // namespace Reports
