#include "calibrationreport.h"

#include <calibration/gamut.h>
#include <calibration/output.h>
#include <reports/figuresreport.h>
#include <reports/sendreport.h>

#include <QDateTime>
#include <QFile>
#include <QFileInfo>

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

Table judgementTable(const Calibration::Verification& verification)
{
    Table table({{QStringLiteral("device"), QStringLiteral("device")},
                 {QStringLiteral("cabinets"), QStringLiteral("cabinets")},
                 {QStringLiteral("correction"), QStringLiteral("correction")},
                 {{}, Calibration::pointName(0)},
                 {{}, Calibration::pointName(1)},
                 {{}, Calibration::pointName(2)},
                 {{}, Calibration::pointName(3)},
                 {QStringLiteral("within"), QStringLiteral("result")}});
    for (const Calibration::Judgement& judgement : verification.judgements) {
        std::vector<Cell> row{judgement.device, judgement.held.cabinets,
                              flag(judgement.held.isOn, QStringLiteral("on"), QStringLiteral("off"))};
        for (std::size_t i = 0; i < 4; ++i)
            row.push_back(judgement.figures ? decimal(judgement.figures->ciede2000[i], 2) : Cell(QStringLiteral("-")));
        row.push_back(flag(judgement.isWithin, QStringLiteral("ok"),
                           judgement.figures ? QStringLiteral("ABOVE") : QStringLiteral("DARK")));
        table.add(row);
    }
    return table;
}

} // namespace

QString toText(const RunResult& result)
{
    QString text = QStringLiteral("%1\n\n%2\n%3\n%4\nWritten:\n")
                       .arg(titleOf(result), figuresTable(result.figures).toText(), reachTable(result.figures).toText(),
                            deviceTable(result).toText());
    for (const QString& file : result.files)
        text += QStringLiteral("  %1\n").arg(file);
    return text;
}

QJsonObject toJson(const RunResult& result)
{
    QJsonObject object = toJson(result.figures);
    object.insert(QStringLiteral("destination"), result.destination);
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

QString toText(const Calibration::Verification& verification)
{
    return QStringLiteral("CIEDE2000 of what the cabinets show to %1, at most %2\n\n")
               .arg(verification.target, QString::number(verification.maxDifference)) +
           judgementTable(verification).toText();
}

QJsonObject toJson(const Calibration::Verification& verification)
{
    const QJsonArray rows = judgementTable(verification).toJson();
    QJsonArray devices;
    for (int i = 0; i < rows.size(); ++i) {
        const Calibration::Judgement& judgement = verification.judgements.at(static_cast<std::size_t>(i));
        QJsonObject device = rows.at(i).toObject();
        device.insert(QStringLiteral("coefficients"), toJson(judgement.held.coefficients));
        if (judgement.figures) {
            const QJsonObject figures = toJson(*judgement.figures);
            for (auto it = figures.begin(); it != figures.end(); ++it)
                device.insert(it.key(), it.value());
            device.insert(QStringLiteral("max_ciede2000"), judgement.figures->worstDifference());
        }
        devices.append(device);
    }
    return {{QStringLiteral("max_de"), verification.maxDifference}, {QStringLiteral("devices"), devices}};
}

} // namespace Reports
