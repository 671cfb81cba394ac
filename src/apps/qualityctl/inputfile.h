#pragma once

#include <QJsonObject>
#include <QString>

// Files that the user names. `what` says their role in messages: "gray table examples/x.csv: no such file".

/// Throws CommandError, no input, unless `path` is a file, no pipe or device, that can be read: for what is read more
/// than once.
void requireReadableFile(const QString& path, const QString& what);

/// The most that an input may hold unless its kind says otherwise; docs/calibration.md lists them.
constexpr qint64 maxInputBytes = qint64{64} * 1024 * 1024;

/// The whole content, also of a pipe: a named one that nobody writes into within two seconds is refused. Throws
/// CommandError: no input; bad data for more than `maxBytes`.
QByteArray readInputFile(const QString& path, const QString& what, qint64 maxBytes = maxInputBytes);

/// The content as a JSON object. Throws as readInputFile, and bad data for what is not one.
QJsonObject readJsonObject(const QString& path, const QString& what);
