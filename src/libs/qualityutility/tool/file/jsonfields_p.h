#pragma once

#include "jsonlists_p.h"

#include <optional>
#include <tuple>
#include <utility>

/// Tables of a section's members: {key, how to read it from a record, how to fill it in, its group of equal lengths}.
/// One table writes, reads and checks, so a key stands once. A table is an array or a tuple of fields; what is read in
/// a way of its own has a plain column in it. Members that a section lacks, or holds with another type, leave the
/// record as it was.
namespace JsonFields {

template <typename Value>
QJsonValue toJson(const Value& value)
{
    if constexpr (std::is_arithmetic_v<Value>)
        return value;
    else
        return JsonLists::toArray(value);
}

/// The value when it has the wanted type.
template <typename Value>
std::optional<Value> fromJson(const QJsonValue& value)
{
    if constexpr (std::is_same_v<Value, bool>)
        return value.isBool() ? std::optional<bool>(value.toBool()) : std::nullopt;
    else if constexpr (std::is_same_v<Value, int>)
        return value.isDouble() ? std::optional<int>(value.toInt(0)) : std::nullopt;
    else
        return value.isArray() ? std::optional<Value>(JsonLists::toList<Value>(value.toArray())) : std::nullopt;
}

/// A value behind a pair of accessors.
template <typename Record, typename Value>
struct Field
{
    QLatin1String key;
    Value (Record::*get)() const;
    void (Record::*set)(Value);

    JsonMember member() const { return {columnOf<Value>(key)}; }
    void write(const Record& record, QJsonObject& object) const { object.insert(key, toJson((record.*get)())); }
    void read(const QJsonObject& object, Record& record) const
    {
        if (const auto value = fromJson<Value>(object.value(key)))
            (record.*set)(*value);
    }
};

/// A list behind a pair of accessors.
template <typename Record, typename List>
struct ListField
{
    QLatin1String key;
    const List& (Record::*get)() const;
    List& (Record::*fill)();
    int lengthGroup = 0;

    JsonMember member() const { return {columnOf<List>(key, lengthGroup)}; }
    void write(const Record& record, QJsonObject& object) const { object.insert(key, toJson((record.*get)())); }
    void read(const QJsonObject& object, Record& record) const
    {
        if (auto list = fromJson<List>(object.value(key)))
            (record.*fill)() = std::move(*list);
    }
};

/// A plain member.
template <typename Record, typename Value>
struct PlainField
{
    QLatin1String key;
    Value Record::*value;
    int lengthGroup = 0;

    JsonMember member() const { return {columnOf<Value>(key, lengthGroup)}; }
    void write(const Record& record, QJsonObject& object) const { object.insert(key, toJson(record.*value)); }
    void read(const QJsonObject& object, Record& record) const
    {
        if (auto found = fromJson<Value>(object.value(key)))
            record.*value = std::move(*found);
    }
};

/// What comes from other producers: it is read and never written.
template <typename Record>
struct ForeignField
{
    QLatin1String key;
    void (*take)(Record&, int);

    JsonMember member() const { return {columnOf<int>(key)}; }
    void read(const QJsonObject& object, Record& record) const
    {
        if (const auto value = fromJson<int>(object.value(key)))
            take(record, *value);
    }
};

template <typename Fields, typename Record>
void write(const Fields& fields, const Record& record, QJsonObject& object)
{
    std::apply([&](const auto&... field) { (field.write(record, object), ...); }, fields);
}

template <typename Fields, typename Record>
void read(const Fields& fields, const QJsonObject& object, Record& record)
{
    std::apply([&](const auto&... field) { (field.read(object, record), ...); }, fields);
}

inline JsonMember memberOf(const JsonColumn& column)
{
    return {column};
}

template <typename Field>
JsonMember memberOf(const Field& field)
{
    return field.member();
}

/// What an object of these tables may hold, in their order.
template <typename... Tables>
std::vector<JsonMember> membersOf(const Tables&... tables)
{
    std::vector<JsonMember> members;
    const auto add = [&members](const auto&... field) { (members.push_back(memberOf(field)), ...); };
    (std::apply(add, tables), ...);
    return members;
}

inline std::vector<QLatin1String> keysOf(const std::vector<JsonMember>& members)
{
    std::vector<QLatin1String> keys;
    keys.reserve(members.size());
    for (const JsonMember& member : members)
        keys.push_back(member.column.key);
    return keys;
}

inline std::vector<JsonMember> join(std::vector<JsonMember> first, const std::vector<JsonMember>& second)
{
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

/// An object within, whose members are of the same record.
template <typename Fields>
struct Section
{
    QLatin1String key;
    const Fields& fields;

    JsonMember member() const { return {{key, JsonColumn::Type::Object}, membersOf(fields)}; }
    template <typename Record>
    void write(const Record& record, QJsonObject& object) const
    {
        QJsonObject section;
        JsonFields::write(fields, record, section);
        object.insert(key, section);
    }
    template <typename Record>
    void read(const QJsonObject& object, Record& record) const
    {
        const QJsonValue section = object.value(key);
        if (section.isObject())
            JsonFields::read(fields, section.toObject(), record);
    }
};

/// Calls `take` with the member when it is an object.
template <typename Take>
void readSection(const QJsonObject& object, QLatin1String key, const Take& take)
{
    const QJsonValue section = object.value(key);
    if (section.isObject())
        take(section.toObject());
}

} // namespace JsonFields
