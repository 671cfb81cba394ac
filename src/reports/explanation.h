#pragma once

#include <calibration/figures.h>

#include <QJsonArray>

namespace Reports {

/// One figure of a correction: what it is, how it is computed, where the formula stands, and its value.
struct Explanation
{
    QString title;
    QString formula;
    QString source;
    QString value; ///< lines
};

/// Every figure of a correction, in the order in which they are computed.
std::vector<Explanation> explain(const Calibration::Figures& figures);

QString toText(const std::vector<Explanation>& explanations);
/// "figure", "formula" and "source" of each.
QJsonArray toJson(const std::vector<Explanation>& explanations);

} // namespace Reports
