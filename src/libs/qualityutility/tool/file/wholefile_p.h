#pragma once

#include <QByteArray>
#include <QString>

enum class WholeFileResult { Written, OpenFailed, WriteFailed };

/// Replaces a file's content whole: the new one is written beside it and moved over it. Whatever happens at any moment
/// (a kill, a full disk), the file holds all of the old content or all of the new. Permissions survive, a symbolic link
/// is followed. On failure nothing is left beside it.
WholeFileResult replaceWholeFile(const QString& path, const QByteArray& content);
