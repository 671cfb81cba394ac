#pragma once

#include "archivecheck_p.h"

#include <QStringList>

class QFile;

enum class ArchiveMethod { Deflated, Stored };

/// Writes an archive of files, each under its own name, in the place of what `archive` holds. It is open for reading
/// and writing.
std::optional<ArchiveRefusal> writeArchive(QFile& archive, const QStringList& files, ArchiveMethod method);

/// Extracts an archive that checkArchive() let pass into a new folder, and compares what comes out with what the list
/// says. `names` are the entries in the archive's order, a folder's with a "/" at its end. Permissions are those of a
/// new file, less what the entry's own forbid to others; the owner may read and write, and nobody execute.
std::optional<ArchiveRefusal> extractArchive(QIODevice& archive, const ArchiveListing& listing, const QString& folder,
                                             QStringList& names);
