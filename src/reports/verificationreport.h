#pragma once

#include <calibration/verification.h>
#include <reports/table.h>

#include <QJsonObject>

namespace Reports {

/// "passed", "sentence" and what they are made of.
QJsonObject toJson(const Calibration::Verdict& verdict);

QString toText(const Calibration::Verification& verification);
/// Coverage, "simulated", "verdict", "devices", and "shown": the figures of equal integers, once each.
QJsonObject toJson(const Calibration::Verification& verification);

/// What equal integers show, and who holds them.
struct HeldFigures
{
    std::shared_ptr<const Calibration::Figures> figures;
    int cabinets = 0;
    QString devices; ///< theirs: "left, right", or where they are many "12 devices"
    Calibration::Known known = Calibration::Known::Computed; ///< how it is known that they do, at the weakest
};

/// How figures of held integers are known: "computed, integers read back".
QString heldWord(Calibration::Known known);

/// The figures of all cabinets that show light, those of equal integers once.
std::vector<HeldFigures> heldFigures(const Calibration::Verification& verification);

} // namespace Reports
