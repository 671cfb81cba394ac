#include "freshfile_p.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QRandomGenerator>

#include <array>
#include <cerrno>
#include <cstdio>
#include <utility>

namespace Support {

namespace {

namespace fs = std::filesystem;

constexpr int countedNames = 16;
constexpr int maxAttempts = 100; // to find a name that nobody has

/// -1 where there is no file without a name to be had.
int openUnnamed([[maybe_unused]] const fs::path& folder, [[maybe_unused]] mode_t mode)
{
#ifdef O_TMPFILE
    if (::access("/proc/self/fd", X_OK) == 0) // the way to a name later
        return ::open(folder.empty() ? "." : folder.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, mode);
#endif
    return -1;
}

/// Gives a file without a name this one, which nobody may have.
bool link([[maybe_unused]] int file, [[maybe_unused]] const fs::path& name)
{
#ifdef O_TMPFILE
    const std::string self = "/proc/self/fd/" + std::to_string(file);
    return ::linkat(AT_FDCWD, self.c_str(), AT_FDCWD, name.c_str(), AT_SYMLINK_FOLLOW) == 0;
#else
    errno = ENOTSUP;
    return false;
#endif
}

/// Locks an open file for as long as it is open.
bool lock(int file)
{
    return ::flock(file, LOCK_EX | LOCK_NB) == 0;
}

/// Whether an open file has this name still: it may have been moved, and the name be another's.
bool isNamed(int file, const fs::path& name)
{
    struct stat open
    {};
    struct stat named
    {};
    return ::fstat(file, &open) == 0 && ::lstat(name.c_str(), &named) == 0 && S_ISREG(named.st_mode) &&
           open.st_dev == named.st_dev && open.st_ino == named.st_ino;
}

} // namespace

FreshFile::FreshFile(fs::path folder, std::string prefix, mode_t mode, Naming naming)
    : m_folder(std::move(folder)), m_prefix(std::move(prefix)), m_mode(mode)
{
    if (naming == Naming::Late)
        m_fd = openUnnamed(m_folder, m_mode);
    if (isOpen())
        lock(m_fd); // before anybody can see it
    else
        giveName();
}

FreshFile::~FreshFile()
{
    if (hasName())
        ::unlink(m_name.c_str());
    if (isOpen())
        ::close(m_fd);
}

bool FreshFile::moveTo(const fs::path& target)
{
    if (!hasName() && link(m_fd, target)) // nothing stands there: its first name is its last
        return true;
    if (!giveName() || ::rename(m_name.c_str(), target.c_str()) != 0)
        return false;
    m_name.clear();
    return true;
}

bool FreshFile::removeAbandoned(const fs::path& name)
{
    const int file = ::open(name.c_str(), O_RDWR | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
    if (file < 0)
        return false;
    const bool isRemoved = lock(file) && isNamed(file, name) && ::unlink(name.c_str()) == 0;
    ::close(file);
    return isRemoved;
}

bool FreshFile::giveName()
{
    for (int attempt = 0; !hasName() && attempt < maxAttempts; ++attempt) {
        const fs::path name = nameOf(attempt);
        if (takeName(name)) {
            m_name = name;
            for (int next = attempt + 1; next < countedNames && removeAbandoned(nameOf(next));)
                ++next;
        } else if (errno == EEXIST) {
            removeAbandoned(name); // and leaves the name: somebody else may take it just now
            errno = EEXIST;
        } else {
            return false;
        }
    }
    return hasName();
}

bool FreshFile::takeName(const fs::path& name)
{
    if (isOpen())
        return link(m_fd, name);
    const int file = ::open(name.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, m_mode);
    if (file < 0)
        return false;
    // Somebody may just have taken it for abandoned. Where no file can be locked nobody does.
    if ((lock(file) || errno != EWOULDBLOCK) && isNamed(file, name)) {
        m_fd = file;
        return true;
    }
    ::close(file);
    errno = EEXIST;
    return false;
}

/// After the counted ones names that nobody foresees, so that nobody can hold them all.
fs::path FreshFile::nameOf(int attempt) const
{
    const quint32 number =
        attempt < countedNames ? static_cast<quint32>(attempt) : QRandomGenerator::system()->bounded(quint32{1} << 24);
    std::array<char, 8> digits{};
    std::snprintf(digits.data(), digits.size(), "%06x", number);
    return m_folder / (m_prefix + digits.data());
}

} // namespace Support
