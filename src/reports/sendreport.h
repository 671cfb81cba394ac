#pragma once

#include <calibration/step.h>
#include <reports/table.h>

#include <QJsonObject>

namespace Reports {

/// A row per outcome.
Table outcomeTable(const std::vector<Calibration::Outcome>& outcomes);

/// What was sent, what became of it, and what the cabinets held before and hold now.
struct SendResult
{
    std::vector<Calibration::Step> steps;
    std::vector<Calibration::Outcome> outcomes;
    Calibration::CabinetStates before;
    Calibration::CabinetStates now;
    bool isSimulated = false; ///< the cabinets are
    bool isRead = true;       ///< the cabinets could be asked
};

QString toText(const SendResult& result);
/// "simulated", "known", "results" and "cabinets".
QJsonObject toJson(const SendResult& result);

} // namespace Reports
