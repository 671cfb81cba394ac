#pragma once

#include <calibration/run.h>
#include <reports/calibrationdocument.h>
#include <reports/table.h>

namespace Reports {

/// "Calibration of left wall"
QString titleOf(const Calibration::RunResult& result);

/// A row per device: how many of its steps were answered, what came of it and how that is known. `resumed` are those
/// that an earlier run had served.
Table deviceTable(const std::vector<Calibration::DeviceRecord>& records, const QStringList& resumed);

QString toText(const Calibration::RunResult& result, const Calibration::Content& content);
/// The figures, "additivity", "destination", "simulated", "verdict", "devices", "results" and "files".
QJsonObject toJson(const Calibration::RunResult& result, const Calibration::Content& content);

/// Whether a file begins as our reports do, HTML or PDF.
bool isReport(const QString& path);

/// Where a calibration's charts and report go.
struct ReportFiles
{
    QStringList charts; ///< three SVG files: CIE 1931, CIE 1976, gray table
    QString html;
    QString pdf; ///< empty: none

    QStringList all() const { return charts + (pdf.isEmpty() ? QStringList{html} : QStringList{html, pdf}); }
};

/// Draws the charts and writes them with the report; their paths are added to the result's files. Needs a
/// QApplication. Faults: unavailable (no font for PDF); cannot create; input/output.
Common::Result<void> writeReport(Calibration::RunResult& result, const Calibration::Content& content,
                                 const ReportDetails& details, const ReportFiles& files);

} // namespace Reports
