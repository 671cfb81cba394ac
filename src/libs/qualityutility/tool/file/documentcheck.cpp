#include "documentcheck.h"

#include "documentfaults_p.h"
#include "finegraycache_p.h"
#include "finegrayconfig_p.h"
#include "jsonlists_p.h"
#include "niccdocuments_p.h"

#include <algorithm>

namespace {

using Type = JsonColumn::Type;

/// In the order in which they are told: a cache that an updater created also holds the empty configuration's keys.
const std::vector<DocumentKind>& kinds()
{
    static const std::vector<DocumentKind> all{NiccDocuments::configuration(), NiccDocuments::newNicc(),
                                               FineGrayCache::kind(), FineGrayConfig::kind(),
                                               FineGrayCache::kindOfMeasuresAlone()};
    return all;
}

double luminance(const QJsonValue& point)
{
    return point.toObject().value(JsonLists::lumColumn.key).toDouble();
}

/// How many there are, and the range of what is counted.
QString describeNumbers(const QJsonArray& array, const QString& noun, const QString& unit,
                        double (*number)(const QJsonValue&))
{
    if (array.isEmpty())
        return QStringLiteral("none");
    double min = number(array.first());
    double max = min;
    for (const QJsonValue value : array) {
        min = std::min(min, number(value));
        max = std::max(max, number(value));
    }
    return QStringLiteral("%1 %2, %3 to %4%5").arg(array.size()).arg(noun).arg(min).arg(max).arg(unit);
}

QString describePoint(const QJsonValue& value)
{
    const QJsonObject point = value.toObject();
    return QStringLiteral("%1 cd/m2, x %2, y %3")
        .arg(luminance(value))
        .arg(point.value(JsonLists::xColumn.key).toDouble())
        .arg(point.value(JsonLists::yColumn.key).toDouble());
}

QString describe(const QJsonValue& value, Type type)
{
    const QJsonArray array = value.toArray();
    switch (type) {
    case Type::Points:
        return describeNumbers(array, QStringLiteral("points"), QStringLiteral(" cd/m2"), &luminance);
    case Type::Series:
        return QStringLiteral("%1 series").arg(array.size());
    case Type::Integers:
    case Type::Numbers:
        return describeNumbers(array, QStringLiteral("numbers"), {}, [](const QJsonValue& n) { return n.toDouble(); });
    case Type::Bool:
        return value.toBool() ? QStringLiteral("on") : QStringLiteral("off");
    case Type::Int:
    case Type::Number:
        return QString::number(value.toDouble(), 'g', 10);
    case Type::Text:
        return value.toString();
    case Type::Point:
        return describePoint(value);
    case Type::Object:
        break;
    }
    return {};
}

void summarize(const QJsonObject& holder, const std::vector<JsonMember>& members, const QString& path,
               QStringList& lines)
{
    for (const auto& [column, within] : members) {
        const QJsonValue value = holder.value(column.key);
        if (value.isUndefined())
            continue;
        if (column.type == Type::Object)
            summarize(value.toObject(), within, path + column.key + QLatin1Char('.'), lines);
        else
            lines << QStringLiteral("%1%2: %3").arg(path, column.key, describe(value, column.type));
    }
}

} // namespace

std::optional<DocumentCheck::Report> DocumentCheck::check(const QJsonObject& root)
{
    const auto isTold = [&root](const DocumentKind& kind) {
        return std::any_of(kind.signs.begin(), kind.signs.end(), [&](QLatin1String key) { return root.contains(key); });
    };
    const auto kind = std::find_if(kinds().begin(), kinds().end(), isTold);
    if (kind == kinds().end())
        return std::nullopt;
    Report report{kind->name, documentFaults(root, kind->members), {}};
    summarize(root, kind->members, {}, report.summary);
    return report;
}
