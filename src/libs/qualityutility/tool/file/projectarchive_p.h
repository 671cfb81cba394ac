#pragma once

#include <QString>
#include <QStringList>

#include <optional>

/// Zip archives of a project's documents: flat files, packed and unpacked whole. What is refused is logged as a
/// critical line `file "<archive>" refused: <reason>`.
namespace ProjectArchive {

/// Packs files, each under its own name, into a new archive beside `archive`, and moves that over it: whatever fails,
/// an earlier archive stays whole. An empty list makes an empty archive.
bool pack(const QString& archive, const QStringList& files);

/// Looks through all entries, extracts them into a new folder that only its owner can read, counts and measures what
/// came out, and moves that over the archive's temporary folder. The extracted paths, in the archive's order; nothing
/// where the archive is refused: then the temporary folder is as it was.
std::optional<QStringList> unpack(const QString& archive);

/// Deletes the archive's temporary folder, if there is one. False when it is refused or cannot be deleted.
bool removeTemporaryFolder(const QString& archive);

} // namespace ProjectArchive
