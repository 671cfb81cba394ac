#pragma once

#include <QColor>
#include <QFont>
#include <QString>

class QwtPlot;

// What all charts share. Sizes are for a drawing of chartWidth pixels that stays readable at half of it.

namespace Charts {

inline constexpr int chartWidth = 1000;
inline constexpr int chartHeight = 940;

// Colours that colour-blind readers tell apart (Okabe and Ito 2008).
inline const QColor blackInk(0, 0, 0);
inline const QColor blueInk(0, 114, 178);
inline const QColor greenInk(0, 158, 115);
inline const QColor vermilionInk(213, 94, 0);
inline const QColor purpleInk(204, 121, 167);

/// A text without what an XML document may not hold.
QString printable(QString label);

/// A font of so many pixels.
QFont chartFont(int pixels);

/// Title, axes, grid, legend below the canvas and white paper.
void applyStyle(QwtPlot& plot, const QString& title, const QString& xTitle, const QString& yTitle);

} // namespace Charts
