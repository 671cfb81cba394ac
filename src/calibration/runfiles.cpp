#include "runfiles.h"

#include <calibration/output.h>
#include <qualityutility/tool/file/picqualityfiletool.h>
#include <suite/model/finegray.h>

#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <utility>

namespace Calibration {

namespace {

using Tool = PicQualityFileTool;

/// Removes those of the calibration that this one replaces: what a link leads to, so that the link is followed again.
void removeAll(const QStringList& paths)
{
    for (const QString& path : paths)
        QFile::remove(QFileInfo::exists(path) ? QFileInfo(path).canonicalFilePath() : path);
}

/// A fault where a new calibration would replace what it may not.
Result<void> checkNew(const Folder& folder, const RunOptions& options)
{
    if (!options.force && QFileInfo::exists(folder.journal()))
        return Fault{Fault::Kind::CannotCreate,
                     folder.journal(),
                     {},
                     QStringLiteral("exists"),
                     QStringLiteral("--resume goes on with that calibration, --force begins anew")};
    const QStringList written = folder.documents() + options.outputs;
    for (const QString& path : written) {
        const auto isNew = requireNewFile(path, options.force);
        if (!isNew)
            return isNew.fault();
    }
    return {};
}

Result<Journal> readJournal(const Folder& folder, const QJsonObject& inputs)
{
    auto journal = Journal::read(folder.journal());
    if (!journal)
        return journal;
    for (auto it = inputs.begin(); it != inputs.end(); ++it) {
        if (journal->inputs().value(it.key()) != it.value())
            return Fault{Fault::Kind::BadData,
                         folder.journal(),
                         {},
                         QStringLiteral("was begun with another %1").arg(it.key()),
                         QStringLiteral("give the inputs of the first run, or --force to begin anew")};
    }
    return journal;
}

Model::FineGrayCoeffs fineGrayOf(const Action::GrayTable& table)
{
    Model::FineGrayCoeffs coeffs;
    coeffs.rGrayCoeffs = table.red;
    coeffs.gGrayCoeffs = table.green;
    coeffs.bGrayCoeffs = table.blue;
    coeffs.magnitudes = table.magnitude;
    return coeffs;
}

/// Replaces the NICC configuration with its switch at once: at no moment is one off that was on.
Result<void> writeNicc(const QString& path, const Content& content, bool isOpen)
{
    const FileFailures failures;
    const QTemporaryDir own;
    const QString made = own.filePath(QStringLiteral("made.nicc"));
    if (!own.isValid() || !Tool::writeNiccConfig(made, content.measured, content.target) ||
        !Tool::updateNiccOpenConfig(made, isOpen))
        return notWritten(made, failures);
    const auto document = readInput(made, QStringLiteral("document"));
    return document ? writeOutput(path, document->bytes) : document.fault();
}

/// Writes what is known before anything is sent. Gives the files.
Result<QStringList> writeDocuments(const Folder& folder, const Content& content, bool isDone)
{
    const FileFailures failures;
    QStringList written{folder.nicc()};
    const auto nicc = writeNicc(folder.nicc(), content, isDone);
    if (!nicc)
        return nicc.fault();
    if (content.tableFile) {
        if (!Tool::writeFineGrayConfig(folder.gray(), {}, {}, {}, fineGrayOf(content.table)))
            return notWritten(folder.gray(), failures);
        written << folder.gray();
    }
    if (content.binary) {
        if (!Tool::writeRvcardConfig(folder.cabinet(), content.binary->bytes))
            return notWritten(folder.cabinet(), failures);
        written << folder.cabinet();
    }
    return written;
}

} // namespace

Result<void> RunFiles::open()
{
    if (!m_options.resume || !QFileInfo::exists(m_folder.journal()))
        return checkNew(m_folder, m_options);
    auto journal = readJournal(m_folder, m_inputs);
    if (!journal)
        return journal.fault();
    m_journal = *std::move(journal);
    m_isResumed = true;
    return {};
}

DeviceRecord RunFiles::earlier(const std::string& device) const
{
    return m_journal ? m_journal->records().value(QString::fromStdString(device)) : DeviceRecord();
}

Result<void> RunFiles::begin(bool isDone)
{
    if (m_isBegun)
        return {};
    if (!m_journal) {
        auto journal = Journal::begin(m_folder.journal(), m_inputs);
        if (!journal)
            return journal.fault();
        m_journal = *std::move(journal);
    }
    // Only then: a kill in between must leave no folder whose journal tells of documents that are gone. One that
    // was ended between the two may not have come to it.
    if (m_journal->records().isEmpty())
        removeAll(m_folder.documents() + m_options.outputs);
    const auto documents = writeDocuments(m_folder, m_content, isDone);
    if (!documents)
        return documents.fault();
    m_documents = *documents;
    for (const DeviceRecord& record : std::exchange(m_waiting, {})) {
        const auto appended = m_journal->append(record);
        if (!appended)
            return appended;
    }
    m_isBegun = true;
    return {};
}

Result<void> RunFiles::keep(const DeviceRecord& record)
{
    if (m_isBegun)
        return m_journal->append(record);
    m_waiting.push_back(record);
    return {};
}

/// Why the library could not write a document.
Fault notWritten(const QString& path, const FileFailures& failures)
{
    const QString reason = failures.list().isEmpty() ? QString() : failures.list().last().reason;
    return {Fault::Kind::InputOutput,
            path,
            {},
            reason.isEmpty() ? QStringLiteral("cannot be written") : QStringLiteral("cannot be written: ") + reason};
}

} // namespace Calibration
