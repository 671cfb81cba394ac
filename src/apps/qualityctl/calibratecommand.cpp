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

/// The integers that a device's cabinets work with: the identity while the correction is off.
Model::GamutCoeff workingCoefficients(const HeldCorrection& held)
{
    Model::GamutCoeff coeff; // the identity
    if (held.isOn)
        coeff.setCoeffs({held.coefficients.begin(), held.coefficients.end()});
    return coeff;
}

CommandResult verify(const VerifyArguments& arguments, const Output& output)
{
    HostLog::install(output.quiet);
    const QDir folder(QString::fromStdString(arguments.folder));
    const auto journal = CalibrationJournal::read(folder.filePath(QString::fromLatin1(journalName)));
    const auto measured = gamutFromJson(journal.inputs().value(QStringLiteral("measured")).toObject());
    auto target = gamutFromJson(journal.inputs().value(QStringLiteral("target")).toObject());
    QList<QStringList> rows{{QStringLiteral("device"), QStringLiteral("cabinets"), QStringLiteral("correction")}};
    rows.front() << pointNames() << QStringLiteral("result");
    QJsonArray devices;
    QStringList faults;
    for (const DeviceRecord& record : journal.records()) {
        if (!record.isDone())
            faults << QStringLiteral("%1: not everything was sent").arg(record.device);
        for (const HeldCorrection& held : record.held) {
            target.coeff = workingCoefficients(held);
            const GamutFigures figures = figuresOf(measured, target);
            const bool isGood = figures.worstDifference() <= arguments.maxDifference;
            QStringList row{record.device, QString::number(held.cabinets),
                            held.isOn ? QStringLiteral("on") : QStringLiteral("off")};
            for (const double difference : figures.ciede2000)
                row << QString::number(difference, 'f', 2);
            rows.append(row << (isGood ? QStringLiteral("ok") : QStringLiteral("ABOVE")));
            QJsonObject device = toJson(figures);
            device.insert(QStringLiteral("device"), record.device);
            device.insert(QStringLiteral("cabinets"), held.cabinets);
            device.insert(QStringLiteral("max_ciede2000"), figures.worstDifference());
            device.insert(QStringLiteral("within"), isGood);
            devices.append(device);
            if (!isGood)
                faults << QStringLiteral("%1: %2 cabinets differ by %3, above %4")
                              .arg(record.device)
                              .arg(held.cabinets)
                              .arg(figures.worstDifference(), 0, 'f', 2)
                              .arg(arguments.maxDifference);
        }
    }
    if (devices.isEmpty())
        throw CommandError{ExitCode::BadData, QStringLiteral("%1: no device was served").arg(folder.path())};
    CommandResult result;
    result.text = QStringLiteral("CIEDE2000 of what the cabinets show to %1, at most %2\n\n")
                      .arg(QString::fromStdString(target.name))
                      .arg(arguments.maxDifference) +
                  textTable(rows);
    result.json = {{QStringLiteral("max_de"), arguments.maxDifference}, {QStringLiteral("devices"), devices}};
    if (!faults.isEmpty())
        result.error = CommandError{ExitCode::Difference, faults.join(QStringLiteral("; "))};
    return result;
}

void addCalibrate(CLI::App& app, Command& chosen)
{
    CLI::App* command =
        app.add_subcommand("calibrate", "Compute a correction and bring it to a wall, with documents and report");
    const auto options = std::make_shared<CalibrateOptions>();
    command->add_option("--wall", options->wall.file, "Wall document; the built-in example wall without one");
    command->add_option("--device", options->wall.devices, "Only this device; may be repeated");
    command->add_option("--cabinet", options->wall.cabinets, "Only these cabinets: identifiers or ranges, as 1,2,5-9")
        ->delimiter(',');
    command->add_option("--seed", options->seed, "Seed of the simulated faults")->capture_default_str();
    command
        ->add_option("--measured", options->measured,
                     "The wall's gamut: a standard name, a JSON file, or rx,ry:gx,gy:bx,by:wx,wy[:cd_m2]")
        ->required();
    command->add_option("--target", options->target, "The gamut that is wanted, given alike")->required();
    command->add_option("--table", options->table, "Gray table: text or CSV with red, green, blue, magnitude (0..255)");
    command->add_option("--frequency", options->frequency, "Refresh frequency in Hz")
        ->check(CLI::PositiveNumber)
        ->capture_default_str();
    command->add_option("--bin", options->binary, "Receiving-card binary");
    command->add_option("--generation", options->generation, "4: cabinets of the wall; 3: through a message hub")
        ->check(CLI::IsMember({3, 4}))
        ->capture_default_str();
    addHubAddress(*command, options->hub);
    command->add_option("--out", options->out, "Folder for documents and report; made when it is missing")->required();
    command->add_option("--html", options->html, "The report's file; report.html in the folder without it");
    command->add_flag("--resume", options->resume, "Go on with the calibration that was begun in the folder");
    command->add_flag("--force", options->force, "Begin anew and replace what is in the folder");
    command->add_flag("--dry-run", options->dryRun, "Print the requests instead of sending them");
    command->callback([&chosen, options] {
        checkHubAddress(options->hub);
        if (options->generation == 3 && (options->dryRun || !options->binary.empty()))
            throw CLI::ValidationError("--generation 3", "neither --dry-run nor --bin goes through a hub");
        chosen = [options](const Output& output) { return runCalibrate(*options, output); };
    });
}

} // namespace

void addCalibrateCommands(CLI::App& app, Command& chosen)
{
    addCalibrate(app, chosen);
    CLI::App* command =
        app.add_subcommand("verify", "Compute what a calibrated wall shows, from what its cabinets hold");
    const auto arguments = std::make_shared<VerifyArguments>();
    command->add_option("folder,--out", arguments->folder, "The calibration's folder")->required();
    command->add_option("--max-de", arguments->maxDifference, "Largest CIEDE2000 of red, green, blue and white")
        ->check(CLI::NonNegativeNumber)
        ->capture_default_str();
    command->callback(
        [&chosen, arguments] { chosen = [arguments](const Output& output) { return verify(*arguments, output); }; });
}
