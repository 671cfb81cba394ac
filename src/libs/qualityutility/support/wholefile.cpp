#include "freshfile_p.h"
#include "wholefile_p.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#ifdef __linux__
#include <sys/xattr.h>
#endif

#include <QFile>
#include <QFileInfo>

#include <array>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <utility>

namespace Support {

namespace {

namespace fs = std::filesystem;

constexpr char prefix[] = ".whole-";
constexpr qint64 copyBlock = qint64{1024} * 1024;
constexpr mode_t modeBits = 0777;
constexpr mode_t newFileMode = 0666; // less the process's mask
constexpr mode_t privateMode = 0600;

class Descriptor
{
public:
    explicit Descriptor(int fd) : m_fd(fd) {}
    ~Descriptor() { close(); }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    bool isOpen() const { return m_fd >= 0; }
    int fd() const { return m_fd; }
    bool close() { return m_fd < 0 || ::close(std::exchange(m_fd, -1)) == 0; }

private:
    int m_fd;
};

struct Outcome
{
    WholeFileResult result = WholeFileResult::Written;
    int error = 0;
};

/// With the error of the system call just made.
Outcome failed(WholeFileResult result)
{
    return {result, errno};
}

/// Empty for a name that no file can have: cut at a NUL it would be another file's.
fs::path nativeName(const QString& path)
{
    return path.contains(QChar::Null) ? fs::path() : fs::path(QFile::encodeName(path).toStdString());
}

/// Sets errno where the result is FileKind::Other.
FileKind look(const fs::path& name, struct stat& found)
{
    if (name.empty() || ::stat(name.c_str(), &found) != 0) {
        errno = name.empty() ? EINVAL : errno;
        return errno == ENOENT ? FileKind::None : FileKind::Other;
    }
    if (S_ISREG(found.st_mode))
        return FileKind::Regular;
    if (S_ISCHR(found.st_mode))
        return FileKind::Device;
    errno = S_ISDIR(found.st_mode) ? EISDIR : ENOTSUP;
    return FileKind::Other;
}

/// Where a chain of links ends, whether or not something is there. look() has found that it does end.
fs::path followed(fs::path name)
{
    std::error_code error;
    for (fs::path target = fs::read_symlink(name, error); !error; target = fs::read_symlink(name, error))
        name = name.parent_path() / target;
    return name;
}

bool writeAll(int file, const QByteArray& content)
{
    for (qint64 done = 0; done < content.size();) {
        const ssize_t count = ::write(file, content.constData() + done, static_cast<size_t>(content.size() - done));
        if (count > 0)
            done += count;
        else if (count == 0 || errno != EINTR)
            return false;
    }
    return true;
}

bool bringToDisk(int file)
{
    return ::fsync(file) == 0 || errno == EINVAL; // file systems without it say so
}

/// Gives a new file the owner and group of the one that it replaces, as far as the process may. False when the group
/// is another one then.
bool keepOwner(int file, const struct stat& old)
{
    // Only root may give a file away, but a member of the group may give it to the group.
    return ::fchown(file, old.st_uid, old.st_gid) == 0 || ::fchown(file, static_cast<uid_t>(-1), old.st_gid) == 0;
}

/// Gives a new file the access-control list of the one that it replaces, or none where that has none, whatever the
/// folder gives to new files. False when the mode alone would not say who may read it.
bool keepAccessList(int file, const fs::path& old, bool isGroupKept)
{
#ifdef __linux__
    constexpr const char* attribute = "system.posix_acl_access";
    const auto isAbsent = [] { return errno == ENODATA || errno == ENOTSUP; };
    std::array<char, 4096> list{};
    const ssize_t size = ::getxattr(old.c_str(), attribute, list.data(), list.size());
    if (size >= 0)
        return isGroupKept && ::fsetxattr(file, attribute, list.data(), static_cast<size_t>(size), 0) == 0;
    return isAbsent() && (::fremovexattr(file, attribute) == 0 || isAbsent());
#else
    static_cast<void>(file), static_cast<void>(old), static_cast<void>(isGroupKept);
    return true;
#endif
}

/// The mode for a file whose group is another one now. The old group's people are among the others: each keeps only
/// what both might do.
mode_t withoutGroup(mode_t mode)
{
    const mode_t both = (mode >> 3) & mode & 07;
    return (mode & 0700) | (both << 3) | both;
}

void keepAttributes(int file, const fs::path& name, const struct stat& old, WholeFileWay way)
{
    mode_t mode = old.st_mode & modeBits;
    const bool isGroupKept = keepOwner(file, old);
    if (!isGroupKept)
        mode = withoutGroup(mode);
    if (!keepAccessList(file, name, isGroupKept))
        mode &= 0700;
    if (way != WholeFileWay::Update)
        mode |= S_IWUSR;
    static_cast<void>(::fchmod(file, mode)); // where modes cannot be set the new file stays private
}

/// Whether the last call was refused for what the folder allows, and not for what is in it.
bool isFolderClosed()
{
    return errno == EACCES || errno == EPERM;
}

bool isWritable(const fs::path& name)
{
    return Descriptor(::open(name.c_str(), O_WRONLY | O_CLOEXEC | O_NONBLOCK)).isOpen();
}

/// Makes sure that an open file can take `size` bytes. It may be longer afterwards, also on failure.
bool reserve(int file, off_t before, off_t size)
{
#ifdef __APPLE__
    fstore_t store{F_ALLOCATEALL, F_PEOFPOSMODE, 0, size - before, 0};
    return size <= before || ::fcntl(file, F_PREALLOCATE, &store) != -1;
#else
    static_cast<void>(before); // holes in the file are filled too
    errno = size > 0 ? ::posix_fallocate(file, 0, size) : 0;
    return errno == 0;
#endif
}

bool writeFromStart(int file, const QByteArray& content, off_t size)
{
    return ::lseek(file, 0, SEEK_SET) == 0 && writeAll(file, content) && bringToDisk(file) &&
           ::ftruncate(file, size) == 0;
}

Outcome writeInPlace(const fs::path& name, const QByteArray& content)
{
    const Descriptor file(::open(name.c_str(), O_RDWR | O_CLOEXEC));
    QFile reader;
    if (!file.isOpen() || !reader.open(file.fd(), QIODevice::ReadOnly | QIODevice::Unbuffered))
        return failed(WholeFileResult::OpenFailed);
    const qint64 before = reader.size();
    const QByteArray overwritten = reader.read(content.size()); // what lies behind goes last, when all else is done
    if (overwritten.size() != qMin<qint64>(before, content.size()))
        return failed(WholeFileResult::OpenFailed);
    const bool hasRoom = reserve(file.fd(), before, content.size());
    if (hasRoom && writeFromStart(file.fd(), content, content.size()))
        return {};
    const Outcome outcome = failed(WholeFileResult::WriteFailed);
    writeFromStart(file.fd(), hasRoom ? overwritten : QByteArray(), before);
    return outcome;
}

/// With the error of the system call that refused a new file. A link at the target was to give way itself: others were
/// followed.
Outcome changeInPlace(const fs::path& target, const QByteArray& content)
{
    const Outcome refused = failed(WholeFileResult::OpenFailed);
    std::error_code error;
    return fs::is_symlink(target, error) ? refused : writeInPlace(target, content);
}

Outcome writeThrough(const fs::path& device, const QByteArray& content)
{
    Descriptor file(::open(device.c_str(), O_WRONLY | O_NOCTTY | O_CLOEXEC));
    if (!file.isOpen())
        return failed(WholeFileResult::OpenFailed);
    return writeAll(file.fd(), content) && file.close() ? Outcome() : failed(WholeFileResult::WriteFailed);
}

Outcome replace(const fs::path& name, const QByteArray& content, WholeFileWay way,
                FreshFile::Naming naming = FreshFile::Naming::Late)
{
    struct stat old
    {};
    const FileKind kind = look(name, old);
    if (kind == FileKind::Device)
        return writeThrough(name, content);
    const bool isThere = kind == FileKind::Regular;
    if (kind == FileKind::Other || (isThere && way == WholeFileWay::Update && !isWritable(name)))
        return failed(WholeFileResult::OpenFailed);
    const fs::path target = way == WholeFileWay::RenewName ? name : followed(name);
    FreshFile fresh(target.parent_path(), prefix, isThere ? privateMode : newFileMode, naming);
    if (fresh.isOpen()) {
        if (isThere)
            keepAttributes(fresh.fd(), name, old, way);
        if (!writeAll(fresh.fd(), content) || !bringToDisk(fresh.fd()))
            return failed(WholeFileResult::WriteFailed);
        if (fresh.moveTo(target))
            return {};
        if (!fresh.hasName())
            return replace(name, content, way, FreshFile::Naming::AtOnce);
    }
    if (isThere && isFolderClosed()) // also one where only the owner of a file may replace it
        return changeInPlace(target, content);
    return failed(fresh.isOpen() ? WholeFileResult::WriteFailed : WholeFileResult::OpenFailed);
}

/// What is done to a file before it is moved over the target.
bool finishFor(const fs::path& target, int file)
{
    struct stat old
    {};
    const FileKind kind = look(target, old);
    if (kind == FileKind::Regular)
        keepAttributes(file, target, old, WholeFileWay::RenewName);
    return (kind == FileKind::Regular || kind == FileKind::None) && bringToDisk(file);
}

bool copyBytes(QFile& from, int to)
{
    while (!from.atEnd()) {
        const QByteArray block = from.read(copyBlock);
        if (block.isEmpty() || !writeAll(to, block))
            return false;
    }
    return from.error() == QFileDevice::NoError;
}

mode_t modeOf(QFile::Permissions permissions)
{
    const auto bits = static_cast<mode_t>(static_cast<int>(permissions)); // a hexadecimal digit for each three bits
    return ((bits >> 6) & 0700) | ((bits >> 1) & 0070) | (bits & 0007);
}

bool copy(const QString& source, const fs::path& target, FreshFile::Naming naming = FreshFile::Naming::Late)
{
    QFile from(source); // of the resource system too
    struct stat old
    {};
    const FileKind kind = look(target, old);
    if (kind == FileKind::Device || kind == FileKind::Other || !QFileInfo(source).isFile() ||
        !from.open(QIODevice::ReadOnly))
        return false;
    FreshFile fresh(target.parent_path(), prefix, privateMode, naming);
    if (!fresh.isOpen())
        return false;
    if (kind == FileKind::Regular)
        keepOwner(fresh.fd(), old);
    if (!copyBytes(from, fresh.fd()) || ::fchmod(fresh.fd(), modeOf(from.permissions())) != 0 ||
        !bringToDisk(fresh.fd()))
        return false;
    return fresh.moveTo(target) || (!fresh.hasName() && copy(source, target, FreshFile::Naming::AtOnce));
}

} // namespace

WholeFileResult replaceWholeFile(const QString& path, const QByteArray& content, WholeFileWay way, QString* reason)
{
    const Outcome outcome = replace(nativeName(path), content, way);
    if (reason && outcome.error != 0)
        *reason = qt_error_string(outcome.error);
    return outcome.result;
}

bool copyWholeFile(const QString& source, const QString& destination)
{
    return copy(source, nativeName(destination));
}

bool moveWholeFile(const QString& finished, const QString& path)
{
    const fs::path name = nativeName(finished);
    const fs::path target = nativeName(path);
    const Descriptor file(::open(name.c_str(), O_RDONLY | O_CLOEXEC));
    return file.isOpen() && finishFor(target, file.fd()) && ::rename(name.c_str(), target.c_str()) == 0;
}

bool moveWholeFile(FreshFile& finished, const QString& path)
{
    const fs::path target = nativeName(path);
    return finishFor(target, finished.fd()) && finished.moveTo(target);
}

FileKind fileKind(const QString& path)
{
    struct stat found
    {};
    return look(nativeName(path), found);
}

} // namespace Support
