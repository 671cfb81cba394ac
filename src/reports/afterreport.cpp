#include "afterreport.h"

#include <calibration/gamut.h>
#include <reports/table.h>

namespace Reports {

namespace {

using Calibration::AfterMeasurement;
using Calibration::ComparedPoint;

Cell xy(const Calibration::ComparedColour& colour)
{
    return {QStringLiteral("%1, %2").arg(colour.xy.x, 0, 'f', 4).arg(colour.xy.y, 0, 'f', 4),
            QJsonArray{colour.xy.x, colour.xy.y}};
}

Cell luminance(const Calibration::ComparedColour& colour)
{
    return decimal(colour.luminance > 0.0 ? std::optional(colour.luminance) : std::nullopt, 2);
}

/// A table with a row for each point.
struct Comparison
{
    QString caption;
    std::vector<Column> columns; ///< behind the point's
    std::vector<Cell> (*cells)(const ComparedPoint&);

    Table table(const AfterMeasurement& after) const
    {
        std::vector<Column> all{{QStringLiteral("point"), QStringLiteral("point")}};
        all.insert(all.end(), columns.begin(), columns.end());
        Table result(all);
        for (std::size_t i = 0; i < after.points.size(); ++i) {
            std::vector<Cell> row = cells(after.points[i]);
            row.insert(row.begin(), Cell(Calibration::pointName(i)));
            result.add(row);
        }
        return result;
    }
};

std::vector<Comparison> comparisons()
{
    return {{QStringLiteral("CIE 1931 x, y"),
             {{QStringLiteral("target_xy"), QStringLiteral("target")},
              {QStringLiteral("computed_xy"), QStringLiteral("computed")},
              {QStringLiteral("before_xy"), QStringLiteral("before")},
              {QStringLiteral("after_xy"), QStringLiteral("after")}},
             [](const ComparedPoint& p) {
                 return std::vector{xy(p.target), xy(p.computed), xy(p.before), xy(p.after)};
             }},
            {QStringLiteral("CIEDE2000"),
             {{QStringLiteral("ciede2000_before_to_target"), QStringLiteral("before to target")},
              {QStringLiteral("ciede2000_after_to_target"), QStringLiteral("after to target")},
              {QStringLiteral("ciede2000_after_to_computed"), QStringLiteral("after to computed")}},
             [](const ComparedPoint& p) {
                 return std::vector{decimal(p.beforeToTarget, 2), decimal(p.afterToTarget, 2),
                                    decimal(p.afterToComputed, 2)};
             }},
            {QStringLiteral("Distance in u'v'"),
             {{QStringLiteral("duv_prime_before_to_target"), QStringLiteral("before to target")},
              {QStringLiteral("duv_prime_after_to_target"), QStringLiteral("after to target")},
              {QStringLiteral("duv_prime_after_to_computed"), QStringLiteral("after to computed")}},
             [](const ComparedPoint& p) {
                 return std::vector{decimal(p.uvBeforeToTarget, 4), decimal(p.uvAfterToTarget, 4),
                                    decimal(p.uvAfterToComputed, 4)};
             }},
            {QStringLiteral("Luminance, cd/m2"),
             {{QStringLiteral("before_cd_m2"), QStringLiteral("before")},
              {QStringLiteral("computed_cd_m2"), QStringLiteral("computed")},
              {QStringLiteral("after_cd_m2"), QStringLiteral("after")}},
             [](const ComparedPoint& p) {
                 return std::vector{luminance(p.before), luminance(p.computed), luminance(p.after)};
             }}};
}

QString wordMeasured()
{
    return wordOf(Calibration::Known::Measured);
}

} // namespace

QString toText(const AfterMeasurement& after, const Calibration::Measurement& measurement)
{
    QStringList source{QString::fromStdString(measurement.gamut.name)};
    for (const QString& remark : {measurement.instrument, measurement.date}) {
        if (!remark.isEmpty())
            source << remark;
    }
    QString text = after.sentence() + QStringLiteral(" (%1: ").arg(wordMeasured()) + source.join(QStringLiteral(", ")) +
                   QStringLiteral(")\n");
    for (const Comparison& comparison : comparisons())
        text += QLatin1Char('\n') + comparison.caption + QLatin1String("\n\n") + comparison.table(after).toText();
    return text;
}

QJsonObject toJson(const AfterMeasurement& after, const Calibration::Measurement& measurement)
{
    std::array<QJsonObject, 4> points;
    for (const Comparison& comparison : comparisons()) {
        const QJsonArray rows = comparison.table(after).toJson();
        for (std::size_t i = 0; i < points.size(); ++i) {
            const QJsonObject row = rows.at(static_cast<int>(i)).toObject();
            for (auto it = row.begin(); it != row.end(); ++it)
                points[i].insert(it.key(), it.value());
        }
    }
    QJsonArray array;
    for (const QJsonObject& point : points)
        array.append(point);
    QJsonObject object{{QStringLiteral("passed"), after.isPassed()},
                       {QStringLiteral("sentence"), after.sentence()},
                       {QStringLiteral("max_ciede2000"), after.worst()},
                       {QStringLiteral("known"), wordMeasured()},
                       {QStringLiteral("measurement"), QString::fromStdString(measurement.gamut.name)},
                       {QStringLiteral("points"), array}};
    if (const auto white = after.whiteDifference())
        object.insert(QStringLiteral("white_luminance_difference"), *white);
    if (!measurement.instrument.isEmpty())
        object.insert(QStringLiteral("instrument"), measurement.instrument);
    if (!measurement.date.isEmpty())
        object.insert(QStringLiteral("date"), measurement.date);
    return object;
}

} // namespace Reports
