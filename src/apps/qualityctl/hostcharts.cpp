#include "hostcharts.h"

#include "gamutargument.h"
#include "output.h"
#include "outputfile.h"

#include <charts/graychart.h>

#include <QFileInfo>

Charts::Chart correctionChart(const GamutFigures& figures, Charts::Plane plane)
{
    const QString source = QString::fromStdString(figures.source.name);
    const QString target = QString::fromStdString(figures.target.name);
    return Charts::chromaticityChart(QStringLiteral("%1 corrected to %2").arg(source, target), plane,
                                     {{QStringLiteral("measured: %1").arg(source), primariesOf(figures.source)},
                                      {QStringLiteral("target: %1").arg(target), primariesOf(figures.target)},
                                      {QStringLiteral("reached"), figures.reached.primaries}});
}

Charts::Chart grayTableChart(const GrayTableFile& table, const QString& name)
{
    const auto curve = [](const QString& label, const QList<unsigned char>& column) {
        Charts::GrayCurve result{label, {}};
        for (int level = 0; level < column.size(); ++level)
            result.points.append(QPointF(level, column.at(level)));
        return result;
    };
    return Charts::grayChart(QStringLiteral("Gray table %1").arg(name), QStringLiteral("coefficient"),
                             {curve(QStringLiteral("red"), table.red), curve(QStringLiteral("green"), table.green),
                              curve(QStringLiteral("blue"), table.blue),
                              curve(QStringLiteral("magnitude"), table.magnitude)});
}

void requireChartSuffix(const QString& path)
{
    const QString suffix = QFileInfo(path).suffix();
    if (suffix != QLatin1String("svg") && suffix != QLatin1String("png"))
        throw CommandError{ExitCode::Usage, QStringLiteral("%1: expected a name that ends in .svg or .png").arg(path)};
}

void writeChart(const Charts::Chart& chart, const QString& path)
{
    requireChartSuffix(path);
    writeOutputFile(path, chart.toFormat(QFileInfo(path).suffix()));
}
