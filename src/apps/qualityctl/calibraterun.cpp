#include "calibraterun.h"

#include "calibrationreport.h"
#include "calibrationtarget.h"
#include "dryrun.h"
#include "gamutargument.h"
#include "hostcharts.h"
#include "hostlog.h"
#include "inputfile.h"
#include "interrupt.h"
#include "outputfile.h"

#include <suite/model/finegray.h>

#include <QCryptographicHash>
#include <QDir>
#include <QFileInfo>
#include <QLockFile>
#include <QTemporaryDir>
#include <QTemporaryFile>
#include <qualityutility/tool/file/picqualityfiletool.h>

namespace {

using Tool = PicQualityFileTool;

/// The files in a calibration's folder.
struct CalibrationFiles
{
    explicit CalibrationFiles(const CalibrateOptions& options)
        : folder(QString::fromStdString(options.out)),
          html(options.html.empty() ? folder.filePath(QStringLiteral("report.html"))
                                    : QString::fromStdString(options.html))
    {}

    QString in(const char* name) const { return folder.filePath(QString::fromLatin1(name)); }

    QDir folder;
    QString html;
    QString journal = in(journalName);
    QString nicc = in("screen.nicc");
    QString gray = in("screen.gray");
    QString cabinet = in("screen.nrf");
    QString project = in("screen.zip");
    QString chartXy = in("gamut-xy.svg");
    QString chartUv = in("gamut-uv.svg");
    QString chartGray = in("gray.svg");

    /// Everything but the journal.
    QStringList outputs() const { return {nicc, gray, cabinet, project, chartXy, chartUv, chartGray, html}; }
};

QString digest(const std::string& path, const QString& what)
{
    if (path.empty())
        return {};
    const QByteArray content = readInputFile(QString::fromStdString(path), what);
    return QString::fromLatin1(QCryptographicHash::hash(content, QCryptographicHash::Sha256).toHex());
}

/// What a calibration is made from, as far as a resumed one must agree with it.
QJsonObject inputsOf(const CalibrateOptions& options, const CalibrationContent& content,
                     const CalibrationTarget& target)
{
    QJsonArray served;
    for (const std::string& device : target.devices())
        served.append(QString::fromStdString(device));
    QJsonArray devices;
    for (const std::string& device : options.wall.devices)
        devices.append(QString::fromStdString(device));
    QJsonArray cabinets;
    for (const std::string& range : options.wall.cabinets)
        cabinets.append(QString::fromStdString(range));
    const bool isWall = options.generation == 4;
    return {{QStringLiteral("generation"), options.generation},
            {QStringLiteral("calibrated"), target.name()},
            {QStringLiteral("devices"), served},
            {QStringLiteral("wall_sha256"),
             isWall ? digest(options.wall.file, QStringLiteral("wall document")) : QString()},
            {QStringLiteral("device"), devices},
            {QStringLiteral("cabinet"), cabinets},
            {QStringLiteral("measured"), gamutToJson(content.measured)},
            {QStringLiteral("target"), gamutToJson(content.target)},
            {QStringLiteral("table_sha256"), digest(options.table, QStringLiteral("gray table"))},
            {QStringLiteral("frequency_hz"), options.frequency},
            {QStringLiteral("binary_sha256"), digest(options.binary, QStringLiteral("binary"))}};
}

/// Whether a file begins as our reports do.
bool isReport(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) && file.readLine() == "<!DOCTYPE html>\n" &&
           file.read(4096).contains("<title>Calibration of");
}

/// Whether two names are one file's, also through links.
bool isSameFile(const QString& first, const QString& second)
{
    const QFileInfo a(first);
    const QFileInfo b(second);
    return a.absoluteFilePath() == b.absoluteFilePath() ||
           (a.exists() && a.canonicalFilePath() == b.canonicalFilePath());
}

