#include "outputfile.h"

#include "output.h"

#include <QDir>
#include <QFileDevice>
#include <QFileInfo>
#include <qualityutility/support/wholefile_p.h>

namespace {

/// What is not UTF-8 on the command line has become the replacement character.
void requireSayableName(const QString& path)
{
    if (path.contains(QChar::ReplacementCharacter))
        throw CommandError{ExitCode::CannotCreate,
                           QStringLiteral("%1: the name is not UTF-8, the file would get another").arg(path)};
}

} // namespace

void makeOutputFolder(const QString& path)
{
    if (path.isEmpty())
        throw CommandError{ExitCode::Usage, QStringLiteral("--out: expected a folder, found an empty text")};
    requireSayableName(path);
    if (QFileInfo::exists(path) && !QFileInfo(path).isDir())
        throw CommandError{ExitCode::CannotCreate,
                           QStringLiteral("--out %1: expected a folder, found a file").arg(path)};
    if (!QDir().mkpath(path))
        throw CommandError{ExitCode::CannotCreate, QStringLiteral("--out %1: the folder cannot be made").arg(path)};
}

bool isRegularFile(const QString& path)
{
    return Support::fileKind(path) == Support::FileKind::Regular;
}

void requireNewFile(const QString& path, bool force)
{
    requireSayableName(path);
    const Support::FileKind kind = Support::fileKind(path);
    if (kind == Support::FileKind::Other && QFileInfo::exists(path))
        throw CommandError{
            ExitCode::CannotCreate,
            QStringLiteral("%1: expected a file, found a folder, a pipe or what else cannot be replaced").arg(path)};
    // A link to nothing is followed when it is written.
    if ((kind == Support::FileKind::Regular || (kind == Support::FileKind::None && QFileInfo(path).isSymLink())) &&
        !force)
        throw CommandError{ExitCode::CannotCreate, QStringLiteral("%1 exists").arg(path),
                           QStringLiteral("--force replaces it")};
}

bool writeThrough(QFileDevice& file, const QByteArray& content)
{
    qint64 done = 0;
    for (qint64 step = 1; step > 0 && done < content.size(); done += step)
        step = file.write(content.constData() + done, content.size() - done);
    return done == content.size();
}

void writeOutputFile(const QString& path, const QByteArray& content)
{
    requireSayableName(path);
    QString reason;
    const Support::WholeFileResult result =
        Support::replaceWholeFile(path, content, Support::WholeFileWay::Renew, &reason);
    if (result != Support::WholeFileResult::Written)
        throw CommandError{result == Support::WholeFileResult::OpenFailed ? ExitCode::CannotCreate
                                                                          : ExitCode::InputOutput,
                           QStringLiteral("%1: %2").arg(path, reason)};
}
