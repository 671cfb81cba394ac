#include "latin1_p.h"
#include "unnamedfile_p.h"
#include "wholefile_p.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QDir>
#include <QFileInfo>
#include <QRandomGenerator>

#include <cerrno>

namespace Support {

namespace {

constexpr auto prefix = latin1(".packing-");
constexpr int maxAttempts = 100; // to find a name that nobody has

QString randomName(const QString& target)
{
    constexpr int digits = 6;
    const quint32 number = QRandomGenerator::system()->bounded(1u << 24);
    return QFileInfo(target).absoluteDir().filePath(
        prefix + QString::number(number, 16).rightJustified(digits, QLatin1Char('0')));
}

/// Opens a file without a name; -1 where there is none to be had.
int openUnnamed([[maybe_unused]] const QString& folder, [[maybe_unused]] mode_t mode)
{
#ifdef O_TMPFILE
    if (::access("/proc/self/fd", X_OK) == 0) // the way to a name later
        return ::open(QFile::encodeName(folder).constData(), O_TMPFILE | O_RDWR | O_CLOEXEC, mode);
#endif
    return -1;
}

/// Gives a file without a name this one, which nobody may have.
bool link([[maybe_unused]] int file, [[maybe_unused]] const QString& name)
{
#ifdef O_TMPFILE
    const QByteArray self = "/proc/self/fd/" + QByteArray::number(file);
    return ::linkat(AT_FDCWD, self.constData(), AT_FDCWD, QFile::encodeName(name).constData(), AT_SYMLINK_FOLLOW) == 0;
#else
    return false;
#endif
}

/// Locks an open file for as long as it is open. False also where it has lost its name meanwhile.
bool lock(int file)
{
    struct stat info
    {};
    return ::flock(file, LOCK_EX | LOCK_NB) == 0 && ::fstat(file, &info) == 0 && info.st_nlink > 0;
}

/// Deletes the files of this kind that no living process has locked.
void clearAbandoned(const QDir& folder)
{
    for (const QString& name : folder.entryList({prefix + QStringLiteral("??????")}, QDir::Files | QDir::Hidden)) {
        const QByteArray path = QFile::encodeName(folder.filePath(name));
        const int file = ::open(path.constData(), O_RDWR | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
        if (file >= 0 && lock(file))
            ::unlink(path.constData());
        if (file >= 0)
            ::close(file);
    }
}

} // namespace

UnnamedFile::UnnamedFile(const QString& target) : m_target(target)
{
    const QDir folder = QFileInfo(target).absoluteDir();
    clearAbandoned(folder);
    // Private while it waits to replace what may be so; a new one as the process makes its files.
    const mode_t mode = QFileInfo::exists(target) ? 0600 : 0666;
    const int file = openUnnamed(folder.path(), mode);
    const bool isOpen =
        file >= 0 ? m_file.open(file, QIODevice::ReadWrite, QFileDevice::AutoCloseHandle) : createNamed(mode);
    if (!isOpen)
        fail();
}

UnnamedFile::~UnnamedFile()
{
    if (!m_name.isEmpty() && !QFile::remove(m_name) && !QFile::remove(m_name))
        qWarning("%s cannot be deleted", qUtf8Printable(m_name));
}

bool UnnamedFile::createNamed(mode_t mode)
{
    for (int attempt = 0; attempt < maxAttempts; ++attempt) {
        const QString name = randomName(m_target);
        const int file = ::open(QFile::encodeName(name).constData(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, mode);
        if (file < 0 && errno != EEXIST)
            return false;
        if (file >= 0 && lock(file)) { // unless somebody has just taken it for abandoned
            m_name = name;
            return m_file.open(file, QIODevice::ReadWrite, QFileDevice::AutoCloseHandle);
        }
        if (file >= 0)
            ::close(file);
    }
    return false;
}

bool UnnamedFile::giveName()
{
    if (!m_name.isEmpty())
        return true;
    ::flock(m_file.handle(), LOCK_EX | LOCK_NB); // before anybody can see it
    for (int attempt = 0; attempt < maxAttempts; ++attempt) {
        const QString name = randomName(m_target);
        if (link(m_file.handle(), name)) {
            m_name = name;
            return true;
        }
        if (errno != EEXIST)
            return false;
    }
    return false;
}

bool UnnamedFile::moveToTarget()
{
    if (!m_file.flush() || (::fsync(m_file.handle()) != 0 && errno != EINVAL)) // EINVAL: a file system without it
        return fail();
    // Nothing stands there: its first name is its last.
    if (m_name.isEmpty() && !QFileInfo(m_target).isSymLink() && !QFileInfo::exists(m_target) &&
        link(m_file.handle(), m_target))
        return true;
    if (!giveName() || !moveWholeFile(m_name, m_target))
        return fail();
    m_name.clear();
    return true;
}

bool UnnamedFile::fail()
{
    m_fault = qt_error_string(errno);
    return false;
}

} // namespace Support
