#pragma once

#include <qualityutility/tool/file/filefailures.h>

#include <QJsonObject>
#include <QString>

#include <functional>

/// The ways in which a picture-quality document is opened, parsed, written and complained about. All log their
/// failures as critical lines: `file "<path>" <text>`.
namespace DocumentFile {

/// No document is read or written that is larger: the largest of a real screen has some 20 MB, and each byte may cost
/// ten of memory. An arbitrary file must not take all of a host's.
constexpr qint64 maximumBytes = qint64{256} * 1024 * 1024;

/// Writes `file "<path>" <text>` and tells the thread's FileFailures. The text of Invalid begins with a blank, which
/// gives two in the line: readers of the log know it so.
void fail(FileFailure::Kind kind, const QString& path, const QString& reason = {});

/// Replaces the document whole by a new one: a link gives way itself, and so does a file that may not be written.
bool write(const QString& path, const QByteArray& content);
bool write(const QString& path, const QJsonObject& root);

/// Whether the file is there; logs that it is not.
bool isPresent(const QString& path);

/// Lets `change` work on the document's root and replaces the document's content whole. A missing file starts as
/// `initial`; an empty one and one beyond the limit are refused, and one that may not be written; what is not a JSON
/// object counts as an empty one.
bool update(const QString& path, const QJsonObject& initial, const std::function<void(QJsonObject& root)>& change);

/// Hands the document's root to `take`; when the content is not JSON, `take` is not called and the result is true all
/// the same.
bool read(const QString& path, const std::function<void(const QJsonObject& root)>& take);

/// As read(), but content that is not JSON is a failure, without a log line.
bool readJson(const QString& path, const std::function<void(const QJsonObject& root)>& take);

} // namespace DocumentFile
