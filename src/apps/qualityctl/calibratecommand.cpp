#include "calibraterun.h"
#include "commands.h"

#include <CLI/CLI.hpp>

void addCalibrateCommand(CLI::App& app, Command& chosen)
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
