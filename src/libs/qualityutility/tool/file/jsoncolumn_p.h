#pragma once

#include <suite/model/lxy.h>

#include <QString>

#include <type_traits>
#include <vector>

/// What a document may hold under one key.
struct JsonColumn
{
    enum class Type { Points, Series, Integers, Numbers, Bool, Int, Number, Text, Point, Object };

    QLatin1String key;
    Type type;
    double min = -1e300; ///< of a number, and of the elements of a list of numbers
    double max = 1e300;
    int lengthGroup = 0; ///< lists of one group have equal lengths; 0: alone
};

/// A column with what its object may hold.
struct JsonMember
{
    JsonColumn column;
    std::vector<JsonMember> members = {};
};

/// A kind of document.
struct DocumentKind
{
    QString name;
    std::vector<QLatin1String> signs; ///< any of these keys tells the kind
    std::vector<JsonMember> members;
};

constexpr double smallestInt = -2147483648.0;
constexpr double largestInt = 2147483647.0;

/// The column of a value as the records hold it.
template <typename Value>
constexpr JsonColumn columnOf(QLatin1String key, int lengthGroup = 0)
{
    using Type = JsonColumn::Type;
    if constexpr (std::is_same_v<Value, bool>)
        return {key, Type::Bool};
    else if constexpr (std::is_same_v<Value, int>)
        return {key, Type::Int, 0, largestInt}; // counts, levels and luminances
    else if constexpr (std::is_same_v<Value, double>)
        return {key, Type::Number};
    else if constexpr (std::is_same_v<Value, QString>)
        return {key, Type::Text};
    else if constexpr (std::is_same_v<Value, Model::LXY>)
        return {key, Type::Point};
    else if constexpr (std::is_same_v<typename Value::value_type, Model::LXY>)
        return {key, Type::Points, 0, 0, lengthGroup};
    else if constexpr (std::is_same_v<typename Value::value_type, unsigned char>)
        return {key, Type::Integers, 0, 255, lengthGroup};
    else if constexpr (std::is_same_v<typename Value::value_type, int>)
        return {key, Type::Integers, smallestInt, largestInt, lengthGroup};
    else if constexpr (std::is_same_v<typename Value::value_type, double>)
        return {key, Type::Numbers, -1e300, 1e300, lengthGroup};
    else
        return {key, Type::Series, 0, 0, lengthGroup};
}
