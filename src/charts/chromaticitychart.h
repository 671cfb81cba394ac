#pragma once

#include <charts/chart.h>
#include <charts/plane.h>
#include <suite/colour/primaries.h>

#include <QList>

namespace Charts {

/// One triangle with its white.
struct ChartGamut
{
    QString label; ///< in the legend
    Colour::Primaries primaries;
    QString remark; ///< in the legend after the label, e.g. what it covers; may be empty
};

/// Triangles that are many, told apart from gamuts only.
struct ChartOutlines
{
    QString label; ///< in the legend, once for all of them
    QList<Colour::Primaries> triangles;
};

/// The chromaticity diagram, one unit of either axis as long as one of the other: the spectral locus, filled with the
/// colours of a screen, with wavelengths in nanometres; the Planckian locus with some temperatures in kelvin; D65; and
/// up to five gamuts, each with a line, a marker and a colour of its own. A gamut's corners have their coordinates in
/// the plane; those that lie less than a pixel from another's are marked once, with the earlier gamut's. Outlines are
/// thin lines under the gamuts, without marks and figures.
Chart chromaticityChart(const QString& title, Plane plane, const QList<ChartGamut>& gamuts,
                        const ChartOutlines& outlines = {});

} // namespace Charts
