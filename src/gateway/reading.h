#pragma once

#include <QByteArray>
#include <QJsonObject>

namespace Gateway {

/// What a message's payload says, for people and for comparisons: numbers, texts and lists as they are, bytes as their
/// Base64, a number that a double may not hold as text. Empty for a payload that is no map. Any thread.
QJsonObject readingOf(const QByteArray& payload);

} // namespace Gateway