/// Throws CommandError where the report has no place, and where one file would be two things of this run: what is
/// written would destroy what is read.
void checkFiles(const CalibrateOptions& options, const CalibrationFiles& files)
{
    const QFileInfo html(files.html);
    if (html.exists() && !html.isFile() && !html.isDir())
        throw CommandError{ExitCode::CannotCreate,
                           QStringLiteral("--html %1: expected a file, found a pipe or device").arg(files.html)};
    if (html.isDir() || !html.absoluteDir().exists())
        throw CommandError{ExitCode::CannotCreate,
                           QStringLiteral("--html %1: expected a file in a folder that is there").arg(files.html)};
    QStringList taken{files.journal};
    for (const std::string& input :
         {options.wall.file, options.measured, options.target, options.table, options.binary})
        if (!input.empty())
            taken << QString::fromStdString(input);
    for (const QString& written : files.outputs()) {
        for (const QString& other : taken) {
            if (isSameFile(written, other))
                throw CommandError{
                    ExitCode::Usage,
                    QStringLiteral("%1: this run would write it, and uses it as %2").arg(written, other)};
        }
        taken << written;
    }
    if (html.exists() && !isReport(files.html))
        requireNewFile(files.html, options.force);
}

/// Removes those of the calibration that this one replaces: what a link leads to, so that the link is followed again.
void removeDocuments(const CalibrationFiles& files)
{
    for (const QString& path : files.outputs())
        QFile::remove(QFileInfo::exists(path) ? QFileInfo(path).canonicalFilePath() : path);
}

CalibrationJournal openJournal(const CalibrateOptions& options, const CalibrationFiles& files,
                               const QJsonObject& inputs)
{
    checkFiles(options, files);
    if (!options.resume && !options.force && QFileInfo::exists(files.journal))
        throw CommandError{ExitCode::CannotCreate, QStringLiteral("%1 exists").arg(files.journal),
                           QStringLiteral("--resume goes on with that calibration, --force begins anew")};
    if (!options.resume || !QFileInfo::exists(files.journal)) {
        for (const QString& path : files.outputs())
            requireNewFile(path, options.force);
        // Only then: a kill in between must leave no folder whose journal tells of documents that are gone.
        const CalibrationJournal begun = CalibrationJournal::begin(files.journal, inputs);
        removeDocuments(files);
        return begun;
    }
    CalibrationJournal journal = CalibrationJournal::read(files.journal);
    for (auto it = inputs.begin(); it != inputs.end(); ++it) {
        if (journal.inputs().value(it.key()) != it.value())
            throw CommandError{ExitCode::BadData,
                               QStringLiteral("--resume: %1 was begun with another %2").arg(files.journal, it.key()),
                               QStringLiteral("give the inputs of the first run, or --force to begin anew")};
    }
    if (journal.records().isEmpty())
        removeDocuments(files); // a run that was ended at its begin may not have come to it
    return journal;
}

/// `fault` with the reason why no file can be made in a folder, or not grow there; as it is where one can.
QString withObstacle(const QString& fault, const QString& folder)
{
    constexpr int probeBytes = 65536;
    QTemporaryFile probe(QDir(folder).filePath(QStringLiteral("probe-XXXXXX")));
    const bool isGood = probe.open() && writeThrough(probe, QByteArray(probeBytes, 0));
    return isGood ? fault : QStringLiteral("%1: %2").arg(fault, probe.errorString());
}

[[noreturn]] void throwNotWritten(const QString& path)
{
    const QString line = HostLog::takeCriticalLine();
    throw CommandError{ExitCode::InputOutput,
                       withObstacle(QStringLiteral("%1: cannot be written").arg(path), QFileInfo(path).path()), line};
}

[[noreturn]] void throwNotLocked(const QLockFile& lock, const QString& path)
{
    const QString folder = QFileInfo(path).path();
    qint64 process = 0;
    QString host;
    QString application;
    if (lock.error() != QLockFile::LockFailedError)
        throw CommandError{lock.error() == QLockFile::PermissionError ? ExitCode::CannotCreate : ExitCode::InputOutput,
                           withObstacle(QStringLiteral("%1: cannot be made").arg(path), folder)};
    if (!lock.getLockInfo(&process, &host, &application))
        throw CommandError{ExitCode::Unavailable,
                           QStringLiteral("%1: names no owner, and cannot be removed").arg(path)};
    throw CommandError{ExitCode::Unavailable, QStringLiteral("%1: another calibration is at work there").arg(folder),
                       QStringLiteral("process %1 on %2").arg(QString::number(process), host)};
}

