#pragma once

#include <calibration/additivity.h>
#include <reports/table.h>

#include <QJsonObject>

namespace Reports {

/// Mean and spread of each patch that was read.
Table patchTable(const Calibration::PatchTable& patches);

/// What a file says of the measuring, as far as it does.
Table detailTable(const Calibration::Measurement& measurement);

/// A table of colours: x, y, cd/m2, correlated temperature in kelvin with its Duv, and how each is known.
Table colourTable();
/// Adds one to it. A luminance of 0 is not known; a temperature has a white only.
void addColour(Table& table, const QString& name, const Model::LXY& colour, bool isWhite, const QString& known);
/// The four points of a gamut in such a table.
Table pointTable(const Model::ColorGamutInfo& gamut, const QString& known);

/// "measured" and "sum", each "x", "y" and "luminance"; "luminance_difference" (a fraction), "duv_prime",
/// "contradiction" and "white", which of the two the correction is computed from. Undefined where luminances are not
/// known.
QJsonValue additivityJson(const Calibration::Measurement& measurement, Calibration::WhiteSource white);

/// "Warning: ..." for each, with an empty line behind them; empty for none.
QString warningLines(const QStringList& warnings);

} // namespace Reports
