#pragma once

#include "freshfile_p.h"

#include <QFile>

namespace Support {

/// A new file for `target` that is written as a QFile, and has no name until it is whole (".packing-XXXXXX" where it
/// needs one, as FreshFile has it). Whatever stands under such a name beside it, and no living process has locked, goes
/// when the next one is made in that folder.
class UnnamedFile
{
public:
    explicit UnnamedFile(const QString& target);

    /// Open for reading and writing, unless the folder cannot take a new file: then `fault` says why.
    QFile& file() { return m_file; }
    /// The system's text for what went wrong last.
    QString fault() const { return m_fault; }

    /// Brings the content to the disk and moves it over the target, which keeps its owner, group and mode as far as
    /// this process may set them. False when it fails: the target is then as it was.
    bool moveToTarget();

private:
    bool fail();

    QString m_target;
    QString m_fault;
    FreshFile m_fresh;
    QFile m_file;
};

} // namespace Support
