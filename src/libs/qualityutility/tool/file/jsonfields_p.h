#pragma once

#include "jsonlists_p.h"

#include <optional>
#include <tuple>
#include <utility>

/// Tables of a section's members: {key, how to read it from a record, how to fill it in}. One table both writes and
/// reads, so a key stands once. A table is an array or a tuple of fields. Members that a section lacks, or holds with
/// another type, leave the record as it was.
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

    void write(const Record& record, QJsonObject& object) const { object.insert(key, toJson((record.*get)())); }
    void read(const QJsonObject& object, Record& record) const
    {
        if (auto list = fromJson<List>(object.value(key)))
            (record.*fill)() = std::move(*list);
    }
};

/// A plain member.
template <typename Record, typename Value>
struct Member
{
    QLatin1String key;
    Value Record::*member;

    void write(const Record& record, QJsonObject& object) const { object.insert(key, toJson(record.*member)); }
    void read(const QJsonObject& object, Record& record) const
    {
        if (auto value = fromJson<Value>(object.value(key)))
            record.*member = std::move(*value);
    }
};

/// What comes from other producers: it is read and never written.
template <typename Record>
struct ForeignField
{
    QLatin1String key;
    void (*take)(Record&, int);

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

/// An object within, whose members are of the same record.
template <typename Fields>
struct Section
{
    QLatin1String key;
    const Fields& fields;

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
