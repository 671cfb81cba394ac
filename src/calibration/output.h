#pragma once

#include <suite/common/result.h>

#include <QByteArray>
#include <QList>
#include <QString>

class QFile;

namespace Calibration {

// Files that are made for the user. A name that is not UTF-8 is refused: the file would get another one.

/// Makes a folder with its parents. Faults: usage for an empty text; cannot create.
Common::Result<void> makeFolder(const QString& path);

/// Whether a name leads to a regular file. Only such a file may be opened to look at what it holds, or removed to make
/// room: a pipe would be waited for, and a device be gone.
bool isRegularFile(const QString& path);

/// Whether a file may be made at `path`: nothing is there, or `force` lets it be replaced. A folder, a pipe, a socket
/// and a block device never are; a character device is no file to replace: it is written through. Fault: cannot create.
Common::Result<void> requireNewFile(const QString& path, bool force);

/// Writes all of it to a file that is open unbuffered, in as many steps as it takes: Qt itself gives no reason where a
/// part still fitted. False: the file's error says why.
bool writeThrough(QFile& file, const QByteArray& content);

/// Replaces a file whole, or makes it, and keeps whose it is and who may read it; a link is followed. Faults: cannot
/// create; input/output.
Common::Result<void> writeOutput(const QString& path, const QByteArray& content);

/// A file to be made: its name in a folder, and what it will hold.
struct NewFile
{
    QString name;
    QByteArray content;
};

/// Replaces or makes several files of a folder, all or none: each stands on the disk whole before the first takes its
/// place. Faults: cannot create; input/output.
Common::Result<void> writeTogether(const QString& folder, const QList<NewFile>& files);

} // namespace Calibration
