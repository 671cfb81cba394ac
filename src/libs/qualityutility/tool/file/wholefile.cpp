#include "wholefile_p.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

namespace {

constexpr qint64 copyBlock = qint64{1024} * 1024;

/// commit() alone would put a short file in the place of the good one on a full disk, and report success: every byte
/// and the flush are checked before.
bool commitChecked(QSaveFile& file, bool isWritten)
{
    if (isWritten && file.flush())
        return file.commit();
    file.cancelWriting();
    return false;
}

bool copyBytes(QFile& from, QSaveFile& to)
{
    while (!from.atEnd()) {
        const QByteArray block = from.read(copyBlock);
        if (block.isEmpty() || to.write(block) != block.size())
            return false;
    }
    return from.error() == QFileDevice::NoError;
}

} // namespace

WholeFileResult replaceWholeFile(const QString& path, const QByteArray& content)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return WholeFileResult::OpenFailed;
    const bool isWritten = file.write(content) == content.size();
    return commitChecked(file, isWritten) ? WholeFileResult::Written : WholeFileResult::WriteFailed;
}

bool copyWholeFile(const QString& source, const QString& destination)
{
    QFile from(source);
    const QFileInfo old(destination);
    // A copy of a file that may not be written is one itself, and the next copy replaces it all the same.
    if (old.isFile() && !old.isWritable() && from.exists())
        QFile::setPermissions(destination, old.permissions() | QFile::WriteOwner);
    QSaveFile to(destination);
    if (!from.open(QIODevice::ReadOnly) || !to.open(QIODevice::WriteOnly))
        return false;
    const bool isCopied = copyBytes(from, to) && to.setPermissions(from.permissions());
    return commitChecked(to, isCopied);
}
