#include "run.h"

#include <calibration/runfiles.h>
#include <calibration/serving.h>
#include <qualityutility/tool/file/picqualityfiletool.h>

#include <QFileInfo>
#include <QJsonArray>

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

/// Begins the files with the first device that is reached.
class Beginner : public Observer
{
public:
    Beginner(RunFiles& files, Observer& next) : m_files(files), m_next(next) {}

    void begin(int steps) override { m_next.begin(steps); }
    void sent(const Outcome& outcome) override { m_next.sent(outcome); }
    bool isStopWanted() override { return !m_begun || m_next.isStopWanted(); }
    bool mayBegin() override
    {
        if (m_begun && !m_files.isBegun())
            m_begun = m_files.begin(false);
        return m_begun && m_next.mayBegin();
    }

    const Result<void>& begun() const { return m_begun; }

private:
    RunFiles& m_files;
    Observer& m_next;
    Result<void> m_begun;
};

/// Why nothing was served, where a new run has reached no device at all.
Result<void> requireReached(const RunFiles& files, const std::vector<DeviceRecord>& records)
{
    std::vector<Outcome> tried;
    for (const DeviceRecord& record : records) {
        if (record.outcomes.front().kind == Outcome::Kind::Failed)
            tried.push_back(record.outcomes.front());
    }
    const auto fault = files.isBegun() || files.isResumed() ? std::nullopt : faultOf(tried, false);
    return fault ? Result<void>(*fault) : Result<void>();
}

/// Serves the devices that the journal does not have done.
Result<void> serveAll(Destination& destination, RunFiles& files, int atOnce, RunResult& result, Observer& observer)
{
    std::vector<std::string> open;
    std::vector<std::size_t> places; // theirs among all
    for (const std::string& device : destination.devices()) {
        DeviceRecord earlier = files.earlier(device);
        if (earlier.isDone()) {
            result.resumed << earlier.device;
            result.records.push_back(std::move(earlier));
            continue;
        }
        open.push_back(device);
        places.push_back(result.records.size());
        result.records.push_back(destination.notServed(device));
    }
    Beginner beginner(files, observer);
    beginner.begin(static_cast<int>(open.size()) * destination.stepCount());
    const auto all =
        serveDevices(destination, open, atOnce, beginner, [&](std::size_t device, DeviceRecord record) -> Result<void> {
            DeviceRecord& place = result.records[places[device]];
            place = std::move(record);
            return files.keep(place);
        });
    if (!beginner.begun())
        return beginner.begun();
    if (!all)
        return all.fault();
    result.isStopped = !*all;
    return requireReached(files, result.records);
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
    RunFiles files(folder, content, options, inputs);
    const auto opened = files.open();
    if (!opened)
        return opened.fault();
    const auto served = serveAll(destination, files, options.atOnce, result, observer);
    if (!served)
        return served.fault();
    const auto begun = files.begin(result.isDone()); // where there was nothing to serve, or a stop came before
    if (!begun)
        return begun.fault();
    result.files = files.documents();
    const auto finished = finishDocuments(folder, content, result);
    if (!finished)
        return finished.fault();
    conclude(result, inputs, options.acceptance);
    return result;
}

} // namespace Calibration
