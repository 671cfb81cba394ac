#pragma once

#include <calibration/run.h>
#include <qualityutility/tool/file/filefailures.h>

namespace Calibration {

/// Journal and documents of a run until its devices are served. Nothing on disk changes before begin(): a run that
/// reaches no device leaves what an earlier one has made. One thread's.
class RunFiles
{
public:
    /// What it is given outlives it.
    RunFiles(const Folder& folder, const Content& content, const RunOptions& options, const QJsonObject& inputs)
        : m_folder(folder), m_content(content), m_options(options), m_inputs(inputs)
    {}

    /// Reads the journal that is resumed, or makes sure that a new one has room. Faults: cannot create; no input; bad
    /// data for a journal of other inputs.
    Common::Result<void> open();
    /// What an earlier run has come to with a device; empty where none has.
    DeviceRecord earlier(const std::string& device) const;

    /// Begins journal and documents, which say whether there is nothing left to send; the second time does nothing.
    /// Faults: cannot create, input/output.
    Common::Result<void> begin(bool isDone);
    bool isBegun() const { return m_isBegun; }
    /// Whether a journal of an earlier run goes on.
    bool isResumed() const { return m_isResumed; }

    /// Puts a record into the journal, as soon as that is begun. Fault: input/output.
    Common::Result<void> keep(const DeviceRecord& record);
    /// The files that begin() has written, but the journal.
    const QStringList& documents() const { return m_documents; }

private:
    const Folder& m_folder;
    const Content& m_content;
    const RunOptions& m_options;
    const QJsonObject& m_inputs;
    std::optional<Journal> m_journal;
    bool m_isResumed = false;
    bool m_isBegun = false;
    QStringList m_documents;
    std::vector<DeviceRecord> m_waiting; ///< for the journal
};

/// Why the library could not write a document.
Common::Fault notWritten(const QString& path, const FileFailures& failures);

} // namespace Calibration
