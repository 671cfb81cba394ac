#include "folder.h"

#include <calibration/output.h>

#include <QFileInfo>
#include <QLockFile>
#include <QTemporaryDir>

namespace Calibration {

namespace {

bool hasOwner(const QLockFile& lock)
{
    qint64 process = 0;
    QString text;
    return lock.getLockInfo(&process, &text, &text);
}

/// `fault` with the reason why nothing can be made beside `path`, or not grow there: the lock's own error has none.
QString withObstacle(const QString& fault, const QString& path)
{
    constexpr int probeBytes = 65536;
    const QTemporaryDir probe(QFileInfo(path).dir().filePath(QStringLiteral("probe-XXXXXX")));
    if (!probe.isValid())
        return QStringLiteral("%1: %2").arg(fault, probe.errorString());
    const auto written = writeOutput(probe.filePath(QStringLiteral("probe")), QByteArray(probeBytes, 0));
    return written ? fault : QStringLiteral("%1: %2").arg(fault, written.fault().found);
}

/// Why a lock could not be taken.
Fault lockFault(const QLockFile& lock, const QString& path)
{
    if (lock.error() != QLockFile::LockFailedError)
        return {lock.error() == QLockFile::PermissionError ? Fault::Kind::CannotCreate : Fault::Kind::InputOutput,
                path,
                {},
                withObstacle(QStringLiteral("cannot be made"), path)};
    qint64 process = 0;
    QString host;
    QString application;
    if (!lock.getLockInfo(&process, &host, &application))
        return {Fault::Kind::Unavailable, path, {}, QStringLiteral("names no owner, and cannot be removed")};
    return {Fault::Kind::Unavailable,
            QFileInfo(path).path(),
            {},
            QStringLiteral("another calibration is at work there"),
            QStringLiteral("process %1 on %2").arg(QString::number(process), host)};
}

} // namespace

QString journalPath(const QString& folder)
{
    return QDir(folder).filePath(QStringLiteral("calibration.jsonl"));
}

Folder::Folder(const QString& path)
    : m_dir(path), m_lock(std::make_unique<QLockFile>(in(QStringLiteral("calibration.lock"))))
{}

Folder::~Folder() = default;

Result<std::unique_ptr<Folder>> Folder::open(const QString& path)
{
    const auto made = makeFolder(path);
    if (!made)
        return made.fault();
    std::unique_ptr<Folder> folder(new Folder(path));
    const auto locked = folder->lock();
    if (!locked)
        return locked.fault();
    return folder;
}

Result<void> Folder::lock()
{
    constexpr int ownerlessMs = 1000;
    constexpr int attempts = 30;
    constexpr int attemptMs = 100;
    m_lock->setStaleLockTime(0); // a lock with a living owner never gets old
    bool isTaken = m_lock->tryLock(0);
    // An owner is written as soon as the file is made: one that stays without was left by a kill in between.
    for (int i = 0; i < attempts && !isTaken && m_lock->error() == QLockFile::LockFailedError && !hasOwner(*m_lock);
         ++i) {
        m_lock->setStaleLockTime(ownerlessMs);
        isTaken = m_lock->tryLock(attemptMs);
    }
    if (!isTaken)
        return lockFault(*m_lock, in(QStringLiteral("calibration.lock")));
    return {};
}

} // namespace Calibration
