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
    content = file.readAll();
    if (!content.isEmpty())
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
    return write(path, QJsonDocument(root).toJson(QJsonDocument::Indented));
}

bool DocumentFile::write(const QString& path, const QByteArray& content)
{
    switch (replaceWholeFile(path, content)) {
    case WholeFileResult::Written:
        return true;
    case WholeFileResult::OpenFailed:
        logFailure(path, "open failed!!!");
        return false;
    case WholeFileResult::WriteFailed:
        break;
    }
    logFailure(path, "write failed!!!");
    return false;
}

bool DocumentFile::update(const QString& path, const QJsonObject& initial,
                          const std::function<void(QJsonObject& root)>& change)
{
    QJsonObject root = initial;
    if (QFile::exists(path)) {
        QByteArray content;
        // For writing too, so that a file that may not be changed is refused here.
        if (!readExisting(path, QIODevice::ReadWrite, content))
            return false;
        root = QJsonDocument::fromJson(content).object();
    }
    change(root);
    return write(path, root);
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
