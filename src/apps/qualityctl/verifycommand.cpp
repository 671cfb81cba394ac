#include "commands.h"
#include "hostlog.h"
#include "options.h"
#include <calibration/folder.h>
#include <reports/calibrationreport.h>

#include <CLI/CLI.hpp>

namespace {

struct VerifyArguments
{
    std::string folder;
    Calibration::Acceptance acceptance;
};

CommandResult verify(const VerifyArguments& arguments, const Output& output)
{
    HostLog::install(output.quiet);
    const QString folder = QString::fromStdString(arguments.folder);
    const auto journal = take(Calibration::Journal::read(Calibration::journalPath(folder)));
    const auto verification = Calibration::verify(journal, arguments.acceptance);
    if (!verification) {
        Fault fault = verification.fault();
        fault.subject += QLatin1Char(' ') + folder;
        throw fault;
    }
    CommandResult result{Reports::toText(*verification), Reports::toJson(*verification)};
    if (!verification->faults.isEmpty())
        result.error = Fault{Fault::Kind::Difference, {}, {}, verification->faults.join(QStringLiteral("; "))};
    return result;
}

} // namespace

void addVerifyCommand(CLI::App& app, Command& chosen)
{
    CLI::App* command =
        app.add_subcommand("verify", "Compute what a calibrated wall shows, from what its cabinets hold");
    const auto arguments = std::make_shared<VerifyArguments>();
    command->add_option("folder", arguments->folder, "The calibration's folder")->required();
    addAcceptance(*command, arguments->acceptance);
    command->callback(
        [&chosen, arguments] { chosen = [arguments](const Output& output) { return verify(*arguments, output); }; });
}
