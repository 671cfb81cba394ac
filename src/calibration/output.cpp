#include "output.h"

#include <qualityutility/support/wholefile_p.h>

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>

namespace Calibration {

using Common::Fault;
using Common::Result;
using Support::FileKind;

namespace {

Fault cannotCreate(const QString& path, const QString& expected, const QString& found, const QString& hint = {})
{
    return {Fault::Kind::CannotCreate, path, expected, found, hint};
}

/// What is not UTF-8 on the command line has become the replacement character: the file would get another name.
Result<void> requireSayableName(const QString& path)
{
    if (path.contains(QChar::ReplacementCharacter))
        return cannotCreate(path, {}, QStringLiteral("the name is not UTF-8, the file would get another"));
    return {};
}

} // namespace

Result<void> makeFolder(const QString& path)
{
    if (path.isEmpty())
        return Fault{Fault::Kind::Usage, QStringLiteral("output folder"), QStringLiteral("a folder"),
                     QStringLiteral("an empty text")};
    const auto sayable = requireSayableName(path);
    if (!sayable)
        return sayable;
    if (QFileInfo::exists(path) && !QFileInfo(path).isDir())
        return cannotCreate(path, QStringLiteral("a folder"), QStringLiteral("a file"));
    if (!QDir().mkpath(path))
        return cannotCreate(path, {}, QStringLiteral("the folder cannot be made"));
    return {};
}

bool isRegularFile(const QString& path)
{
    return Support::fileKind(path) == FileKind::Regular;
}

Result<void> requireNewFile(const QString& path, bool force)
{
    const auto sayable = requireSayableName(path);
    if (!sayable)
        return sayable;
    const FileKind kind = Support::fileKind(path);
    if (kind == FileKind::Other && QFileInfo::exists(path))
        return cannotCreate(path, QStringLiteral("a file"),
                            QFileInfo(path).isDir() ? QStringLiteral("a folder") : QStringLiteral("no regular file"));
    // A link to nothing is followed when it is written.
    if ((kind == FileKind::Regular || (kind == FileKind::None && QFileInfo(path).isSymLink())) && !force)
        return cannotCreate(path, {}, QStringLiteral("exists"), QStringLiteral("--force replaces it"));
    return {};
}

bool writeThrough(QFile& file, const QByteArray& content)
{
    qint64 done = 0;
    for (qint64 step = 1; step > 0 && done < content.size(); done += step)
        step = file.write(content.constData() + done, content.size() - done);
    return done == content.size();
}

Result<void> writeOutput(const QString& path, const QByteArray& content)
{
    const auto sayable = requireSayableName(path);
    if (!sayable)
        return sayable;
    QString reason;
    switch (Support::replaceWholeFile(path, content, Support::WholeFileWay::Renew, &reason)) {
    case Support::WholeFileResult::Written:
        return {};
    case Support::WholeFileResult::OpenFailed:
        return Fault{Fault::Kind::CannotCreate, path, {}, reason};
    case Support::WholeFileResult::WriteFailed:
        break;
    }
    return Fault{Fault::Kind::InputOutput, path, {}, reason};
}

Result<void> writeTogether(const QString& folder, const QList<NewFile>& files)
{
    for (const NewFile& file : files) { // what cannot be replaced shows before the first is
        const auto isPossible = requireNewFile(QDir(folder).filePath(file.name), true);
        if (!isPossible)
            return isPossible;
    }
    const QTemporaryDir beside(QDir(folder).filePath(QStringLiteral(".new-XXXXXX")));
    if (!beside.isValid())
        return Fault{Fault::Kind::CannotCreate, folder, {}, beside.errorString()};
    for (const NewFile& file : files) {
        const auto written = writeOutput(beside.filePath(file.name), file.content);
        if (!written)
            return Fault{written.fault().kind, QDir(folder).filePath(file.name), {}, written.fault().found};
    }
    for (const NewFile& file : files) {
        const QString path = QDir(folder).filePath(file.name);
        if (!Support::moveWholeFile(beside.filePath(file.name), path))
            return Fault{Fault::Kind::InputOutput, path, {}, QStringLiteral("cannot be replaced")};
    }
    return {};
}

} // namespace Calibration
