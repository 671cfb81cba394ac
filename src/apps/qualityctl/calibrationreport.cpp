#include "calibrationreport.h"

#include <QDateTime>

namespace {

/// Label and value of the figures that stand alone.
QList<QStringList> figureRows(const GamutFigures& figures)
{
    QStringList coefficients;
    for (const int coefficient : figures.coefficients)
        coefficients << QString::number(coefficient);
    return {
        {QStringLiteral("measured"), QString::fromStdString(figures.source.name)},
        {QStringLiteral("target"), QString::fromStdString(figures.target.name)},
        {QStringLiteral("light kept"), percent(figures.reached.whiteKept)},
        {QStringLiteral("coverage of the target, xy"), percent(figures.coverageXy.covered)},
        {QStringLiteral("coverage of the target, u'v'"), percent(figures.coverageUv.covered)},
        {QStringLiteral("coefficients, Q1.14"), coefficients.join(QLatin1Char(' '))},
    };
}

/// A row per device: how many of its cabinets hold everything.
QList<QStringList> deviceRows(const CalibrationReport& report)
{
    QList<QStringList> rows{{QStringLiteral("device"), QStringLiteral("cabinets"), QStringLiteral("steps"),
                             QStringLiteral("time"), QStringLiteral("result")}};
    for (const DeviceRecord& record : report.records) {
        int answered = 0;
        double seconds = 0.0;
        QString result =
            report.resumed.contains(record.device) ? QStringLiteral("done before") : QStringLiteral("done");
        for (const SendOutcome& outcome : record.outcomes) {
            answered += outcome.kind == SendOutcome::Kind::Answered ? 1 : 0;
            seconds += outcome.seconds;
            if (outcome.arrived != outcome.cabinets && result.startsWith(QLatin1String("done")))
                result = outcome.kind == SendOutcome::Kind::NotSent
                             ? describe(outcome)
                             : QStringLiteral("%1: %2, %3 of %4 cabinets hold it")
                                   .arg(outcome.step, describe(outcome), QString::number(outcome.arrived),
                                        QString::number(outcome.cabinets));
        }
        rows.append(QStringList{record.device, QString::number(record.outcomes.front().cabinets),
                                QStringLiteral("%1 of %2").arg(answered).arg(record.outcomes.size()),
                                QStringLiteral("%1 s").arg(seconds, 0, 'f', 3), result});
    }
    return rows;
}

QString htmlTable(const QList<QStringList>& rows, bool hasHeading)
{
    QString html = QStringLiteral("<table>\n");
    for (int i = 0; i < rows.size(); ++i) {
        const QString tag = hasHeading && i == 0 ? QStringLiteral("th") : QStringLiteral("td");
        html += QStringLiteral("<tr>");
        for (const QString& cell : rows.at(i))
            html += QStringLiteral("<%1>%2</%1>").arg(tag, cell.toHtmlEscaped());
        html += QStringLiteral("</tr>\n");
    }
    return html + QStringLiteral("</table>\n");
}

/// The drawing without the XML declaration, which has no place inside HTML.
QString inlineSvg(const QByteArray& svg)
{
    return QString::fromUtf8(svg.mid(svg.indexOf("<svg")));
}

constexpr char style[] = R"(<style>
body { font-family: sans-serif; color: #222; max-width: 64rem; margin: 2rem auto; padding: 0 1rem; }
table { border-collapse: collapse; margin: 0.5rem 0 1.5rem; }
th, td { text-align: left; padding: 0.25rem 1rem 0.25rem 0; border-bottom: 1px solid #ccc; }
.charts { display: flex; flex-wrap: wrap; gap: 1rem; }
.charts svg { width: 30rem; max-width: 100%; height: auto; }
</style>
)";

} // namespace

std::vector<SendOutcome> CalibrationReport::outcomes() const
{
    std::vector<SendOutcome> result;
    for (const DeviceRecord& record : records)
        result.insert(result.end(), record.outcomes.begin(), record.outcomes.end());
    return result;
}

QString toText(const CalibrationReport& report)
{
    QString text = QStringLiteral("Calibration of %1\n\n").arg(report.target);
    for (const QStringList& row : figureRows(report.figures))
        text += QStringLiteral("%1  %2\n").arg(row.at(0), -28).arg(row.at(1));
    text += QLatin1Char('\n') + textTable(reachRows(report.figures)) + QLatin1Char('\n') +
            textTable(deviceRows(report)) + QStringLiteral("\nWritten:\n");
    for (const QString& file : report.files)
        text += QStringLiteral("  %1\n").arg(file);
    return text;
}

QJsonObject toJson(const CalibrationReport& report)
{
    QJsonArray devices;
    for (const DeviceRecord& record : report.records)
        devices.append(QJsonObject{{QStringLiteral("device"), record.device},
                                   {QStringLiteral("done"), record.isDone()},
                                   {QStringLiteral("resumed"), report.resumed.contains(record.device)}});
    QJsonArray results;
    for (const SendOutcome& outcome : report.outcomes())
        results.append(toJson(outcome));
    QJsonObject object = toJson(report.figures);
    object.insert(QStringLiteral("wall"), report.target);
    object.insert(QStringLiteral("coverage_xy"), report.figures.coverageXy.covered);
    object.insert(QStringLiteral("coverage_uv"), report.figures.coverageUv.covered);
    object.insert(QStringLiteral("devices"), devices);
    object.insert(QStringLiteral("results"), results);
    object.insert(QStringLiteral("files"), QJsonArray::fromStringList(report.files));
    return object;
}

QByteArray toHtml(const CalibrationReport& report, const QList<QByteArray>& charts)
{
    const QString title = QStringLiteral("Calibration of %1").arg(report.target).toHtmlEscaped();
    QString html = QStringLiteral("<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n<title>%1"
                                  "</title>\n%2</head>\n<body>\n<h1>%1</h1>\n<p>%3</p>\n")
                       .arg(title, QString::fromLatin1(style),
                            QDateTime::currentDateTime().toString(QStringLiteral("yyyy-MM-dd HH:mm")));
    html += QStringLiteral("<h2>Correction</h2>\n") + htmlTable(figureRows(report.figures), false) +
            QStringLiteral("<h2>What the wall reaches</h2>\n") + htmlTable(reachRows(report.figures), true);
    html += QStringLiteral("<div class=\"charts\">\n");
    for (const QByteArray& chart : charts)
        html += inlineSvg(chart);
    html += QStringLiteral("</div>\n<h2>Devices</h2>\n") + htmlTable(deviceRows(report), true) +
            htmlTable(outcomeRows(report.outcomes()), true) + QStringLiteral("<h2>Files</h2>\n<ul>\n");
    for (const QString& file : report.files)
        html += QStringLiteral("<li>%1</li>\n").arg(file.toHtmlEscaped());
    return (html + QStringLiteral("</ul>\n</body>\n</html>\n")).toUtf8();
}
