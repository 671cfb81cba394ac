#pragma once

#include <calibration/run.h>
#include <reports/document.h>

#include <QDateTime>

namespace Reports {

/// What a host adds to a calibration's report.
struct ReportDetails
{
    QString generator;                              ///< program and version
    QDateTime time;                                 ///< of the report
    std::vector<std::pair<QString, QString>> notes; ///< operator, site and what else the user says, with its name
};

/// The report of a calibration: verdict first, then what was measured, wanted, computed, drawn, done on every device,
/// and from which files. `charts` were drawn from the same result.
Document documentOf(const Calibration::RunResult& result, const Calibration::Content& content,
                    const ReportDetails& details, const Drawings& charts);

} // namespace Reports
