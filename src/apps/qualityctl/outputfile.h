#pragma once

#include <QByteArray>
#include <QString>

// Files that a command makes for the user.

/// Makes a folder with its parents. Throws CommandError, cannot create.
void makeOutputFolder(const QString& path);

/// Throws CommandError, cannot create, for a file that is there, unless `force`.
void requireNewFile(const QString& path, bool force);

/// Replaces a file whole. Throws CommandError: cannot create, or input/output.
void writeOutputFile(const QString& path, const QByteArray& content);
