#pragma once

#include <QJsonObject>
#include <QString>

// Files that the user names. `what` says their role in messages: "gray table examples/x.csv: no such file".

/// Throws CommandError, no input, unless `path` is a file, no pipe or device, that can be read: for what is read more
/// than once.
void requireReadableFile(const QString& path, const QString& what);

/// The whole content, also of a pipe. Throws CommandError: no input; bad data for more than 256 MiB.
QByteArray readInputFile(const QString& path, const QString& what);

/// The content as a JSON object. Throws as readInputFile, and bad data for what is not one.
QJsonObject readJsonObject(const QString& path, const QString& what);
