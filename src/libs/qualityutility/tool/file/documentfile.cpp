#include "documentfile_p.h"
#include "filefailurerecorder_p.h"
#include <qualityutility/support/wholefile_p.h>

#include <QDebug>
#include <QFile>
#include <QJsonDocument>

namespace {

/// The words of a failure's log line.
const char* textOf(FileFailure::Kind kind)
{
    switch (kind) {
    case FileFailure::Kind::Missing:
        return "can not find!!!";
    case FileFailure::Kind::OpenFailed:
        return "open failed!!!";
    case FileFailure::Kind::Invalid:
        return " invalid!!!";
    case FileFailure::Kind::WriteFailed:
    case FileFailure::Kind::NotJson:
    case FileFailure::Kind::Refused:
        break;
    }
    return "write failed!!!";
}

/// Opens and reads a file that exists; logs why not.
bool readExisting(const QString& path, QIODevice::OpenMode mode, QByteArray& content)
{
    QFile file(path);
    if (!file.open(mode)) {
        DocumentFile::fail(FileFailure::Kind::OpenFailed, path, file.errorString());
        return false;
    }
    if (file.size() <= DocumentFile::maximumBytes)
        content = file.isSequential() ? file.read(DocumentFile::maximumBytes + 1) : file.readAll();
    if (!content.isEmpty() && content.size() <= DocumentFile::maximumBytes)
        return true;
    DocumentFile::fail(FileFailure::Kind::Invalid, path,
                       content.isEmpty() && file.size() <= DocumentFile::maximumBytes
                           ? QStringLiteral("empty")
                           : QStringLiteral("larger than %1 bytes").arg(DocumentFile::maximumBytes));
    return false;
}

bool takeParsed(const QByteArray& content, const std::function<void(const QJsonObject& root)>& take)
{
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(content, &error);
    if (document.isNull() || error.error != QJsonParseError::NoError)
        return false;
    take(document.object());
    return true;
}

bool writeAs(Support::WholeFileWay way, const QString& path, const QByteArray& content)
{
    QString reason = QStringLiteral("larger than %1 bytes").arg(DocumentFile::maximumBytes);
    const Support::WholeFileResult result = content.size() > DocumentFile::maximumBytes
                                                ? Support::WholeFileResult::WriteFailed
                                                : Support::replaceWholeFile(path, content, way, &reason);
    if (result == Support::WholeFileResult::Written)
        return true;
    const bool isOpen = result == Support::WholeFileResult::WriteFailed;
    DocumentFile::fail(isOpen ? FileFailure::Kind::WriteFailed : FileFailure::Kind::OpenFailed, path, reason);
    return false;
}

QByteArray toText(const QJsonObject& root)
{
    return QJsonDocument(root).toJson(QJsonDocument::Indented);
}

} // namespace

void DocumentFile::fail(FileFailure::Kind kind, const QString& path, const QString& reason)
{
    qCritical() << "file" << path << textOf(kind);
    recordFileFailure({kind, path, reason, {}});
}

bool DocumentFile::isPresent(const QString& path)
{
    if (QFile::exists(path))
        return true;
    fail(FileFailure::Kind::Missing, path);
    return false;
}

bool DocumentFile::write(const QString& path, const QJsonObject& root)
{
    return write(path, toText(root));
}

bool DocumentFile::write(const QString& path, const QByteArray& content)
{
    return writeAs(Support::WholeFileWay::RenewName, path, content);
}

bool DocumentFile::update(const QString& path, const QJsonObject& initial,
                          const std::function<void(QJsonObject& root)>& change)
{
    QJsonObject root = initial;
    const Support::FileKind kind = Support::fileKind(path);
    if (kind == Support::FileKind::Regular) {
        QByteArray content;
        // For writing too, so that a file that may not be changed is refused here.
        if (!readExisting(path, QIODevice::ReadWrite, content))
            return false;
        root = QJsonDocument::fromJson(content).object();
    } else if (kind != Support::FileKind::None) { // reading a pipe could wait for ever, and what was read would be gone
        fail(FileFailure::Kind::OpenFailed, path, QStringLiteral("no regular file"));
        return false;
    }
    change(root);
    return writeAs(Support::WholeFileWay::Update, path, toText(root));
}

bool DocumentFile::read(const QString& path, const std::function<void(const QJsonObject& root)>& take)
{
    QByteArray content;
    if (!isPresent(path) || !readExisting(path, QIODevice::ReadOnly, content))
        return false;
    takeParsed(content, take);
    return true;
}

bool DocumentFile::readJson(const QString& path, const std::function<void(const QJsonObject& root)>& take)
{
    QByteArray content;
    if (!isPresent(path) || !readExisting(path, QIODevice::ReadOnly, content))
        return false;
    const bool isJson = takeParsed(content, take);
    if (!isJson) // without a log line
        recordFileFailure({FileFailure::Kind::NotJson, path});
    return isJson;
}
