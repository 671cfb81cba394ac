#pragma once

#include "gamutfigures.h"
#include "graytablefile.h"

#include <charts/chromaticitychart.h>

/// Measured, target and reached gamut of a correction.
Charts::Chart correctionChart(const GamutFigures& figures, Charts::Plane plane);

/// The columns of a gray table.
Charts::Chart grayTableChart(const GrayTableFile& table, const QString& name);

/// Writes a chart as SVG or PNG, by the file's suffix. Throws CommandError: usage for another suffix; as
/// writeOutputFile.
void writeChart(const Charts::Chart& chart, const QString& path);

/// Throws CommandError, usage, for a file name that is not .svg or .png.
void requireChartSuffix(const QString& path);
