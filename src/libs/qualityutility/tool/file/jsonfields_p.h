#pragma once

#include <qualityutility/tool/file/picqualityfiletool.h>

/// Tables of a section's members: {key, how to read it from a record, how to fill it in}. One table both writes and
/// reads, so a key stands once. Members that a section lacks, or holds with another type, leave the record as it was.
namespace JsonFields {

template <typename Record>
struct BoolField
{
    QLatin1String key;
    bool (Record::*get)() const;
    void (Record::*set)(bool);

    void write(const Record& record, QJsonObject& object) const { object.insert(key, (record.*get)()); }
    void read(const QJsonObject& object, Record& record) const
    {
        const QJsonValue value = object.value(key);
        if (value.isBool())
            (record.*set)(value.toBool());
    }
};

template <typename Record>
struct IntField
{
    QLatin1String key;
    int (Record::*get)() const;
    void (Record::*set)(int);

    void write(const Record& record, QJsonObject& object) const { object.insert(key, (record.*get)()); }
    void read(const QJsonObject& object, Record& record) const
    {
        const QJsonValue value = object.value(key);
        if (value.isDouble())
            (record.*set)(value.toInt(0));
    }
};

/// A plain int member.
template <typename Record>
struct IntMember
{
    QLatin1String key;
    int Record::*member;

    void write(const Record& record, QJsonObject& object) const { object.insert(key, record.*member); }
    void read(const QJsonObject& object, Record& record) const
    {
        const QJsonValue value = object.value(key);
        if (value.isDouble())
            record.*member = value.toInt(0);
    }
};

template <typename List>
void writeList(const List& list, QLatin1String key, QJsonObject& object)
{
    // Built apart and inserted whole: an array inside an object is copied each time it is appended to.
    QJsonArray array;
    PicQualityFileTool::listToJsonArray(list, array);
    object.insert(key, array);
}

template <typename List>
void readList(const QJsonObject& object, QLatin1String key, List& list)
{
    const QJsonValue value = object.value(key);
    if (value.isArray())
        PicQualityFileTool::jsonArrayToList(value.toArray(), list);
}

inline void writeList(const PicQualityFileTool::MeasureSeries& series, QLatin1String key, QJsonObject& object)
{
    QJsonArray array;
    PicQualityFileTool::mapToJsonArray(series, array);
    object.insert(key, array);
}

inline void readList(const QJsonObject& object, QLatin1String key, PicQualityFileTool::MeasureSeries& series)
{
    const QJsonValue value = object.value(key);
    if (value.isArray())
        PicQualityFileTool::jsonArrayToMap(value.toArray(), series);
}

/// A plain list member.
template <typename Record, typename List>
struct ListMember
{
    QLatin1String key;
    List Record::*member;

    void write(const Record& record, QJsonObject& object) const { writeList(record.*member, key, object); }
    void read(const QJsonObject& object, Record& record) const { readList(object, key, record.*member); }
};

/// A list behind a pair of accessors.
template <typename Record, typename List>
struct ListField
{
    QLatin1String key;
    const List& (Record::*get)() const;
    List& (Record::*fill)();

    void write(const Record& record, QJsonObject& object) const { writeList((record.*get)(), key, object); }
    void read(const QJsonObject& object, Record& record) const { readList(object, key, (record.*fill)()); }
};

template <typename Fields, typename Record>
void write(const Fields& fields, const Record& record, QJsonObject& object)
{
    for (const auto& field : fields)
        field.write(record, object);
}

template <typename Fields, typename Record>
void read(const Fields& fields, const QJsonObject& object, Record& record)
{
    for (const auto& field : fields)
        field.read(object, record);
}

} // namespace JsonFields
