#include "documentfaults_p.h"
#include "jsonfields_p.h"

#include <algorithm>
#include <cmath>
#include <map>

namespace {

using Type = JsonColumn::Type;

QString typeName(Type type)
{
    switch (type) {
    case Type::Points:
        return QStringLiteral("an array of points");
    case Type::Series:
        return QStringLiteral("an array of measurement series");
    case Type::Integers:
        return QStringLiteral("an array of integers");
    case Type::Numbers:
        return QStringLiteral("an array of numbers");
    case Type::Bool:
        return QStringLiteral("true or false");
    case Type::Int:
        return QStringLiteral("an integer");
    case Type::Number:
        return QStringLiteral("a number");
    case Type::Text:
        return QStringLiteral("a text");
    case Type::Point:
        return QStringLiteral("a point with lum, x and y");
    case Type::Object:
        return QStringLiteral("an object");
    }
    return {};
}

/// Collects what is wrong, by path.
class Checker
{
public:
    const QStringList& faults() const { return m_faults; }

    void checkObject(const QJsonObject& holder, const std::vector<JsonMember>& members, const QString& path)
    {
        for (auto entry = holder.begin(); entry != holder.end(); ++entry) {
            const auto known = std::find_if(members.begin(), members.end(),
                                            [&](const JsonMember& member) { return entry.key() == member.column.key; });
            if (known == members.end())
                add(path + entry.key(), QStringLiteral("unknown key"));
            else
                checkMember(entry.value(), *known, path + entry.key());
        }
        checkLengths(holder, members, path);
    }

private:
    void add(const QString& path, const QString& what) { m_faults << path + QStringLiteral(": ") + what; }

    void expect(bool isGood, const QString& path, Type type)
    {
        if (!isGood)
            add(path, QStringLiteral("expected %1").arg(typeName(type)));
    }

    void checkMember(const QJsonValue& value, const JsonMember& member, const QString& path)
    {
        const Type type = member.column.type;
        switch (type) {
        case Type::Bool:
            return expect(value.isBool(), path, type);
        case Type::Text:
            return expect(value.isString(), path, type);
        case Type::Int:
        case Type::Number:
            return checkNumber(value, member.column, path);
        case Type::Point:
            return checkPoint(value, path);
        case Type::Object:
            expect(value.isObject(), path, type);
            return checkObject(value.toObject(), member.members, path + QLatin1Char('.'));
        case Type::Points:
        case Type::Series:
        case Type::Integers:
        case Type::Numbers:
            return checkElements(value, member.column, path);
        }
    }

    void checkElements(const QJsonValue& value, const JsonColumn& column, const QString& path)
    {
        expect(value.isArray(), path, column.type);
        const QJsonArray array = value.toArray();
        for (int i = 0; i < array.size(); ++i) {
            const QString place = QStringLiteral("%1[%2]").arg(path).arg(i);
            if (column.type == Type::Points)
                checkPoint(array.at(i), place);
            else if (column.type == Type::Series)
                checkSeries(array.at(i), place);
            else
                checkNumber(array.at(i), column, place);
        }
    }

    void checkNumber(const QJsonValue& value, const JsonColumn& column, const QString& path)
    {
        const bool mustBeWhole = column.type == Type::Int || column.type == Type::Integers;
        const double number = value.toDouble();
        if (!value.isDouble() || (mustBeWhole && std::floor(number) != number))
            expect(false, path, mustBeWhole ? Type::Int : Type::Number);
        else if (number < column.min || number > column.max)
            add(path,
                (column.max < largestInt ? QStringLiteral("expected %1 to %2, found %3").arg(column.min).arg(column.max)
                                         : QStringLiteral("expected at least %1, found %2").arg(column.min))
                    .arg(number));
    }

    void checkSeries(const QJsonValue& value, const QString& path)
    {
        static const auto members = JsonFields::membersOf(std::tie(JsonLists::measureColumn));
        if (!value.toObject().contains(JsonLists::measureColumn.key))
            add(path, QStringLiteral("expected an object with \"%1\"").arg(JsonLists::measureColumn.key));
        checkObject(value.toObject(), members, path + QLatin1Char('.'));
    }

    void checkPoint(const QJsonValue& value, const QString& path)
    {
        using JsonLists::xColumn;
        using JsonLists::yColumn;
        static const auto members = JsonFields::membersOf(std::tie(JsonLists::lumColumn, xColumn, yColumn));
        expect(value.isObject(), path, Type::Point);
        const QJsonObject point = value.toObject();
        checkObject(point, members, path + QLatin1Char('.'));
        for (const JsonMember& member : members) {
            if (value.isObject() && !point.contains(member.column.key))
                add(path, QStringLiteral("has no %1").arg(member.column.key));
        }
        const double sum = point.value(xColumn.key).toDouble() + point.value(yColumn.key).toDouble();
        if (sum > 1.0)
            add(path, QStringLiteral("x + y is %1, outside the chromaticity diagram").arg(sum));
    }

    void checkLengths(const QJsonObject& holder, const std::vector<JsonMember>& members, const QString& path)
    {
        std::map<int, std::pair<QLatin1String, int>> firstOfGroup;
        for (const auto& [column, within] : members) {
            const QJsonValue list = holder.value(column.key);
            if (column.lengthGroup == 0 || !list.isArray())
                continue;
            const int length = list.toArray().size();
            const auto [first, isFirst] = firstOfGroup.try_emplace(column.lengthGroup, column.key, length);
            const auto& [firstKey, firstLength] = first->second;
            if (!isFirst && firstLength != length)
                add(path + column.key,
                    QStringLiteral("has %1 entries, %2 has %3").arg(length).arg(firstKey).arg(firstLength));
        }
    }

    QStringList m_faults;
};

} // namespace

QStringList documentFaults(const QJsonObject& root, const std::vector<JsonMember>& members)
{
    Checker checker;
    checker.checkObject(root, members, {});
    return checker.faults();
}