/// Takes the lock of a calibration's folder. Throws CommandError: unavailable, cannot create, input/output.
void takeLock(QLockFile& lock, const QString& path)
{
    constexpr int ownerlessMs = 1000;
    constexpr int attempts = 30;
    constexpr int attemptMs = 100;
    const auto isOwnerless = [&lock] {
        qint64 process = 0;
        QString text;
        return lock.error() == QLockFile::LockFailedError && !lock.getLockInfo(&process, &text, &text);
    };
    lock.setStaleLockTime(0); // a lock with a living owner never gets old
    bool isTaken = lock.tryLock(0);
    // An owner is written as soon as the file is made: one that stays without was left by a kill in between.
    for (int i = 0; i < attempts && !isTaken && isOwnerless(); ++i) {
        lock.setStaleLockTime(ownerlessMs);
        isTaken = lock.tryLock(attemptMs);
    }
    if (!isTaken)
        throwNotLocked(lock, path);
}

Model::FineGrayCoeffs fineGrayOf(const GrayTableFile& table)
{
    Model::FineGrayCoeffs coeffs;
    coeffs.rGrayCoeffs = {table.red.begin(), table.red.end()};
    coeffs.gGrayCoeffs = {table.green.begin(), table.green.end()};
    coeffs.bGrayCoeffs = {table.blue.begin(), table.blue.end()};
    coeffs.magnitudes = {table.magnitude.begin(), table.magnitude.end()};
    return coeffs;
}

/// Replaces the NICC configuration with its switch at once: at no moment is one off that was on.
void writeNicc(const QString& path, const CalibrationContent& content, bool isOpen)
{
    const QTemporaryDir own;
    const QString made = own.filePath(QStringLiteral("made.nicc"));
    if (!own.isValid() || !Tool::writeNiccConfig(made, content.measured, content.target) ||
        !Tool::updateNiccOpenConfig(made, isOpen))
        throw CommandError{
            ExitCode::InputOutput,
            withObstacle(QStringLiteral("%1: cannot be written").arg(QDir::tempPath()), QDir::tempPath())};
    writeOutputFile(path, readInputFile(made, QStringLiteral("document")));
}

/// Writes what is known before anything is sent. Gives the files.
QStringList writeDocuments(const CalibrationFiles& files, const CalibrationContent& content, bool isDone)
{
    QStringList written{files.nicc};
    writeNicc(files.nicc, content, isDone);
    if (!content.table.isEmpty()) {
        if (!Tool::writeFineGrayConfig(files.gray, {}, {}, {}, fineGrayOf(readGrayTable(content.table))))
            throwNotWritten(files.gray);
        written << files.gray;
    }
    if (!content.binary.isEmpty()) {
        if (!Tool::writeRvcardConfig(files.cabinet, readInputFile(content.binary, QStringLiteral("binary"))))
            throwNotWritten(files.cabinet);
        written << files.cabinet;
    }
    return written;
}

/// Whether there is nothing left to send.
bool isDone(const CalibrationTarget& target, const CalibrationJournal& journal)
{
    const auto devices = target.devices();
    return std::all_of(devices.begin(), devices.end(), [&journal](const std::string& device) {
        return journal.records().value(QString::fromStdString(device)).isDone();
    });
}

/// Serves the devices that the journal does not have done.
void serveAll(CalibrationTarget& target, CalibrationJournal& journal, CalibrationReport& report, const Output& output)
{
    const auto devices = target.devices();
    std::vector<std::string> open;
    for (const std::string& device : devices) {
        if (journal.records().value(QString::fromStdString(device)).isDone())
            report.resumed << QString::fromStdString(device);
        else
            open.push_back(device);
    }
    Progress progress(qMax(1, static_cast<int>(open.size()) * target.stepCount()), output);
    for (const std::string& device : devices) {
        const QString name = QString::fromStdString(device);
        if (report.resumed.contains(name)) {
            report.records.push_back(journal.records().value(name));
        } else if (Interrupt::isRequested()) {
            report.records.push_back(target.notServed(device));
        } else {
            report.records.push_back(target.serve(device, progress));
            journal.append(report.records.back());
        }
    }
}

