#include "input.h"

#include <suite/common/jsonreader.h>

#include <QCryptographicHash>
#include <QFile>
#include <QFileInfo>

#include <cstdio>

#ifdef Q_OS_UNIX
#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>
#endif

namespace Calibration {

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
Result<void> openInput(QFile& file, const QString& name, const QString& subject)
{
    if (name == QLatin1String("-")) {
        if (file.open(stdin, QIODevice::ReadOnly))
            return {};
        return Fault{Fault::Kind::NoInput, subject, {}, file.errorString()};
    }
    const QFileInfo info(name);
    if (!info.exists())
        return Fault{Fault::Kind::NoInput, subject, {}, QStringLiteral("no such file")};
    if (info.isDir())
        return Fault{Fault::Kind::NoInput, subject, QStringLiteral("a file"), QStringLiteral("a folder")};
    if (isPipe(name) ? openPipe(file) : file.open(QIODevice::ReadOnly))
        return {};
    return Fault{Fault::Kind::NoInput,
                 subject,
                 {},
                 file.isOpen() ? QStringLiteral("a pipe that nobody writes into") : file.errorString()};
}

} // namespace

QString Input::subject() const
{
    return role + QLatin1Char(' ') + name;
}

Result<Input> readInput(const QString& name, const QString& role, qint64 maxBytes)
{
    constexpr qint64 readBlock = qint64{1024} * 1024;
    Input input{role, name, {}, {}};
    QFile file(name);
    const auto opened = openInput(file, name, input.subject());
    if (!opened)
        return opened.fault();
    for (QByteArray block; input.bytes.size() <= maxBytes && !(block = file.read(readBlock)).isEmpty();)
        input.bytes += block;
    if (file.error() != QFileDevice::NoError)
        return Fault{Fault::Kind::InputOutput, input.subject(), {}, file.errorString()};
    if (input.bytes.size() > maxBytes)
        return Fault{
            Fault::Kind::BadData, input.subject(), {}, QStringLiteral("larger than %1 MiB").arg(maxBytes / readBlock)};
    input.sha256 = QString::fromLatin1(QCryptographicHash::hash(input.bytes, QCryptographicHash::Sha256).toHex());
    return input;
}

Result<QJsonObject> jsonObject(const Input& input)
{
    return Common::parseJsonObject(input.bytes, input.subject());
}

} // namespace Calibration
