#include "inputfile.h"

#include "output.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>

void requireReadableFile(const QString& path, const QString& what)
{
    const QFileInfo info(path);
    QFile file(path);
    if (!info.exists())
        throw CommandError{ExitCode::NoInput, QStringLiteral("%1 %2: no such file").arg(what, path)};
    if (info.isDir())
        throw CommandError{ExitCode::NoInput, QStringLiteral("%1 %2: expected a file, found a folder").arg(what, path)};
    if (!file.open(QIODevice::ReadOnly))
        throw CommandError{ExitCode::NoInput, QStringLiteral("%1 %2: %3").arg(what, path, file.errorString())};
}

QByteArray readInputFile(const QString& path, const QString& what)
{
    requireReadableFile(path, what);
    QFile file(path);
    const QByteArray content = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    if (file.error() != QFileDevice::NoError)
        throw CommandError{ExitCode::InputOutput, QStringLiteral("%1 %2: %3").arg(what, path, file.errorString())};
    return content;
}

QJsonObject readJsonObject(const QString& path, const QString& what)
{
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(readInputFile(path, what), &error);
    if (error.error != QJsonParseError::NoError)
        throw CommandError{
            ExitCode::BadData,
            QStringLiteral("%1 %2: not JSON: %3 (byte %4)").arg(what, path, error.errorString()).arg(error.offset)};
    if (!document.isObject())
        throw CommandError{ExitCode::BadData,
                           QStringLiteral("%1 %2: expected an object, found an array").arg(what, path)};
    return document.object();
}
