#include "inputfile.h"

#include "output.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>

#ifdef Q_OS_UNIX
#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace {

#ifdef Q_OS_UNIX
bool isPipe(const QString& path)
{
    struct stat status = {};
    return ::stat(QFile::encodeName(path).constData(), &status) == 0 && S_ISFIFO(status.st_mode);
}

/// Opens a pipe, but does not wait for ever for a first writer, as opening a named one would. One that is there may
/// take all its time. Gives false for a pipe without one.
bool openPipe(QFile& file)
{
    constexpr int patienceMs = 2000; // a shell starts reader and writer side by side
    const int pipe = ::open(QFile::encodeName(file.fileName()).constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (pipe < 0 || !file.open(pipe, QIODevice::ReadOnly, QFileDevice::AutoCloseHandle))
        return file.open(QIODevice::ReadOnly); // which says what is wrong
    pollfd first{pipe, POLLIN, 0};
    if (::poll(&first, 1, patienceMs) == 0) { // neither content nor the end of it
        char byte = 0;
        const auto count = ::read(pipe, &byte, 1); // an error, "try again", is a writer who has not written yet
        if (count == 0)
            return false;
        if (count > 0)
            file.ungetChar(byte);
    }
    return ::fcntl(pipe, F_SETFL, ::fcntl(pipe, F_GETFL) & ~O_NONBLOCK) == 0;
}
#else
bool isPipe(const QString&)
{
    return false;
}

bool openPipe(QFile& file)
{
    return file.open(QIODevice::ReadOnly);
}
#endif

/// Opens a file for reading, once: a pipe can be read only so.
void openInput(QFile& file, const QString& what)
{
    const QString path = file.fileName(); // the file forgets it when it takes over a pipe
    const auto refuse = [&](const QString& reason) {
        throw CommandError{ExitCode::NoInput, QStringLiteral("%1 %2: %3").arg(what, path, reason)};
    };
    const QFileInfo info(path);
    if (!info.exists())
        refuse(QStringLiteral("no such file"));
    if (info.isDir())
        refuse(QStringLiteral("expected a file, found a folder"));
    if (!(isPipe(path) ? openPipe(file) : file.open(QIODevice::ReadOnly)))
        refuse(file.isOpen() ? QStringLiteral("a pipe that nobody writes into") : file.errorString());
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

QByteArray readInputFile(const QString& path, const QString& what, qint64 maxBytes)
{
    constexpr qint64 readBlock = qint64{1024} * 1024;
    QFile file(path);
    openInput(file, what);
    QByteArray content;
    for (QByteArray block; content.size() <= maxBytes && !(block = file.read(readBlock)).isEmpty();)
        content += block;
    if (file.error() != QFileDevice::NoError)
        throw CommandError{ExitCode::InputOutput, QStringLiteral("%1 %2: %3").arg(what, path, file.errorString())};
    if (content.size() > maxBytes)
        throw CommandError{ExitCode::BadData,
                           QStringLiteral("%1 %2: larger than %3 MiB").arg(what, path).arg(maxBytes / readBlock)};
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
