#include "inputfile.h"

#include "output.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>

namespace {

/// Opens a file for reading, once: a pipe can be read only so.
void openInput(QFile& file, const QString& what)
{
    const QFileInfo info(file.fileName());
    if (!info.exists())
        throw CommandError{ExitCode::NoInput, QStringLiteral("%1 %2: no such file").arg(what, file.fileName())};
    if (info.isDir())
        throw CommandError{ExitCode::NoInput,
                           QStringLiteral("%1 %2: expected a file, found a folder").arg(what, file.fileName())};
    if (!file.open(QIODevice::ReadOnly))
        throw CommandError{ExitCode::NoInput,
                           QStringLiteral("%1 %2: %3").arg(what, file.fileName(), file.errorString())};
}

} // namespace

void requireReadableFile(const QString& path, const QString& what)
{
    const QFileInfo info(path);
    if (info.exists() && !info.isFile() && !info.isDir())
        throw CommandError{ExitCode::NoInput,
                           QStringLiteral("%1 %2: expected a file, found a pipe or device").arg(what, path)};
    QFile file(path);
    openInput(file, what);
}

QByteArray readInputFile(const QString& path, const QString& what)
{
    constexpr qint64 readBlock = qint64{1024} * 1024;
    constexpr qint64 maxBytes = qint64{256} * 1024 * 1024;
    QFile file(path);
    openInput(file, what);
    QByteArray content;
    for (QByteArray block; content.size() <= maxBytes && !(block = file.read(readBlock)).isEmpty();)
        content += block;
    if (file.error() != QFileDevice::NoError)
        throw CommandError{ExitCode::InputOutput, QStringLiteral("%1 %2: %3").arg(what, path, file.errorString())};
    if (content.size() > maxBytes)
        throw CommandError{ExitCode::BadData, QStringLiteral("%1 %2: larger than 256 MiB").arg(what, path)};
    return content;
}

QJsonObject readJsonObject(const QString& path, const QString& what)
{
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(readInputFile(path, what), &error);
    if (error.error != QJsonParseError::NoError)
        throw CommandError{ExitCode::BadData, QStringLiteral("%1 %2: not JSON: %3 (byte %4)")
                                                  .arg(what, path, error.errorString(), QString::number(error.offset))};
    if (!document.isObject())
        throw CommandError{ExitCode::BadData,
                           QStringLiteral("%1 %2: expected an object, found an array").arg(what, path)};
    return document.object();
}
