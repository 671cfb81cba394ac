#pragma once

#include <suite/common/result.h>

#include <QList>
#include <QString>
#include <QStringList>

namespace Calibration {

/// A file of a project archive.
struct ProjectFile
{
    QString role; ///< "nicc", "gray", "cabinet", "further"
    QString name; ///< as the user gave it, in the archive, or where it was unpacked to
    qint64 bytes = 0;
};

/// What goes into an archive; empty names are left out.
struct ProjectInputs
{
    QString nicc;
    QString gray;
    QString cabinet;
    QStringList others;
};

// Project archives on disk, all or nothing: whatever fails, an earlier archive and earlier files stay. They block for
// the file work. Faults: usage, no input, bad data (an archive that is refused, with the reason), cannot create,
// input/output.

/// Packs; gives what went in. Without `force` only one of several at work on a new name says that it is done.
Common::Result<QList<ProjectFile>> packProject(const QString& archive, const ProjectInputs& inputs, bool force);

/// Unpacks into a folder, which is made where it is missing; files that are there are replaced only with `force`.
Common::Result<QList<ProjectFile>> unpackProject(const QString& archive, const QString& folder, bool force);

/// What an archive holds; it is unpacked for that into a temporary folder.
Common::Result<QList<ProjectFile>> listProject(const QString& archive);

} // namespace Calibration
