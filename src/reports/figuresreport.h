#pragma once

#include <calibration/figures.h>
#include <charts/chromaticitychart.h>
#include <charts/graychart.h>
#include <reports/table.h>
#include <suite/action/cabinetreader.h>

#include <QJsonObject>

namespace Reports {

/// Target and shown chromaticity of the judged contents, and three CIEDE2000: of what is shown from the target, of the
/// nearest colour that the LEDs can show from the target, and of what is shown from that.
/// `known` says how what is shown is known.
Table reachTable(const Calibration::Figures& figures, const QString& known);

/// The colours that the LEDs cannot show and how far they are, as a sentence.
QString reachText(const Calibration::Figures& figures);

/// The figures that stand alone, each with its name and how it is known.
Table figuresTable(const Calibration::Figures& figures);

/// Area ratio and coverage in xy and u'v'.
Table coverageTable(const Colour::Coverage& xy, const Colour::Coverage& uv);

/// "area_ratio_xy", "coverage_xy", "area_ratio_uv", "coverage_uv": fractions.
QJsonObject coverageJson(const Colour::Coverage& xy, const Colour::Coverage& uv);

/// "measured", "target", "coefficients", coverage and area ratio, "light_kept", how they are
/// "known", and "reached" by point.
QJsonObject toJson(const Calibration::Figures& figures);

QJsonArray toJson(const Colour::Coefficients& coefficients);

/// Coefficients with a blank between them.
QString integersText(const Colour::Coefficients& coefficients);

/// Coefficients as three lines of three.
QString coefficientLines(const Colour::Coefficients& coefficients);

/// Measured, target and reached gamut of a correction.
Charts::Chart correctionChart(const Calibration::Figures& figures, Charts::Plane plane);

/// The columns of a gray table; `name` is the input's.
Charts::Chart grayTableChart(const Action::GrayTable& table, const QString& name);

} // namespace Reports
