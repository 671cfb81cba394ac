#pragma once

#include "archivecheck_p.h"

#include <QStringList>

/// Zip archives of a project's documents: flat files, packed and unpacked whole.
namespace ProjectArchive {

/// Packs files, each under its own name, into a new archive and moves that over `archive`, which keeps its owner, group
/// and mode: whatever fails, an earlier archive stays whole. An empty list makes an empty archive. Refused, before
/// anything is written, is what could not be unpacked and what may not fit on the disk. What deflates so well that the
/// archive would be taken for a bomb is stored.
std::optional<ArchiveRefusal> pack(const QString& archive, const QStringList& files);

/// As above, within limits other than those of the archive's folder.
std::optional<ArchiveRefusal> pack(const QString& archive, const QStringList& files, const ArchiveLimits& limits);

/// How long an unpacking waits for another of an archive of the same name, in milliseconds.
inline constexpr int patience = 30'000;

/// Looks through all entries, extracts them into a new folder that only its owner can read, counts and measures what
/// came out, and puts that in the place of the archive's temporary folder, which it holds until then. The extracted
/// paths, in the archive's order; nothing where the archive is refused, with a critical line `file "<archive>" refused:
/// <reason>`: then the temporary folder is as it was.
std::optional<QStringList> unpack(const QString& archive, int longestWait = patience);

/// As unpack(), but into a folder of the caller's, which is there and empty; on refusal something may be left in it.
std::optional<QStringList> extract(const QString& archive, const QString& folder);

/// Deletes the archive's temporary folder, if there is one. False, with a critical line, when it is refused or cannot
/// be deleted.
bool removeTemporaryFolder(const QString& archive);

} // namespace ProjectArchive
