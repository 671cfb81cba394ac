#pragma once

#include <qualityutility/qualityutility_export.h>

#include <QList>
#include <QString>

/// Why an operation of PicQualityFileTool on one file failed.
struct FileFailure
{
    /// What stood in the way.
    enum class Kind {
        Missing,     ///< the file is not there
        OpenFailed,  ///< it cannot be opened, or not for writing
        Invalid,     ///< it is empty or too large
        NotJson,     ///< readers of NICC documents: its content is not JSON
        WriteFailed, ///< what was to be written did not reach the disk
        Refused,     ///< an archive, for the reason given
    };

    Kind kind = Kind::Missing; ///< what the log line says, for programs
    QString path;              ///< the file it is about, as the operation was given it
    QString reason = {};       ///< in words, where there is more to say: the system's, or why an archive is refused
    QString entry = {};        ///< Refused: the archive's entry that it is about; may be empty
};

/// Collects, beside the operations' own results, why they failed:
///
///     FileFailures failures;
///     if (!PicQualityFileTool::writeNiccConfig(path, led, target))
///         show(failures.list().last().reason);
///
/// It sees the operations of its own thread while it lives; the innermost one counts. Used on the thread that made it.
class QUALITYUTILITY_EXPORT FileFailures
{
public:
    /// Begins to listen; what came before is not there.
    FileFailures();
    /// Hands the thread's operations back to the one that listened before.
    ~FileFailures();
    FileFailures(const FileFailures&) = delete;
    FileFailures& operator=(const FileFailures&) = delete;

    /// In the order in which they happened.
    const QList<FileFailure>& list() const { return m_list; }

private:
    friend void recordFileFailure(const FileFailure& failure);

    QList<FileFailure> m_list;
    FileFailures* m_outer;
};
