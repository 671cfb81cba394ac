#pragma once

#include "jsoncolumn_p.h"
#include <qualityutility/support/latin1_p.h>

#include <QJsonArray>
#include <QJsonObject>

#include <map>

/// Lists to and from JSON arrays, points to and from JSON objects. How elements convert is PicQualityFileTool's to say:
/// its conversions are these.
namespace JsonLists {

using PointSeries = std::map<int, std::vector<Model::LXY>>;

constexpr JsonColumn lumColumn{Support::latin1("lum"), JsonColumn::Type::Number, 0};
constexpr JsonColumn xColumn{Support::latin1("x"), JsonColumn::Type::Number, 0, 1};
constexpr JsonColumn yColumn{Support::latin1("y"), JsonColumn::Type::Number, 0, 1};
/// The points of a series.
constexpr auto measureColumn = columnOf<std::vector<Model::LXY>>(Support::latin1("measure"));

QJsonObject toObject(const Model::LXY& point);
Model::LXY toPoint(const QJsonObject& object);

template <typename List>
QJsonArray toArray(const List& list)
{
    using Element = typename List::value_type;
    QJsonArray array;
    for (const Element& element : list) {
        if constexpr (std::is_same_v<Element, Model::LXY>)
            array.append(toObject(element));
        else if constexpr (std::is_integral_v<Element>)
            array.append(static_cast<int>(element)); // the bits are kept: 2^31 and more are written as negative numbers
        else
            array.append(element);
    }
    return array;
}

template <typename List>
List toList(const QJsonArray& array)
{
    using Element = typename List::value_type;
    List list;
    list.reserve(static_cast<decltype(list.size())>(array.size()));
    for (const QJsonValue value : array) {
        if constexpr (std::is_integral_v<Element>)
            list.push_back(static_cast<Element>(value.toInt(0)));
        else if constexpr (std::is_floating_point_v<Element>)
            list.push_back(value.toDouble(0));
        else if (value.isObject())
            list.push_back(toPoint(value.toObject()));
    }
    return list;
}

QJsonArray toArray(const PointSeries& series);
template <>
PointSeries toList<PointSeries>(const QJsonArray& array);

} // namespace JsonLists