/// The project archive, the charts and the HTML report.
void writeReports(const CalibrationFiles& files, const CalibrationContent& content, CalibrationReport& report)
{
    const bool isDone = std::all_of(report.records.begin(), report.records.end(),
                                    [](const DeviceRecord& record) { return record.isDone(); });
    if (isDone && !Tool::updateNiccOpenConfig(files.nicc, true))
        throwNotWritten(files.nicc);
    HostLog::takeCriticalLine();
    Tool::packProConfig(files.project, files.nicc, content.table.isEmpty() ? QString() : files.gray,
                        content.binary.isEmpty() ? QString() : files.cabinet, {files.journal});
    if (!HostLog::takeCriticalLine().isEmpty())
        throwNotWritten(files.project);
    report.files << files.project << files.journal;
    QList<QByteArray> charts{correctionChart(report.figures, Charts::Plane::Xy).toSvg(),
                             correctionChart(report.figures, Charts::Plane::UvPrime).toSvg()};
    QStringList names{files.chartXy, files.chartUv};
    if (!content.table.isEmpty()) {
        charts << grayTableChart(readGrayTable(content.table), QFileInfo(content.table).fileName()).toSvg();
        names << files.chartGray;
    }
    for (int i = 0; i < charts.size(); ++i)
        writeOutputFile(names.at(i), charts.at(i));
    report.files << names << files.html;
    writeOutputFile(files.html, toHtml(report, charts));
}

std::optional<CommandError> errorOf(const CalibrationReport& report)
{
    QStringList served;
    QStringList open;
    for (const DeviceRecord& record : report.records)
        (record.isDone() ? served : open) << record.device;
    const QString hint = QStringLiteral("--resume goes on with what is not done");
    if (Interrupt::isRequested() && !open.isEmpty())
        return CommandError{ExitCode::Interrupted,
                            QStringLiteral("interrupted; done: %1; not done: %2")
                                .arg(served.isEmpty() ? QStringLiteral("none") : served.join(QStringLiteral(", ")),
                                     open.join(QStringLiteral(", "))),
                            hint};
    auto error = errorOf(report.outcomes(), false);
    if (error)
        error->hint = hint;
    return error;
}

} // namespace

CommandResult runCalibrate(const CalibrateOptions& options, const Output& output)
{
    CalibrationReport report;
    CalibrationContent content{parseGamut(options.measured), parseGamut(options.target),
                               QString::fromStdString(options.table), options.frequency,
                               QString::fromStdString(options.binary)};
    for (const QString& file : {content.table, content.binary}) { // they are read more than once
        if (!file.isEmpty())
            requireReadableFile(file, QStringLiteral("input"));
    }
    HostLog::install(output.quiet);
    report.figures = computeFigures(content.measured, content.target);
    content.target = report.figures.target;
    if (options.dryRun) {
        const OpenWall wall = openWall(options.wall);
        return dryRun(calibrationSteps(content), selectTargets(wall, options.wall));
    }
    const auto target = options.generation == 4 ? wallTarget(content, options.wall, options.seed, output)
                                                : hubTarget(content, options.hub, output);
    report.target = target->name();
    const CalibrationFiles files(options);
    makeOutputFolder(QString::fromStdString(options.out));
    const QString lockPath = files.in("calibration.lock");
    QLockFile lock(lockPath);
    takeLock(lock, lockPath);
    CalibrationJournal journal = openJournal(options, files, inputsOf(options, content, *target));
    report.files = writeDocuments(files, content, isDone(*target, journal));
    {
        const Interrupt interrupt(Interrupt::What::FinishRunning);
        serveAll(*target, journal, report, output);
    }
    writeReports(files, content, report);
    return {toText(report), toJson(report), errorOf(report)};
}
