#pragma once

#include <QFile>

namespace Support {

/// A new file for `target` that has no name until it is whole: it goes with this object, and with a killed process.
/// Where the system or the file system knows no such files, and for the moment in which an earlier file gives way, it
/// has a name ".packing-XXXXXX" beside its place and a lock; what was left under such a name, by a process that is no
/// more, goes when the next file is made in that folder.
class UnnamedFile
{
public:
    explicit UnnamedFile(const QString& target);
    ~UnnamedFile();
    UnnamedFile(const UnnamedFile&) = delete;
    UnnamedFile& operator=(const UnnamedFile&) = delete;

    /// Open for reading and writing, unless the folder cannot take a new file: then `fault` says why.
    QFile& file() { return m_file; }
    /// The system's text for what went wrong last.
    QString fault() const { return m_fault; }

    /// Brings the content to the disk and moves it over the target, which keeps its owner, group and mode as far as
    /// this process may set them. False when it fails: the target is then as it was.
    bool moveToTarget();

private:
    bool createNamed(mode_t mode);
    bool giveName();
    bool fail();

    QString m_target;
    QString m_name; ///< empty while there is none
    QString m_fault;
    QFile m_file;
};

} // namespace Support
