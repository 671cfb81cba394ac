#include "commands.h"
#include "hostlog.h"
#include "options.h"
#include "wallargument.h"
#include <calibration/additivity.h>
#include <calibration/aftermeasurement.h>
#include <calibration/folder.h>
#include <reports/afterreport.h>
#include <reports/measurementreport.h>
#include <reports/verificationreport.h>

#include <CLI/CLI.hpp>

#include <QJsonArray>

namespace {

struct VerifyArguments
{
    std::string folder;
    std::string measured; ///< a measurement made afterwards; empty: none
    WallArgument wall;    ///< simulated ones ended with the process that calibrated: the journal is read
    Calibration::Acceptance acceptance;
};

/// Adds what a measurement that was made afterwards says; its fault, where there is one.
std::optional<Fault> compareAfter(const VerifyArguments& arguments, const Calibration::Verification& verification,
                                  CommandResult& result)
{
    const auto measurement = take(Calibration::readMeasured(QString::fromStdString(arguments.measured)));
    const auto after = take(Calibration::compareAfter(verification, measurement, arguments.acceptance));
    const QStringList warnings = warningsOf(measurement, Calibration::WhiteSource::Measured);
    result.text =
        Reports::toText(after, measurement) + QLatin1Char('\n') + Reports::warningLines(warnings) + result.text;
    QJsonObject json = Reports::toJson(after, measurement);
    json.insert(QStringLiteral("warnings"), QJsonArray::fromStringList(warnings));
    result.json.insert(QStringLiteral("after"), json);
    if (after.isPassed())
        return std::nullopt;
    return Fault{Fault::Kind::Difference, measurement.subject, {}, after.sentence()};
}

/// The strings of an array among the inputs of a calibration.
std::vector<std::string> stringsOf(const Calibration::Journal& journal, const char* key)
{
    std::vector<std::string> result;
    for (const QJsonValue value : journal.inputs().value(QLatin1String(key)).toArray())
        result.push_back(value.toString().toStdString());
    return result;
}

/// Where the cabinets are that the journal names; nothing where only the journal is left.
std::optional<OpenWall> wallOf(const Calibration::Journal& journal, WallArgument argument)
{
    const bool isSimulated = argument.transport == WallArgument().transport;
    if (isSimulated && !argument.file.empty())
        throw Fault{Fault::Kind::Usage, QStringLiteral("--wall"),
                    QStringLiteral("a --transport whose cabinets are asked"),
                    QString::fromStdString(argument.transport)};
    if (isSimulated && argument.record.empty())
        return std::nullopt;
    argument.devices = stringsOf(journal, "device");
    argument.cabinets = stringsOf(journal, "cabinet");
    return openWall(argument);
}

/// Asks the cabinets.
Common::Result<Calibration::Verification> judgeNow(const Calibration::Journal& journal, const OpenWall& wall,
                                                   const Calibration::Acceptance& acceptance, const Output& output)
{
    const WallDevices devices(wall, {}, output);
    if (!devices.reader())
        throw Fault{Fault::Kind::Unavailable, wall.transport, QStringLiteral("cabinets that can be asked"),
                    QStringLiteral("none")};
    const Calibration::CabinetsNow now{*devices.reader(), wall.targets};
    auto verification = Calibration::verify(journal, acceptance, &now);
    if (verification)
        verification->verdict.isSimulated = devices.isSimulated();
    return verification;
}

CommandResult verify(const VerifyArguments& arguments, const Output& output)
{
    HostLog::install(output.quiet);
    const QString folder = QString::fromStdString(arguments.folder);
    const auto journal = take(Calibration::Journal::read(Calibration::journalPath(folder)));
    const auto wall = wallOf(journal, arguments.wall);
    const auto verification = wall ? judgeNow(journal, *wall, arguments.acceptance, output)
                                   : Calibration::verify(journal, arguments.acceptance);
    if (!verification) {
        Fault fault = verification.fault();
        fault.subject += QLatin1Char(' ') + folder;
        throw fault;
    }
    CommandResult result{Reports::toText(*verification), Reports::toJson(*verification)};
    if (!verification->faults.isEmpty())
        result.error = Fault{Fault::Kind::Difference, {}, {}, verification->faults.join(QStringLiteral("; "))};
    if (!arguments.measured.empty()) {
        const auto fault = compareAfter(arguments, *verification, result);
        result.error = result.error ? result.error : fault;
    }
    return withRecording(std::move(result), wall ? wall->recorder.get() : nullptr);
}

} // namespace

void addVerifyCommand(CLI::App& app, Command& chosen)
{
    CLI::App* command =
        app.add_subcommand("verify", "Compute what a calibrated wall shows, from what its cabinets hold");
    const auto arguments = std::make_shared<VerifyArguments>();
    command->add_option("folder", arguments->folder, "The calibration's folder")->required();
    command->add_option("--measured", arguments->measured,
                        "A measurement of the calibrated wall, to be compared with target and computed colours");
    addTransport(*command, arguments->wall);
    addWall(*command, arguments->wall.file);
    command->get_option("--wall")->needs("--transport");
    addAcceptance(*command, arguments->acceptance);
    command->callback(
        [&chosen, arguments] { chosen = [arguments](const Output& output) { return verify(*arguments, output); }; });
}
