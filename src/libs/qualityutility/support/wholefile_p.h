#pragma once

#include <QByteArray>
#include <QString>

// Files replaced whole: the new content is made in a file without a name, brought to the disk and moved over the old.
// Whatever happens at any moment (a kill, a full disk), the file holds all of the old content or all of the new, and on
// failure nothing is left beside it. Where there are no files without a name, and for the moment in which the old file
// gives way, the new one has a short name (".whole-" and six digits): a kill can leave that, and the next file that
// needs such a name in the folder removes it (FreshFile).
//
// - Owner, group, mode and (on Linux) access-control list stay as far as this process may set them; what cannot stay
//   never opens a file to somebody to whom it was closed.
// - Only regular files are replaced. A character device is written through; a folder, a block device, a pipe and a
//   socket are refused, and so are an empty name and one with a NUL in it.
// - Where the folder may not be changed but the file may, the content is written in place, after its room on the disk
//   was reserved; when that fails the old content is put back. Only there can a kill leave a mixture. A link that
//   would have to give way is refused there.
//
// Any thread; they block for the file work. docs/documents.md tells users the same.

namespace Support {

class FreshFile;

enum class WholeFileResult { Written, OpenFailed, WriteFailed };

enum class WholeFileWay {
    Update,    ///< The file goes on: links are followed, its mode stays, and one that may not be written is refused.
    Renew,     ///< A new file in its place: links are followed, and its owner may write it whatever its mode was.
    RenewName, ///< As Renew, but a link gives way itself: what it led to stays as it was.
};

/// Replaces a file's content, or makes the file. `reason`, where given, gets the system's text for a failure.
WholeFileResult replaceWholeFile(const QString& path, const QByteArray& content,
                                 WholeFileWay way = WholeFileWay::Update, QString* reason = nullptr);

/// Replaces a file by a copy of another, with the other's mode; never in place. A link at the destination gives way
/// itself. A file copied onto itself stays as it is. False when it fails: the destination is then as it was.
bool copyWholeFile(const QString& source, const QString& destination);

/// Moves a finished file of the same folder, or of a folder in it, over `path`, as RenewName; never in place. It keeps
/// its own mode where there was no file. False when it fails: `path` is then as it was and `finished` still there.
bool moveWholeFile(const QString& finished, const QString& path);
bool moveWholeFile(FreshFile& finished, const QString& path);

/// What a name leads to, through links.
enum class FileKind {
    None,    ///< nothing: a file can be made, if the folder is there
    Regular, ///< a file that can be replaced
    Device,  ///< a character device
    Other,   ///< what is no place for a file, or cannot be looked at
};

FileKind fileKind(const QString& path);

} // namespace Support
