#include "temporaryfolder_p.h"
#include <qualityutility/support/latin1_p.h>
#include <suite/common/filehelper.h>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QCryptographicHash>
#include <QDeadlineTimer>
#include <QDebug>
#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QThread>

#include <cerrno>
#include <cstdio>
#include <filesystem>

namespace {

constexpr auto prefix = Support::latin1(".unpacking-");
constexpr auto lockSuffix = Support::latin1(".lock");

/// Short, whatever the length of the folder's own name.
QString nameBeside(const QString& path)
{
    const QFileInfo folder(path);
    const QByteArray hash = QCryptographicHash::hash(folder.fileName().toUtf8(), QCryptographicHash::Sha1);
    return folder.path() + QLatin1Char('/') + prefix + QString::fromLatin1(hash.toHex());
}

bool isThere(const QString& path)
{
    return QFileInfo(path).isSymLink() || QFileInfo::exists(path);
}

bool moveOver(const QString& from, const QString& to)
{
    // QFile and QDir refuse to rename over what is there.
    std::error_code error;
    std::filesystem::rename(QFile::encodeName(from).toStdString(), QFile::encodeName(to).toStdString(), error);
    return !error;
}

/// Exchanges what two names stand for, at once. False where the system cannot.
bool exchange([[maybe_unused]] const QString& one, [[maybe_unused]] const QString& other)
{
#ifdef RENAME_EXCHANGE
    return ::renameat2(AT_FDCWD, QFile::encodeName(one).constData(), AT_FDCWD, QFile::encodeName(other).constData(),
                       RENAME_EXCHANGE) == 0;
#else
    return false;
#endif
}

/// Whether an open file is still the one of this name: who holds a lock deletes its file.
bool isNamed(int file, const QByteArray& name)
{
    struct stat open
    {};
    struct stat named
    {};
    return ::fstat(file, &open) == 0 && ::lstat(name.constData(), &named) == 0 && open.st_dev == named.st_dev &&
           open.st_ino == named.st_ino;
}

/// Opens a lock's file, without writing: it may be left from another user's process. A new one is made where asked.
int openLock(const QByteArray& name, bool mayCreate)
{
    const int file = ::open(name.constData(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
    return file < 0 && errno == ENOENT && mayCreate
               ? ::open(name.constData(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0644)
               : file;
}

/// Takes a lock, which the system ends with its process. The open file, or the system's error, negative.
int lock(const QString& path, bool mayCreate, int patience)
{
    constexpr int pause = 10; // milliseconds
    const QByteArray name = QFile::encodeName(path);
    for (const QDeadlineTimer deadline(patience);;) {
        const int file = openLock(name, mayCreate);
        if (file < 0 && errno != EEXIST) // made by another in between
            return -errno;
        const int error = file >= 0 && ::flock(file, LOCK_EX | LOCK_NB) == 0 ? 0 : errno;
        if (error == 0 && isNamed(file, name))
            return file;
        if (file >= 0)
            ::close(file);
        if (error != 0 && (deadline.hasExpired() || (error != EWOULDBLOCK && error != EEXIST)))
            return -error;
        if (error != 0)
            QThread::msleep(pause);
    }
}

void unlock(int file, const QString& path)
{
    ::unlink(QFile::encodeName(path).constData()); // while it is locked
    ::close(file);
}

} // namespace

TemporaryFolder::TemporaryFolder(const QString& path, int patience)
    : m_path(path), m_beside(nameBeside(path)), m_lock(lock(m_beside + lockSuffix, true, patience))
{
    if (m_lock < 0)
        return;
    putBack();
    clearBeside(m_beside);
    clearAbandoned();
}

TemporaryFolder::~TemporaryFolder()
{
    if (m_lock >= 0)
        unlock(m_lock, m_beside + lockSuffix);
}

std::optional<QString> TemporaryFolder::fault() const
{
    if (m_lock >= 0)
        return std::nullopt;
    return m_lock == -EWOULDBLOCK ? QStringLiteral("another process is using its temporary folder")
                                  : QStringLiteral("no temporary folder can be made: %1").arg(qt_error_string(-m_lock));
}

QString TemporaryFolder::makeFresh() const
{
    QTemporaryDir fresh(m_beside + QStringLiteral("-XXXXXX")); // of mode 0700
    fresh.setAutoRemove(false);
    return fresh.isValid() ? fresh.path() : QString();
}

bool TemporaryFolder::replaceBy(const QString& fresh) const
{
    if (!isThere(m_path))
        return moveOver(fresh, m_path);
    if (!QFileInfo(m_path).isSymLink() && !QFileInfo(m_path).isDir())
        return false;
    if (exchange(fresh, m_path)) {
        clear(fresh);
        return true;
    }
    const QString aside = m_beside + QStringLiteral("-old");
    if (!moveOver(m_path, aside))
        return false;
    if (!moveOver(fresh, m_path)) {
        putBack();
        return false;
    }
    clear(aside);
    return true;
}

void TemporaryFolder::putBack() const
{
    const QString aside = m_beside + QStringLiteral("-old");
    if (!isThere(aside))
        return;
    if (isThere(m_path))
        clear(aside);
    else if (!moveOver(aside, m_path) && !moveOver(aside, m_path))
        qCritical() << "folder" << m_path << "cannot be put back, it is" << aside;
}

bool TemporaryFolder::clear(const QString& folder)
{
    if (Common::FileHelper::deleteDir(folder))
        return true;
    qCritical() << "folder" << folder << "cannot be deleted";
    return false;
}

/// The fresh folders of a name whose lock is held. One that stood aside is none of them.
void TemporaryFolder::clearBeside(const QString& beside)
{
    const QFileInfo name(beside);
    const QStringList pattern{name.fileName() + QStringLiteral("-??????")};
    for (const QString& left : name.dir().entryList(pattern, QDir::Dirs | QDir::Hidden))
        Common::FileHelper::deleteDir(name.dir().filePath(left));
}

/// What is left of other folders: a lock that can be had was left by a process that is no more.
void TemporaryFolder::clearAbandoned() const
{
    const QDir place = QFileInfo(m_path).dir();
    const QStringList pattern{prefix + QLatin1Char('*') + lockSuffix};
    for (const QString& left : place.entryList(pattern, QDir::Files | QDir::Hidden)) {
        const QString path = place.filePath(left);
        const int file = path == m_beside + lockSuffix ? -1 : lock(path, false, 0);
        if (file < 0)
            continue;
        clearBeside(path.chopped(lockSuffix.size()));
        unlock(file, path);
    }
}
