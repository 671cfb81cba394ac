#include "run.h"

#include <calibration/output.h>
#include <calibration/serving.h>
#include <qualityutility/tool/file/filefailures.h>
#include <qualityutility/tool/file/picqualityfiletool.h>
#include <suite/model/finegray.h>

#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QTemporaryDir>

#include <algorithm>

namespace Calibration {

namespace {

using Tool = PicQualityFileTool;

/// Whether two names are one file's, also through links.
bool isSameFile(const QString& first, const QString& second)
{
    const QFileInfo a(first);
    const QFileInfo b(second);
    const QString place = a.dir().canonicalPath(); // of a file that may not be there yet
    return a.absoluteFilePath() == b.absoluteFilePath() ||
           (!place.isEmpty() && place == b.dir().canonicalPath() && a.fileName() == b.fileName()) ||
           (a.exists() && a.canonicalFilePath() == b.canonicalFilePath());
}

/// A fault where one file would be two things of this run: what is written would destroy what is read.
Result<void> checkDistinct(const Folder& folder, const RunOptions& options)
{
    QStringList taken = QStringList{folder.journal()} + options.uses;
    const QStringList written = folder.documents() + options.outputs;
    for (const QString& path : written) {
        for (const QString& other : qAsConst(taken)) {
            if (isSameFile(path, other))
                return Fault{Fault::Kind::Usage,
                             path,
                             {},
                             QStringLiteral("this run would write it, and uses it as %1").arg(other)};
        }
        taken << path;
    }
    return {};
}

/// Removes those of the calibration that this one replaces: what a link leads to, so that the link is followed again.
void removeAll(const QStringList& paths)
{
    for (const QString& path : paths)
        QFile::remove(QFileInfo::exists(path) ? QFileInfo(path).canonicalFilePath() : path);
}

Result<Journal> beginJournal(const Folder& folder, const RunOptions& options, const QJsonObject& inputs)
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
    // Only then: a kill in between must leave no folder whose journal tells of documents that are gone.
    auto journal = Journal::begin(folder.journal(), inputs);
    if (journal)
        removeAll(written);
    return journal;
}

Result<Journal> resumeJournal(const Folder& folder, const RunOptions& options, const QJsonObject& inputs)
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
    if (journal->records().isEmpty())
        removeAll(folder.documents() + options.outputs); // a run that was ended at its begin may not have come to it
    return journal;
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

/// Whether there is nothing left to send.
bool isDone(const Destination& destination, const Journal& journal)
{
    const auto devices = destination.devices();
    return std::all_of(devices.begin(), devices.end(), [&journal](const std::string& device) {
        return journal.records().value(QString::fromStdString(device)).isDone();
    });
}

/// Serves the devices that the journal does not have done.
Result<void> serveAll(Destination& destination, Journal& journal, int atOnce, RunResult& result, Observer& observer)
{
    std::vector<std::string> open;
    std::vector<std::size_t> places; // theirs among all
    for (const std::string& device : destination.devices()) {
        DeviceRecord earlier = journal.records().value(QString::fromStdString(device));
        if (earlier.isDone()) {
            result.resumed << earlier.device;
            result.records.push_back(std::move(earlier));
            continue;
        }
        open.push_back(device);
        places.push_back(result.records.size());
        result.records.push_back(destination.notServed(device));
    }
    observer.begin(static_cast<int>(open.size()) * destination.stepCount());
    const auto all =
        serveDevices(destination, open, atOnce, observer, [&](std::size_t device, DeviceRecord record) -> Result<void> {
            DeviceRecord& place = result.records[places[device]];
            place = std::move(record);
            return journal.append(place);
        });
    if (!all)
        return all.fault();
    result.isStopped = !*all;
    return {};
}

/// Marks the correction as on where it is, and packs the project.
Result<void> finishDocuments(const Folder& folder, const Content& content, RunResult& result)
{
    const FileFailures failures;
    if (result.isDone() && !Tool::updateNiccOpenConfig(folder.nicc(), true))
        return notWritten(folder.nicc(), failures);
    Tool::packProConfig(folder.project(), folder.nicc(), content.tableFile ? folder.gray() : QString(),
                        content.binary ? folder.cabinet() : QString(), {folder.journal()});
    if (!failures.list().isEmpty())
        return notWritten(folder.project(), failures);
    result.files << folder.project() << folder.journal();
    return {};
}

/// Judges what the devices hold now.
void conclude(RunResult& result, const QJsonObject& inputs, const Acceptance& acceptance)
{
    result.verification = judge(result.figures.measured, result.figures.target, result.records, acceptance);
    Verdict& verdict = result.verification.verdict;
    verdict.isSimulated = inputs.value(QStringLiteral("simulated")).toBool();
    if (result.isStopped && !result.isDone())
        verdict.kind = Verdict::Kind::Interrupted;
}

QString joined(const QStringList& list)
{
    return list.isEmpty() ? QStringLiteral("none") : list.join(QStringLiteral(", "));
}

} // namespace

