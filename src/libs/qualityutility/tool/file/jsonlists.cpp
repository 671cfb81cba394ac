#include "jsonlists_p.h"

#include <QVariant>

namespace JsonLists {

namespace {

/// As QVariant::toDouble converts: text with a number in it counts, what is neither is 0.
double toDouble(const QJsonValue& value)
{
    return value.isDouble() ? value.toDouble() : value.toVariant().toDouble();
}

} // namespace

QJsonObject toObject(const Model::LXY& point)
{
    // Filling in a copy spares the growing that building an object key by key costs; documents have thousands of
    // points.
    static const QJsonObject blank{{lumColumn.key, 0.0}, {xColumn.key, 0.0}, {yColumn.key, 0.0}};
    QJsonObject object = blank;
    object.insert(lumColumn.key, point.lum);
    object.insert(xColumn.key, point.x);
    object.insert(yColumn.key, point.y);
    return object;
}

Model::LXY toPoint(const QJsonObject& object)
{
    // Read directly: a variant map per point would cost more than parsing the document.
    return {toDouble(object.value(lumColumn.key)),
            toDouble(object.value(xColumn.key)),
            toDouble(object.value(yColumn.key)),
            {}};
}

QJsonArray toArray(const PointSeries& series)
{
    QJsonArray array;
    for (const auto& [index, points] : series)
        array.append(QJsonObject{{measureColumn.key, toArray(points)}});
    return array;
}

template <>
PointSeries toList<PointSeries>(const QJsonArray& array)
{
    PointSeries series;
    int index = 0;
    for (const QJsonValue value : array) {
        const QJsonValue points = value.toObject().value(measureColumn.key);
        if (points.isArray())
            series[index++] = toList<std::vector<Model::LXY>>(points.toArray());
    }
    return series;
}

} // namespace JsonLists
