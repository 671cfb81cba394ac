#pragma once

#include <calibration/matching.h>
#include <charts/chromaticitychart.h>

#include <QJsonObject>

namespace Reports {

/// What holds a matched wall, in sentences that an engineer acts on: which group limits the luminance, which hold
/// corners and edges of a common triangle, each with what the wall would be without it. Empty for one group.
QStringList limitsOf(const Calibration::Match& match);

/// Target, limits, groups and seams. Of the seams, worst first, text has ten and JSON a thousand.
QString toText(const Calibration::Matching& matching, const std::vector<Calibration::GroupSeam>& seams);
/// "target", "luminance", "limits", "groups", "seams" and "warnings"; luminances in cd/m2, areas in CIE 1976 u'v',
/// gains and coverage as fractions.
QJsonObject toJson(const Calibration::Matching& matching, const std::vector<Calibration::GroupSeam>& seams);

/// The target's triangle and the groups': each by itself where they are few, else as outlines.
Charts::Chart matchChart(const Calibration::Matching& matching, Charts::Plane plane);

} // namespace Reports
