#pragma once

#include <calibration/figures.h>
#include <charts/chromaticitychart.h>
#include <charts/graychart.h>
#include <reports/table.h>
#include <suite/action/cabinetreader.h>

#include <QJsonObject>

namespace Reports {

/// Target and reached chromaticity, difference and reach of red, green, blue and white.
Table reachTable(const Calibration::Figures& figures);

/// The figures that stand alone, each with its name.
Table figuresTable(const Calibration::Figures& figures);

/// Area ratio and coverage in xy and u'v'.
Table coverageTable(const Colour::Coverage& xy, const Colour::Coverage& uv);

/// "area_ratio_xy", "coverage_xy", "area_ratio_uv", "coverage_uv": fractions.
QJsonObject coverageJson(const Colour::Coverage& xy, const Colour::Coverage& uv);

/// "measured", "target", "coefficients", coverage and area ratio, "light_kept" and "reached" by point.
QJsonObject toJson(const Calibration::Figures& figures);

QJsonArray toJson(const Colour::Coefficients& coefficients);

/// Coefficients as three lines of three.
QString coefficientLines(const Colour::Coefficients& coefficients);

/// Measured, target and reached gamut of a correction.
Charts::Chart correctionChart(const Calibration::Figures& figures, Charts::Plane plane);

/// The columns of a gray table; `name` is the input's.
Charts::Chart grayTableChart(const Action::GrayTable& table, const QString& name);

} // namespace Reports
