#include "filehelper.h"

#include <QDir>
#include <QFileInfo>

namespace {

constexpr auto owners = QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner;

/// Lets the owner look into a folder and all below it, and delete what is there. Links are not followed.
void openFolders(const QString& path)
{
    const QFile::Permissions permissions = QFile::permissions(path);
    if ((permissions & owners) != owners)
        QFile::setPermissions(path, permissions | owners);
    for (const QFileInfo& inner : QDir(path).entryInfoList(QDir::AllDirs | QDir::Hidden | QDir::NoDotAndDotDot))
        if (!inner.isSymLink())
            openFolders(inner.filePath());
}

} // namespace

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
    if (!info.isDir())
        return false;
    if (QDir(entry).removeRecursively())
        return true;
    openFolders(entry);
    return QDir(entry).removeRecursively();
}

} // namespace Common
