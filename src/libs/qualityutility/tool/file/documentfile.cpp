#include "documentfile_p.h"
#include "wholefile_p.h"

#include <QDebug>
#include <QFile>
#include <QJsonDocument>

namespace {

/// Opens and reads a file that exists; logs why not.
bool readExisting(const QString& path, QIODevice::OpenMode mode, QByteArray& content)
{
    QFile file(path);
    if (!file.open(mode)) {
        DocumentFile::logFailure(path, "open failed!!!");
        return false;
    }
    if (file.size() <= DocumentFile::maximumBytes)
        content = file.isSequential() ? file.read(DocumentFile::maximumBytes + 1) : file.readAll();
    if (!content.isEmpty() && content.size() <= DocumentFile::maximumBytes)
        return true;
    DocumentFile::logFailure(path, " invalid!!!");
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

bool writeAs(WholeFileWay way, const QString& path, const QByteArray& content)
{
    const WholeFileResult result = content.size() > DocumentFile::maximumBytes ? WholeFileResult::WriteFailed
                                                                               : replaceWholeFile(path, content, way);
    if (result == WholeFileResult::Written)
        return true;
    DocumentFile::logFailure(path, result == WholeFileResult::OpenFailed ? "open failed!!!" : "write failed!!!");
    return false;
}

QByteArray toText(const QJsonObject& root)
{
    return QJsonDocument(root).toJson(QJsonDocument::Indented);
}

} // namespace

void DocumentFile::logFailure(const QString& path, const char* text)
{
    qCritical() << "file" << path << text;
}

bool DocumentFile::isPresent(const QString& path)
{
    if (QFile::exists(path))
        return true;
    logFailure(path, "can not find!!!");
    return false;
}

bool DocumentFile::write(const QString& path, const QJsonObject& root)
{
    return write(path, toText(root));
}

bool DocumentFile::write(const QString& path, const QByteArray& content)
{
    return writeAs(WholeFileWay::RenewName, path, content);
}

bool DocumentFile::update(const QString& path, const QJsonObject& initial,
                          const std::function<void(QJsonObject& root)>& change)
{
    QJsonObject root = initial;
    const FileKind kind = fileKind(path);
    if (kind == FileKind::Regular) {
        QByteArray content;
        // For writing too, so that a file that may not be changed is refused here.
        if (!readExisting(path, QIODevice::ReadWrite, content))
            return false;
        root = QJsonDocument::fromJson(content).object();
    } else if (kind != FileKind::None) { // reading a pipe could wait for ever, and what was read would be gone
        logFailure(path, "open failed!!!");
        return false;
    }
    change(root);
    return writeAs(WholeFileWay::Update, path, toText(root));
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
    return isPresent(path) && readExisting(path, QIODevice::ReadOnly, content) && takeParsed(content, take);
}
