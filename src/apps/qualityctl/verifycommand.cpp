#include "calibraterun.h"
#include "calibrationjournal.h"
#include "commands.h"
#include "hostlog.h"

#include <CLI/CLI.hpp>

#include <QDir>

namespace {

struct VerifyArguments
{
    std::string folder;
    double maxDifference = 3.0; ///< CIEDE2000
};

/// What a folder's cabinets show, and what is wrong with it.
struct Verification
{
    QList<QStringList> rows;
    QJsonArray devices;
    QStringList faults;
};

/// The integers that a device's cabinets work with: the identity while the correction is off.
Model::GamutCoeff workingCoefficients(const HeldCorrection& held)
{
    Model::GamutCoeff coeff; // the identity
    if (held.isOn)
        coeff.setCoeffs({held.coefficients.begin(), held.coefficients.end()});
    return coeff;
}

void judge(const QString& device, const HeldCorrection& held, const GamutFigures& figures, double maxDifference,
           Verification& verification)
{
    const bool isGood = figures.worstDifference() <= maxDifference;
    QStringList row{device, QString::number(held.cabinets), held.isOn ? QStringLiteral("on") : QStringLiteral("off")};
    for (const double difference : figures.ciede2000)
        row << QString::number(difference, 'f', 2);
    verification.rows.append(row << (isGood ? QStringLiteral("ok") : QStringLiteral("ABOVE")));
    QJsonObject json = toJson(figures);
    json.insert(QStringLiteral("device"), device);
    json.insert(QStringLiteral("cabinets"), held.cabinets);
    json.insert(QStringLiteral("max_ciede2000"), figures.worstDifference());
    json.insert(QStringLiteral("within"), isGood);
    verification.devices.append(json);
    if (!isGood)
        verification.faults << QStringLiteral("%1: %2 cabinets differ by %3, above %4")
                                   .arg(device, QString::number(held.cabinets),
                                        QString::number(figures.worstDifference(), 'f', 2),
                                        QString::number(maxDifference));
}

/// A row for cabinets whose coefficients leave a primary or white without light.
void judgeDark(const QString& device, const HeldCorrection& held, const QString& reason, Verification& verification)
{
    QStringList row{device, QString::number(held.cabinets), held.isOn ? QStringLiteral("on") : QStringLiteral("off")};
    for (int i = 0; i < pointNames().size(); ++i)
        row << QStringLiteral("-");
    verification.rows.append(row << QStringLiteral("DARK"));
    verification.devices.append(QJsonObject{{QStringLiteral("device"), device},
                                            {QStringLiteral("cabinets"), held.cabinets},
                                            {QStringLiteral("coefficients"), coefficientsToJson(held.coefficients)},
                                            {QStringLiteral("within"), false}});
    verification.faults << QStringLiteral("%1: %2 cabinets: %3").arg(device, QString::number(held.cabinets), reason);
}

CommandResult verify(const VerifyArguments& arguments, const Output& output)
{
    HostLog::install(output.quiet);
    const QDir folder(QString::fromStdString(arguments.folder));
    const auto journal = CalibrationJournal::read(folder.filePath(QString::fromLatin1(journalName)));
    const auto measured = gamutFromJson(journal.inputs().value(QStringLiteral("measured")).toObject());
    auto target = gamutFromJson(journal.inputs().value(QStringLiteral("target")).toObject());
    Verification verification;
    verification.rows = {QStringList{QStringLiteral("device"), QStringLiteral("cabinets"), QStringLiteral("correction")}
                         << pointNames() << QStringLiteral("result")};
    for (const DeviceRecord& record : journal.records()) {
        if (!record.isDone())
            verification.faults << QStringLiteral("%1: not everything was sent").arg(record.device);
        for (const HeldCorrection& held : record.held) {
            target.coeff = workingCoefficients(held);
            try {
                judge(record.device, held, figuresOf(measured, target), arguments.maxDifference, verification);
            } catch (const CommandError& error) {
                judgeDark(record.device, held, error.message, verification);
            }
        }
    }
    for (const QJsonValue device : journal.inputs().value(QStringLiteral("devices")).toArray()) {
        if (!journal.records().contains(device.toString()))
            verification.faults << QStringLiteral("%1: not served").arg(device.toString());
    }
    if (verification.devices.isEmpty())
        throw CommandError{ExitCode::BadData, QStringLiteral("%1: no device was served").arg(folder.path())};
    CommandResult result;
    result.text = QStringLiteral("CIEDE2000 of what the cabinets show to %1, at most %2\n\n")
                      .arg(QString::fromStdString(target.name), QString::number(arguments.maxDifference)) +
                  textTable(verification.rows);
    result.json = {{QStringLiteral("max_de"), arguments.maxDifference},
                   {QStringLiteral("devices"), verification.devices}};
    if (!verification.faults.isEmpty())
        result.error = CommandError{ExitCode::Difference, verification.faults.join(QStringLiteral("; "))};
    return result;
}

} // namespace

void addVerifyCommand(CLI::App& app, Command& chosen)
{
    CLI::App* command =
        app.add_subcommand("verify", "Compute what a calibrated wall shows, from what its cabinets hold");
    const auto arguments = std::make_shared<VerifyArguments>();
    command->add_option("folder", arguments->folder, "The calibration's folder")->required();
    command->add_option("--max-de", arguments->maxDifference, "Largest CIEDE2000 of red, green, blue and white")
        ->check(finiteNumber(0.0, 1000.0))
        ->capture_default_str();
    command->callback(
        [&chosen, arguments] { chosen = [arguments](const Output& output) { return verify(*arguments, output); }; });
}
