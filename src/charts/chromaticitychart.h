#pragma once

#include <charts/chart.h>
#include <suite/colour/primaries.h>

#include <QList>

namespace Charts {

enum class Plane { Xy, UvPrime };

/// One triangle with its white.
struct ChartGamut
{
    QString label; ///< in the legend
    Colour::Primaries primaries;
};

/// The chromaticity diagram: the spectral locus, filled with the colours of a screen, with wavelengths in nanometres,
/// and up to five gamuts, each with a line, a marker and a colour of its own.
Chart chromaticityChart(const QString& title, Plane plane, const QList<ChartGamut>& gamuts);

} // namespace Charts
