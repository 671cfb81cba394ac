#pragma once

#include <qwt_interval.h>
#include <qwt_plot.h>
#include <qwt_text.h>

#include <QColor>
#include <QFont>
#include <QString>

// What all charts share. Sizes are for a drawing of chartWidth pixels that stays readable at half of it.

namespace Charts {

inline constexpr int chartWidth = 1000;
inline constexpr int chartHeight = 1080;
inline constexpr int labelPixels = 24; // of axis titles and legends

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

/// A label, printable, of so many pixels, and what follows it: as wide as the page's contents at most, for which the
/// label is shortened in its middle.
QString fitted(const QString& label, int pixels, const QString& rest = {});

/// A text of so many pixels, taken as it is.
QwtText plainText(const QString& content, int pixels);

/// Title and font of an axis, which is switched on.
void styleAxis(QwtPlot& plot, QwtPlot::Axis axis, const QString& title);

/// Both axes and a grid, on white paper of chartWidth and a height.
void applyStyle(QwtPlot& plot, int height, const QString& xTitle, const QString& yTitle);

void addTitle(QwtPlot& plot, const QString& title);
/// The legend below the canvas, as many entries in a row as fit.
void addLegend(QwtPlot& plot);

/// Makes one unit of x as long as one of y: both axes begin where they should, and one of them goes on beyond its end
/// until it fills the canvas. All that takes room (title, legend, fonts) is there before.
void equalizeAxes(QwtPlot& plot, const QwtInterval& x, const QwtInterval& y, double step);

} // namespace Charts
