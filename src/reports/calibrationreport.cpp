#include "calibrationreport.h"

#include <calibration/output.h>
#include <reports/figuresreport.h>
#include <reports/measurementreport.h>
#include <reports/sendreport.h>
#include <reports/verificationreport.h>

#include <QFile>
#include <QFileInfo>

namespace Reports {

namespace {

using Calibration::Content;
using Calibration::DeviceRecord;
using Calibration::Outcome;
using Calibration::RunResult;

/// The first thing that is wrong with a device; empty when nothing is.
QString deviceFault(const DeviceRecord& record)
{
    for (const Outcome& outcome : record.outcomes) {
        if (outcome.arrived == outcome.cabinets)
            continue;
        if (outcome.kind == Outcome::Kind::NotSent)
            return Calibration::describe(outcome);
        return QStringLiteral("%1: %2, %3 of %4 cabinets hold it")
            .arg(outcome.step, Calibration::describe(outcome), QString::number(outcome.arrived),
                 QString::number(outcome.cabinets));
    }
    return {};
}

/// What a report's title begins with, behind the verdict.
const QString s_titleBegin = QStringLiteral("Calibration of ");

Drawing drawingOf(const Charts::Chart& chart, const QString& caption)
{
    return {chart.toSvg(), caption};
}

/// The charts of a calibration, in the order of ReportFiles::charts().
Drawings drawingsOf(const RunResult& result, const Content& content)
{
    const QString gamuts = QStringLiteral("Measured gamut, target, and what the correction reaches, in %1 (computed)");
    Drawings drawings;
    drawings.charts = {
        drawingOf(correctionChart(result.figures, Charts::Plane::Xy), gamuts.arg(QStringLiteral("CIE 1931 x, y"))),
        drawingOf(correctionChart(result.figures, Charts::Plane::UvPrime),
                  gamuts.arg(QStringLiteral("CIE 1976 u', v'")))};
    if (content.tableFile)
        drawings.charts.push_back(
            drawingOf(grayTableChart(content.table, QFileInfo(content.tableFile->name).fileName()),
                      QStringLiteral("The gray table, with each channel's deviation from a straight line")));
    return drawings;
}

} // namespace

QString titleOf(const RunResult& result)
{
    return s_titleBegin + result.destination;
}

Table deviceTable(const std::vector<DeviceRecord>& records, const QStringList& resumed)
{
    Table table({{QStringLiteral("device"), QStringLiteral("device")},
                 {QStringLiteral("cabinets"), QStringLiteral("cabinets")},
                 {QStringLiteral("steps"), QStringLiteral("steps")},
                 {QStringLiteral("seconds"), QStringLiteral("time"), QStringLiteral("s")},
                 {QStringLiteral("done"), QStringLiteral("result")},
                 {QStringLiteral("known"), QStringLiteral("known")},
                 {QStringLiteral("resumed"), {}}});
    for (const DeviceRecord& record : records) {
        int answered = 0;
        double seconds = 0.0;
        for (const Outcome& outcome : record.outcomes) {
            answered += outcome.kind == Outcome::Kind::Answered ? 1 : 0;
            seconds += outcome.seconds;
        }
        const bool isResumed = resumed.contains(record.device);
        const QString fault = deviceFault(record);
        const QString done = isResumed ? QStringLiteral("done before") : QStringLiteral("done");
        table.add({record.device,
                   record.outcomes.front().cabinets,
                   {QStringLiteral("%1 of %2").arg(answered).arg(record.outcomes.size()), answered},
                   decimal(seconds, 3),
                   {fault.isEmpty() ? done : fault, record.isDone()},
                   answered > 0 ? wordOf(record.known) : QStringLiteral("-"),
                   {{}, isResumed}});
    }
    return table;
}

QString toText(const RunResult& result, const Content& content)
{
    const Calibration::Figures& figures = result.figures;
    const bool isHeld = result.verification.verdict.holding > 0;
    QString text =
        titleOf(result) + QLatin1String("\n\n") + result.verification.verdict.sentence() + QLatin1String("\n\n") +
        warningLines(content.warnings) + figuresTable(figures).toText() + QLatin1Char('\n') +
        (isHeld ? QString() : QStringLiteral("What the correction would show; no device holds it:\n\n")) +
        reachTable(figures, wordOf(Calibration::Known::Computed)).toText() + QLatin1Char('\n') + reachText(figures) +
        QLatin1String("\n\n") + deviceTable(result.records, result.resumed).toText() + QLatin1String("\nWritten:\n");
    for (const QString& file : result.files)
        text += QStringLiteral("  %1\n").arg(file);
    return text;
}

QJsonObject toJson(const RunResult& result, const Content& content)
{
    QJsonObject object = toJson(result.figures);
    object.insert(QStringLiteral("additivity"), additivityJson(content.measurement, content.white));
    object.insert(QStringLiteral("warnings"), QJsonArray::fromStringList(content.warnings));
    object.insert(QStringLiteral("destination"), result.destination);
    object.insert(QStringLiteral("simulated"), result.verification.verdict.isSimulated);
    object.insert(QStringLiteral("verdict"), toJson(result.verification.verdict));
    object.insert(QStringLiteral("devices"), deviceTable(result.records, result.resumed).toJson());
    object.insert(QStringLiteral("results"), outcomeTable(result.outcomes()).toJson());
    object.insert(QStringLiteral("files"), QJsonArray::fromStringList(result.files));
    return object;
}

bool isReport(const QString& path)
{
    constexpr qint64 headBytes = 4096;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const QByteArray head = file.read(headBytes);
    QByteArray wide; // as PDF has it
    for (const char c : s_titleBegin.toLatin1())
        wide += QByteArray(1, 0) + c;
    return (head.startsWith("<!DOCTYPE html>") && head.contains("<title>") && head.contains(s_titleBegin.toUtf8())) ||
           (head.startsWith("%PDF") && head.contains(wide));
}

Common::Result<void> writeReport(RunResult& result, const Content& content, const ReportDetails& details,
                                 const ReportFiles& files)
{
    const Drawings drawings = drawingsOf(result, content);
    for (std::size_t i = 0; i < drawings.charts.size(); ++i) {
        const QString name = files.charts.at(static_cast<int>(i));
        const auto written = Calibration::writeOutput(name, drawings.charts[i].svg);
        if (!written)
            return written;
        result.files << name;
    }
    const Document document = documentOf(result, content, details, drawings);
    result.files << files.html;
    const auto written = Calibration::writeOutput(files.html, toHtml(document));
    if (!written || files.pdf.isEmpty())
        return written;
    const auto pages = toPdf(document);
    if (!pages)
        return pages.fault();
    result.files << files.pdf;
    return Calibration::writeOutput(files.pdf, *pages);
}

} // namespace Reports
