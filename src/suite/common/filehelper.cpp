#include "filehelper.h"

#include <QDir>
#include <QFileInfo>

namespace Common {

bool FileHelper::createDir(const QString& path)
{
    return !path.isEmpty() && QDir().mkpath(path);
}

bool FileHelper::deleteDir(const QString& path)
{
    if (path.isEmpty() || QDir(path).isRoot())
        return false;
    // QDir would empty the target of a link, and a trailing "/" makes a link look like its target.
    const QString entry = QDir::cleanPath(path);
    const QFileInfo info(entry);
    if (info.isSymLink())
        return QFile::remove(entry);
    if (!info.exists())
        return true;
    return info.isDir() && QDir(entry).removeRecursively();
}

} // namespace Common
