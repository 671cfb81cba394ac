#include "calibrationreport.h"

#include <calibration/gamut.h>
#include <calibration/output.h>
#include <reports/figuresreport.h>
#include <reports/sendreport.h>

#include <QDateTime>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <cmath>

namespace Reports {

namespace {

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

/// A row per device: how many of its cabinets hold everything.
Table deviceTable(const RunResult& result)
{
    Table table({{QStringLiteral("device"), QStringLiteral("device")},
                 {QStringLiteral("cabinets"), QStringLiteral("cabinets")},
                 {QStringLiteral("steps"), QStringLiteral("steps")},
                 {QStringLiteral("seconds"), QStringLiteral("time"), QStringLiteral("s")},
                 {QStringLiteral("done"), QStringLiteral("result")},
                 {QStringLiteral("known"), QStringLiteral("known")},
                 {QStringLiteral("resumed"), {}}});
    for (const DeviceRecord& record : result.records) {
        int answered = 0;
        double seconds = 0.0;
        for (const Outcome& outcome : record.outcomes) {
            answered += outcome.kind == Outcome::Kind::Answered ? 1 : 0;
            seconds += outcome.seconds;
        }
        const bool isResumed = result.resumed.contains(record.device);
        const QString fault = deviceFault(record);
        const QString done = isResumed ? QStringLiteral("done before") : QStringLiteral("done");
        table.add({record.device,
                   record.outcomes.front().cabinets,
                   {QStringLiteral("%1 of %2").arg(answered).arg(record.outcomes.size()), answered},
                   decimal(seconds, 3),
                   {fault.isEmpty() ? done : fault, record.isDone()},
                   wordOf(record.known),
                   {{}, isResumed}});
    }
    return table;
}

/// The drawing without the XML declaration, which has no place inside HTML.
QString inlineSvg(const QByteArray& svg)
{
    return QString::fromUtf8(svg.mid(svg.indexOf("<svg")));
}

QString titleOf(const RunResult& result)
{
    return QStringLiteral("Calibration of %1").arg(result.destination);
}

constexpr char firstLine[] = "<!DOCTYPE html>\n";
constexpr char style[] = R"(<style>
body { font-family: sans-serif; color: #222; max-width: 64rem; margin: 2rem auto; padding: 0 1rem; }
table { border-collapse: collapse; margin: 0.5rem 0 1.5rem; }
th, td { text-align: left; padding: 0.25rem 1rem 0.25rem 0; border-bottom: 1px solid #ccc; }
.charts { display: flex; flex-wrap: wrap; gap: 1rem; }
.charts svg { width: 30rem; max-width: 100%; height: auto; }
</style>
)";

QString section(const QString& heading, const QString& content)
{
    return QStringLiteral("<h2>%1</h2>\n").arg(heading) + content;
}

/// A row per device and group of its cabinets that hold the same.
Table judgementTable(const Calibration::Verification& verification)
{
    Table table({{QStringLiteral("device"), QStringLiteral("device")},
                 {QStringLiteral("cabinets"), QStringLiteral("cabinets")},
                 {QStringLiteral("correction"), QStringLiteral("correction")},
                 {QStringLiteral("max_ciede2000"), QStringLiteral("CIEDE2000")},
                 {QStringLiteral("within"), QStringLiteral("result")},
                 {QStringLiteral("known"), QStringLiteral("known")}});
    for (const Calibration::Judgement& judgement : verification.judgements)
        table.add({judgement.device, judgement.held.cabinets,
                   flag(judgement.held.isOn, QStringLiteral("on"), QStringLiteral("off")),
                   judgement.figures ? decimal(judgement.difference, 2)
                                     : Cell(QStringLiteral("-"), QJsonValue(QJsonValue::Undefined)),
                   flag(judgement.isWithin, QStringLiteral("ok"),
                        judgement.figures ? QStringLiteral("ABOVE") : QStringLiteral("DARK")),
                   wordOf(judgement.known)});
    return table;
}

/// The figures of all cabinets, those of equal integers once.
std::vector<std::shared_ptr<const Calibration::Figures>> distinctFigures(const Calibration::Verification& verification)
{
    std::vector<std::shared_ptr<const Calibration::Figures>> distinct;
    for (const Calibration::Judgement& judgement : verification.judgements) {
        if (judgement.figures && std::find(distinct.begin(), distinct.end(), judgement.figures) == distinct.end())
            distinct.push_back(judgement.figures);
    }
    return distinct;
}

/// How the journal knows what the cabinets held, for people.
QString source(const Calibration::Verdict& verdict)
{
    QStringList how;
    if (verdict.holding > 0)
        how << wordOf(verdict.known);
    if (verdict.isSimulated)
        how << QStringLiteral("simulated");
    return QStringLiteral("From the journal: what the cabinets held when they were served") +
           (how.isEmpty() ? QString() : QStringLiteral(" (%1)").arg(how.join(QStringLiteral(", "))));
}

} // namespace

QString toText(const RunResult& result)
{
    const Calibration::Figures& figures = result.figures;
    QString text = titleOf(result) + QLatin1String("\n\n") + result.verification.verdict.sentence() +
                   QLatin1String("\n\n") + figuresTable(figures).toText() + QLatin1Char('\n') +
                   reachTable(figures).toText() + QLatin1Char('\n') + reachText(figures) + QLatin1String("\n\n") +
                   deviceTable(result).toText() + QLatin1String("\nWritten:\n");
    for (const QString& file : result.files)
        text += QStringLiteral("  %1\n").arg(file);
    return text;
}

QJsonObject toJson(const RunResult& result)
{
    QJsonObject object = toJson(result.figures);
    object.insert(QStringLiteral("destination"), result.destination);
    object.insert(QStringLiteral("simulated"), result.verification.verdict.isSimulated);
    object.insert(QStringLiteral("verdict"), toJson(result.verification.verdict));
    object.insert(QStringLiteral("devices"), deviceTable(result).toJson());
    object.insert(QStringLiteral("results"), outcomeTable(result.outcomes()).toJson());
    object.insert(QStringLiteral("files"), QJsonArray::fromStringList(result.files));
    return object;
}

QByteArray toHtml(const RunResult& result, const QList<QByteArray>& charts)
{
    QString drawings;
    for (const QByteArray& chart : charts)
        drawings += inlineSvg(chart);
    QString files;
    for (const QString& file : result.files)
        files += QStringLiteral("<li>%1</li>\n").arg(file.toHtmlEscaped());
    // Pieced together: a name may hold what arg() would take for a place of its own.
    const QString title = titleOf(result).toHtmlEscaped();
    const QString html =
        QString::fromLatin1(firstLine) +
        QStringLiteral("<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n<title>") + title +
        QStringLiteral("</title>\n") + QString::fromLatin1(style) + QStringLiteral("</head>\n<body>\n<h1>") + title +
        QStringLiteral("</h1>\n<p>") + QDateTime::currentDateTime().toString(QStringLiteral("yyyy-MM-dd HH:mm")) +
        QStringLiteral("</p>\n") + section(QStringLiteral("Correction"), figuresTable(result.figures).toHtml()) +
        section(QStringLiteral("What the wall reaches"), reachTable(result.figures).toHtml()) +
        QStringLiteral("<div class=\"charts\">\n") + drawings + QStringLiteral("</div>\n") +
        section(QStringLiteral("Devices"), deviceTable(result).toHtml() + outcomeTable(result.outcomes()).toHtml()) +
        section(QStringLiteral("Files"), QStringLiteral("<ul>\n") + files + QStringLiteral("</ul>\n"));
    return (html + QStringLiteral("</body>\n</html>\n")).toUtf8();
}

bool isReport(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) && file.readLine() == firstLine &&
           file.read(4096).contains("<title>Calibration of");
}

Common::Result<void> writeReport(RunResult& result, const Calibration::Content& content, const ReportFiles& files)
{
    QList<QByteArray> charts{correctionChart(result.figures, Charts::Plane::Xy).toSvg(),
                             correctionChart(result.figures, Charts::Plane::UvPrime).toSvg()};
    QStringList names{files.chartXy, files.chartUv};
    if (content.tableFile) {
        charts << grayTableChart(content.table, QFileInfo(content.tableFile->name).fileName()).toSvg();
        names << files.chartGray;
    }
    for (int i = 0; i < charts.size(); ++i) {
        const auto written = Calibration::writeOutput(names.at(i), charts.at(i));
        if (!written)
            return written.fault();
    }
    result.files << names << files.html;
    return Calibration::writeOutput(files.html, toHtml(result, charts));
}

QJsonObject toJson(const Calibration::Verdict& verdict)
{
    QJsonObject object{{QStringLiteral("passed"), verdict.isPassed()},
                       {QStringLiteral("sentence"), verdict.sentence()},
                       {QStringLiteral("devices_holding_it"), verdict.holding},
                       {QStringLiteral("devices"), verdict.devices},
                       {QStringLiteral("max_de"), verdict.limit},
                       {QStringLiteral("strict"), verdict.isStrict},
                       {QStringLiteral("known"), wordOf(verdict.known)}};
    if (verdict.holding > 0 && std::isfinite(verdict.worst))
        object.insert(QStringLiteral("max_ciede2000"), verdict.worst);
    return object;
}

QString toText(const Calibration::Verification& verification)
{
    QString text = verification.verdict.sentence() + QLatin1String("\n\n") + source(verification.verdict) +
                   QLatin1String("\n\n") + judgementTable(verification).toText();
    for (const auto& figures : distinctFigures(verification))
        text += QStringLiteral("\nComputed for the coefficients %1:\n\n").arg(integersText(figures->coefficients)) +
                reachTable(*figures).toText() + QLatin1Char('\n') + reachText(*figures) + QLatin1Char('\n');
    return text;
}

QJsonObject toJson(const Calibration::Verification& verification)
{
    const QJsonArray rows = judgementTable(verification).toJson();
    QJsonArray devices;
    for (int i = 0; i < rows.size(); ++i) {
        QJsonObject device = rows.at(i).toObject();
        device.insert(QStringLiteral("coefficients"),
                      toJson(verification.judgements.at(static_cast<std::size_t>(i)).held.coefficients));
        devices.append(device);
    }
    QJsonArray shown;
    for (const auto& figures : distinctFigures(verification))
        shown.append(toJson(*figures));
    QJsonObject object = coverageJson(verification.coverageXy, verification.coverageUv);
    object.insert(QStringLiteral("measured"), verification.measured);
    object.insert(QStringLiteral("target"), verification.target);
    object.insert(QStringLiteral("simulated"), verification.verdict.isSimulated);
    object.insert(QStringLiteral("source"), QStringLiteral("journal"));
    object.insert(QStringLiteral("verdict"), toJson(verification.verdict));
    object.insert(QStringLiteral("devices"), devices);
    object.insert(QStringLiteral("shown"), shown);
    return object;
}

} // namespace Reports
