#pragma once

#include <suite/common/result.h>

#include <QString>
#include <QStringList>

#include <memory>

namespace Calibration {

// Results of many files that come to their places all together or not at all.

/// A hidden folder of this process's own for what is not whole yet, locked. It goes with this object; what a killed
/// process left in the same place goes with the next one.
class StageFolder
{
public:
    /// Fault: input/output, where no folder can be made in `parent`.
    static Common::Result<std::unique_ptr<StageFolder>> make(const QString& parent);
    ~StageFolder();
    StageFolder(const StageFolder&) = delete;
    StageFolder& operator=(const StageFolder&) = delete;

    QString path() const { return m_path; }
    /// A new folder in it. Fault: input/output.
    Common::Result<QString> makeFolder(const QString& name) const;
    /// Leaves the folder there for good, under another name if it can.
    void keep();

private:
    StageFolder(QString path, int lock) : m_path(std::move(path)), m_lock(lock) {}

    QString m_path;
    int m_lock; ///< the open folder
    bool m_isKept = false;
};

/// Folders that go again, as far as they are empty, unless they are kept.
class NewFolders
{
public:
    ~NewFolders();
    /// To be called before a folder is made: notes which ones on the way to it are not there yet.
    void note(const QString& path);
    void keep() { m_folders.clear(); }

private:
    QStringList m_folders;
};

/// Files moved to their places. Unless they are kept, all are taken back and what they replaced is put back.
class FileMoves
{
public:
    /// What is replaced waits in the stage, which lies on the same disk and outlives this object.
    explicit FileMoves(StageFolder& stage);
    ~FileMoves();
    FileMoves(const FileMoves&) = delete;
    FileMoves& operator=(const FileMoves&) = delete;

    /// Moves a file. One that is there is replaced only with `force`; its permissions stay. Faults: input/output,
    /// cannot create.
    Common::Result<void> move(const QString& from, const QString& to, bool force);
    void keep() { m_moves.clear(); }

private:
    struct Move
    {
        QString to;
        QString aside; ///< what it replaced; empty for nothing
    };

    StageFolder& m_stage;
    QString m_aside; ///< made when something is first replaced
    QList<Move> m_moves;
};

/// Moves a file to a name that nobody has. False where somebody has it, or the move fails.
bool moveToNewName(const QString& from, const QString& to);

} // namespace Calibration
