#include "stagefolder.h"

#include <calibration/output.h>
#include <suite/common/filehelper.h>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QDebug>
#include <QDir>
#include <QFileInfo>
#include <QUuid>

#include <algorithm>
#include <cerrno>
#include <filesystem>

namespace Calibration {

namespace {

using Common::Fault;
using Common::Result;
namespace fs = std::filesystem;

const QLatin1String s_prefix(".qualityctl-");

fs::path native(const QString& path)
{
    return QFile::encodeName(path).toStdString();
}

bool moveOver(const QString& from, const QString& to)
{
    // QFile refuses to rename over what is there.
    std::error_code error;
    fs::rename(native(from), native(to), error);
    return !error;
}

bool hardLink(const QString& from, const QString& to)
{
    std::error_code error;
    fs::create_hard_link(native(from), native(to), error);
    return !error;
}

bool isThere(const QString& path)
{
    return QFileInfo(path).isSymLink() || QFileInfo::exists(path);
}

/// Gives a file a second name, so that its own is never without a file until it is replaced.
bool setAside(const QString& path, const QString& aside)
{
    return (!QFileInfo(path).isSymLink() && hardLink(path, aside)) || moveOver(path, aside);
}

/// Opens and locks a folder; -1 where another process has it or it is gone. The system ends the lock with the process.
int lockFolder(const QString& path)
{
    const int folder = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
    if (folder < 0)
        return -1;
    const bool isLocked = ::flock(folder, LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK; // not every disk has locks
    if (isLocked && isThere(path))
        return folder;
    ::close(folder);
    return -1;
}

/// A new locked folder, whose path is set; -1 where none can be made.
int makeLocked(const QDir& parent, QString& path)
{
    constexpr int maxAttempts = 10; // another process may take one for abandoned before it is locked
    for (int i = 0, folder = -1; i < maxAttempts; ++i) {
        path = parent.absoluteFilePath(s_prefix + QUuid::createUuid().toString(QUuid::Id128));
        if (::mkdir(QFile::encodeName(path).constData(), 0700) != 0)
            return -1;
        if ((folder = lockFolder(path)) >= 0)
            return folder;
    }
    return -1;
}

void clearAbandoned(const QDir& parent)
{
    for (const QString& name : parent.entryList({s_prefix + QLatin1Char('*')}, QDir::Dirs | QDir::Hidden)) {
        const int folder = ::open(QFile::encodeName(parent.filePath(name)).constData(), O_RDONLY | O_NOFOLLOW);
        if (folder >= 0 && ::flock(folder, LOCK_EX | LOCK_NB) == 0)
            Common::FileHelper::deleteDir(parent.filePath(name));
        if (folder >= 0)
            ::close(folder);
    }
}

} // namespace

Result<std::unique_ptr<StageFolder>> StageFolder::make(const QString& parent)
{
    if (!QFileInfo(parent).isDir()) // such as the temporary location, where TMPDIR leads nowhere
        return Fault{Fault::Kind::InputOutput,
                     QStringLiteral("\"%1\"").arg(parent),
                     {},
                     QStringLiteral("no such folder for what is unpacked")};
    clearAbandoned(QDir(parent));
    QString path;
    const int lock = makeLocked(QDir(parent), path);
    if (lock < 0)
        return Fault{Fault::Kind::InputOutput, parent, {}, QStringLiteral("no folder can be made in it")};
    return std::unique_ptr<StageFolder>(new StageFolder(path, lock));
}

StageFolder::~StageFolder()
{
    if (!m_isKept && !Common::FileHelper::deleteDir(m_path))
        qWarning() << "folder" << m_path << "cannot be deleted";
    ::close(m_lock);
}

void StageFolder::keep()
{
    const QString kept = QFileInfo(m_path).path() + QStringLiteral("/kept-") + QFileInfo(m_path).fileName().mid(1);
    if (!m_isKept && moveOver(m_path, kept))
        m_path = kept;
    m_isKept = true;
}

Result<QString> StageFolder::makeFolder(const QString& name) const
{
    const QString path = m_path + QLatin1Char('/') + name;
    if (!QDir().mkdir(path))
        return Fault{Fault::Kind::InputOutput, path, {}, QStringLiteral("the folder cannot be made")};
    return path;
}

NewFolders::~NewFolders()
{
    for (const QString& folder : m_folders)
        QDir().rmdir(folder);
}

void NewFolders::note(const QString& path)
{
    QStringList missing;
    for (QString folder = QDir::cleanPath(QDir::current().absoluteFilePath(path)); !isThere(folder);
         folder = QFileInfo(folder).path())
        missing << folder;
    m_folders = missing + m_folders; // the innermost first
}

FileMoves::FileMoves(StageFolder& stage) : m_stage(stage) {}

FileMoves::~FileMoves()
{
    const auto takeBack = [](const Move& move) {
        return move.aside.isEmpty() ? QFile::remove(move.to) : moveOver(move.aside, move.to);
    };
    QStringList failed;
    std::for_each(m_moves.rbegin(), m_moves.rend(), [&](const Move& move) {
        if (!takeBack(move) && !takeBack(move))
            failed << move.to;
    });
    if (failed.isEmpty())
        return;
    m_stage.keep();
    qWarning() << "files that could not be put back:" << failed << "the earlier ones are in" << m_stage.path();
}

Result<void> FileMoves::move(const QString& from, const QString& to, bool force)
{
    const Fault failure{Fault::Kind::InputOutput, to, {}, QStringLiteral("cannot be written")};
    if (!force || !isThere(to)) {
        if (moveToNewName(from, to)) {
            m_moves.append({to, {}});
            return {};
        }
        const auto isNew = requireNewFile(to, force);
        return isNew ? failure : isNew.fault();
    }
    if (m_aside.isEmpty()) {
        const auto made = m_stage.makeFolder(QStringLiteral("replaced"));
        if (!made)
            return made.fault();
        m_aside = *made;
    }
    const QString aside = QStringLiteral("%1/%2").arg(m_aside, QString::number(m_moves.size()));
    QFile::setPermissions(from, QFile::permissions(to));
    if (QFileInfo(to).isDir() || !setAside(to, aside))
        return failure;
    m_moves.append({to, aside});
    if (!moveOver(from, to))
        return failure;
    return {};
}

bool moveToNewName(const QString& from, const QString& to)
{
    if (hardLink(from, to)) // which never replaces
        return QFile::remove(from) || QFile::remove(from);
    // Not every disk knows hard links.
    return !isThere(to) && moveOver(from, to);
}

} // namespace Calibration
