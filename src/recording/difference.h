#pragma once

#include <QJsonValue>
#include <QString>

namespace Recording {

/// Where and how a value differs first from the expected one: "data.rLxy.cx: expected 0.68, found 0.64". Empty where
/// they are equal; the order of an object's members does not count.
QString firstDifference(const QJsonValue& expected, const QJsonValue& found);

} // namespace Recording
