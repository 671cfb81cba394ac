#pragma once

#include <calibration/run.h>
#include <calibration/verification.h>
#include <reports/table.h>

namespace Reports {

QString toText(const Calibration::RunResult& result);
/// The figures, "destination", "simulated", "verdict", "devices", "results" and "files".
QJsonObject toJson(const Calibration::RunResult& result);
/// A self-contained HTML document; `charts` are SVG documents.
QByteArray toHtml(const Calibration::RunResult& result, const QList<QByteArray>& charts);

/// Whether a file begins as our HTML reports do.
bool isReport(const QString& path);

/// Where a calibration's charts and report go: three SVG files in its folder, and `html`.
struct ReportFiles
{
    QString chartXy;
    QString chartUv;
    QString chartGray;
    QString html;

    QStringList all() const { return {chartXy, chartUv, chartGray, html}; }
};

/// Draws the charts and writes them with the report; their paths are added to the result's files. Needs a
/// QApplication. Faults: cannot create; input/output.
Common::Result<void> writeReport(Calibration::RunResult& result, const Calibration::Content& content,
                                 const ReportFiles& files);

/// "passed", "sentence" and what they are made of.
QJsonObject toJson(const Calibration::Verdict& verdict);

QString toText(const Calibration::Verification& verification);
/// Coverage, "simulated", "verdict", "devices", and "shown": the figures of equal integers, once each.
QJsonObject toJson(const Calibration::Verification& verification);

} // namespace Reports
