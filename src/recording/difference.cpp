#include "difference.h"

#include <suite/common/jsonreader.h>

#include <algorithm>

namespace Recording {

namespace {

constexpr int longText = 60; ///< characters; a longer one is told by where it differs

QString placed(const QString& path, const QString& text)
{
    return path.isEmpty() ? text : QStringLiteral("%1: %2").arg(path, text);
}

QString inTexts(const QString& expected, const QString& found)
{
    const auto place = std::mismatch(expected.begin(), expected.end(), found.begin(), found.end()).first;
    return QStringLiteral("%1 characters, expected %2, different from character %3 on")
        .arg(found.size())
        .arg(expected.size())
        .arg(place - expected.begin() + 1);
}

QString between(const QJsonValue& expected, const QJsonValue& found, const QString& path);

QString inObjects(const QJsonObject& expected, const QJsonObject& found, const QString& path)
{
    QStringList keys = expected.keys() + found.keys();
    keys.sort();
    keys.removeDuplicates();
    for (const QString& key : qAsConst(keys)) {
        const QString inner = path.isEmpty() ? key : path + QLatin1Char('.') + key;
        const QString difference = between(expected.value(key), found.value(key), inner);
        if (!difference.isEmpty())
            return difference;
    }
    return {};
}

QString inArrays(const QJsonArray& expected, const QJsonArray& found, const QString& path)
{
    for (int i = 0; i < std::max(expected.size(), found.size()); ++i) {
        const QString inner = QStringLiteral("%1[%2]").arg(path).arg(i);
        const QString difference = between(i < expected.size() ? expected[i] : QJsonValue(QJsonValue::Undefined),
                                           i < found.size() ? found[i] : QJsonValue(QJsonValue::Undefined), inner);
        if (!difference.isEmpty())
            return difference;
    }
    return {};
}

QString between(const QJsonValue& expected, const QJsonValue& found, const QString& path)
{
    if (expected == found)
        return {};
    if (expected.isObject() && found.isObject())
        return inObjects(expected.toObject(), found.toObject(), path);
    if (expected.isArray() && found.isArray())
        return inArrays(expected.toArray(), found.toArray(), path);
    if (expected.isString() && found.isString() &&
        std::max(expected.toString().size(), found.toString().size()) > longText)
        return placed(path, inTexts(expected.toString(), found.toString()));
    return placed(
        path, QStringLiteral("expected %1, found %2").arg(Common::describeJson(expected), Common::describeJson(found)));
}

} // namespace

QString firstDifference(const QJsonValue& expected, const QJsonValue& found)
{
    return between(expected, found, {});
}

} // namespace Recording