bool RunResult::isDone() const
{
    return std::all_of(records.begin(), records.end(), [](const DeviceRecord& record) { return record.isDone(); });
}

std::vector<Outcome> RunResult::outcomes() const
{
    std::vector<Outcome> all;
    for (const DeviceRecord& record : records)
        all.insert(all.end(), record.outcomes.begin(), record.outcomes.end());
    return all;
}

std::optional<Fault> RunResult::fault() const
{
    const QString hint = QStringLiteral("--resume goes on with what is not done");
    QStringList served;
    QStringList open;
    for (const DeviceRecord& record : records)
        (record.isDone() ? served : open) << record.device;
    if (isStopped && !open.isEmpty())
        return Fault{Fault::Kind::Interrupted,
                     {},
                     {},
                     QStringLiteral("interrupted; done: %1; not done: %2").arg(joined(served), joined(open)),
                     hint};
    auto fault = faultOf(outcomes(), false);
    if (fault)
        fault->hint = hint;
    else if (!verification.verdict.isPassed())
        fault = Fault{Fault::Kind::Difference, {}, {}, verification.faults.join(QStringLiteral("; "))};
    return fault;
}

QJsonObject inputsOf(const Content& content, const Destination& destination)
{
    QJsonArray served;
    for (const std::string& device : destination.devices())
        served.append(QString::fromStdString(device));
    return {{QStringLiteral("calibrated"), destination.name()},
            {QStringLiteral("devices"), served},
            {QStringLiteral("measured"), gamutToJson(content.measured)},
            {QStringLiteral("white"), wordOf(content.white)},
            {QStringLiteral("warnings"), QJsonArray::fromStringList(content.warnings)},
            {QStringLiteral("target"), gamutToJson(content.target)},
            {QStringLiteral("table_sha256"), content.tableFile ? content.tableFile->sha256 : QString()},
            {QStringLiteral("frequency_hz"), content.table.freq},
            {QStringLiteral("binary_sha256"), content.binary ? content.binary->sha256 : QString()}};
}

Result<RunResult> run(const Content& content, const Figures& figures, Destination& destination,
                      const QJsonObject& inputs, const Folder& folder, const RunOptions& options, Observer& observer)
{
    RunResult result;
    result.destination = destination.name();
    result.figures = figures;
    const auto distinct = checkDistinct(folder, options);
    if (!distinct)
        return distinct.fault();
    const bool isResumed = options.resume && QFileInfo::exists(folder.journal());
    auto journal = isResumed ? resumeJournal(folder, options, inputs) : beginJournal(folder, options, inputs);
    if (!journal)
        return journal.fault();
    const auto documents = writeDocuments(folder, content, isDone(destination, *journal));
    if (!documents)
        return documents.fault();
    result.files = *documents;
    const auto served = serveAll(destination, *journal, options.atOnce, result, observer);
    if (!served)
        return served.fault();
    const auto finished = finishDocuments(folder, content, result);
    if (!finished)
        return finished.fault();
    conclude(result, inputs, options.acceptance);
    return result;
}

} // namespace Calibration
