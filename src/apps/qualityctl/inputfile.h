#pragma once

#include <QJsonObject>
#include <QString>

// Files that the user names. `what` says their role in messages: "gray table examples/x.csv: no such file".

/// Throws CommandError, no input, unless `path` is a file that can be read.
void requireReadableFile(const QString& path, const QString& what);

/// The whole content. Throws as requireReadableFile.
QByteArray readInputFile(const QString& path, const QString& what);

/// The content as a JSON object. Throws as requireReadableFile, and bad data for what is not one.
QJsonObject readJsonObject(const QString& path, const QString& what);
