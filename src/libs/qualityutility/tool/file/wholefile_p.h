#pragma once

#include <QByteArray>
#include <QString>

// Files replaced whole: the new content is made beside the old and moved over it. Whatever happens at any moment (a
// kill, a full disk), the file holds all of the old content or all of the new. A symbolic link is followed. On failure
// nothing is left beside the file.

enum class WholeFileResult { Written, OpenFailed, WriteFailed };

/// Replaces a file's content; its permissions stay.
WholeFileResult replaceWholeFile(const QString& path, const QByteArray& content);

/// Replaces a file by a copy of another, with the other's permissions. A file copied onto itself stays as it is. False
/// when it fails.
bool copyWholeFile(const QString& source, const QString& destination);
