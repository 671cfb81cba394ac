#include "latin1_p.h"
#include "unnamedfile_p.h"
#include "wholefile_p.h"

#include <QDir>
#include <QFileInfo>

#include <cerrno>

namespace Support {

namespace {

constexpr auto prefix = latin1(".packing-");

std::filesystem::path native(const QString& path)
{
    return QFile::encodeName(path).toStdString();
}

/// The target's folder, without what was abandoned in it: hosts too pack under names of this kind.
std::filesystem::path clearedFolder(const QString& target)
{
    const QDir folder = QFileInfo(target).absoluteDir();
    for (const QString& name : folder.entryList({prefix + QStringLiteral("??????")}, QDir::Files | QDir::Hidden))
        FreshFile::removeAbandoned(native(folder.filePath(name)));
    return native(folder.path());
}

} // namespace

// Private while it waits to replace what may be so; a new one as the process makes its files.
UnnamedFile::UnnamedFile(const QString& target)
    : m_target(target), m_fresh(clearedFolder(target), prefix.latin1(), QFileInfo::exists(target) ? 0600 : 0666)
{
    if (!m_fresh.isOpen() || !m_file.open(m_fresh.fd(), QIODevice::ReadWrite))
        fail();
}

bool UnnamedFile::moveToTarget()
{
    return (m_file.flush() && moveWholeFile(m_fresh, m_target)) || fail();
}

bool UnnamedFile::fail()
{
    m_fault = qt_error_string(errno);
    return false;
}

} // namespace Support
