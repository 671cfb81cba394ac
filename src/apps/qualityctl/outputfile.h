#pragma once

#include <QByteArray>
#include <QString>

class QFileDevice;

// Files that a command makes for the user. A name that is not UTF-8 is refused: the file would get another one.

/// Makes a folder with its parents. Throws CommandError, usage or cannot create.
void makeOutputFolder(const QString& path);

/// Whether a name leads to a regular file. Only such a file may be opened to look at what it holds, or removed to make
/// room: a pipe would be waited for, and a device be gone.
bool isRegularFile(const QString& path);

/// Throws CommandError, cannot create: for a file that is there, unless `force`; for a folder, a pipe, a socket and a
/// block device always. A character device is no file to replace: it is written through.
void requireNewFile(const QString& path, bool force);

/// Replaces a file whole, also one that may not be written, and keeps whose it is and who may read it; a link is
/// followed. Throws CommandError: cannot create, or input/output.
void writeOutputFile(const QString& path, const QByteArray& content);

/// Writes all of it to a file that is open unbuffered. When that fails, the file's errorString() says why: Qt itself
/// gives no reason where a part still fitted.
bool writeThrough(QFileDevice& file, const QByteArray& content);

