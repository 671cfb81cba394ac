#include "outputfile.h"

#include "output.h"

#include <QDir>
#include <QFileInfo>
#include <QSaveFile>

void makeOutputFolder(const QString& path)
{
    if (path.isEmpty())
        throw CommandError{ExitCode::Usage, QStringLiteral("--out: expected a folder, found an empty text")};
    if (QFileInfo::exists(path) && !QFileInfo(path).isDir())
        throw CommandError{ExitCode::CannotCreate,
                           QStringLiteral("--out %1: expected a folder, found a file").arg(path)};
    if (!QDir().mkpath(path))
        throw CommandError{ExitCode::CannotCreate, QStringLiteral("--out %1: the folder cannot be made").arg(path)};
}

void requireNewFile(const QString& path, bool force)
{
    const QFileInfo info(path);
    if ((info.exists() || info.isSymLink()) && !force) // a dangling link is followed when it is written
        throw CommandError{ExitCode::CannotCreate, QStringLiteral("%1 exists").arg(path),
                           QStringLiteral("--force replaces it")};
}

void writeOutputFile(const QString& path, const QByteArray& content)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        throw CommandError{ExitCode::CannotCreate, QStringLiteral("%1: %2").arg(path, file.errorString())};
    // commit() alone reports success on a full disk; cancelling forgets the cause.
    const bool isWritten = file.write(content) == content.size() && file.flush();
    const QString reason = file.errorString();
    if (!isWritten)
        file.cancelWriting();
    if (!isWritten || !file.commit())
        throw CommandError{ExitCode::InputOutput,
                           QStringLiteral("%1: %2").arg(path, isWritten ? file.errorString() : reason)};
}
