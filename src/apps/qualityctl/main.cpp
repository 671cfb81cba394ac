#include "commands.h"
#include "selfdescription.h"

#include <CLI/CLI.hpp>

#include <QApplication>

#include <clocale>
#include <csignal>
#include <cstring>

namespace {

constexpr char footer[] = R"(Examples:
  qualityctl calibrate --measured examples/measured-gamut.json --target rec709 --out out
  qualityctl verify out
  qualityctl wall show
  qualityctl send gray --table examples/gray-table.csv --frequency 60
  qualityctl send mode --correction on --json
  qualityctl send gamut --target rec709:2800 --device left --cabinet 1-4 --dry-run
  qualityctl gamut coverage p3-d65 bt2020
  qualityctl gamut coefficients examples/measured-gamut.json rec709 --json
  qualityctl gamut chart examples/measured-gamut.json rec709 --out gamut.svg
  qualityctl match --measured examples/two-batches.csv --target common
  qualityctl measure show examples/readings.ti3
  qualityctl hub ping --hub 192.0.2.7:9000 --hub 192.0.2.8:9000
  qualityctl gray write --calibration examples/gray-calibration.json --out out
  qualityctl doc show out/fine-gray.gray

Without --wall the built-in example wall is used; walls are simulated in this process unless --transport names a device
gateway or a plug-in, and so is the message hub without --hub, --host and --port.

Exit codes: 0 done, 1 a check found a difference, 64 usage, 65 bad data, 66 no input, 69 unavailable,
70 internal, 73 cannot create, 74 input/output, 75 timeout, 76 protocol, 130 interrupted)";

/// A text about the command line itself, asked for instead of a command.
struct SelfDescription
{
    QString text;
};

/// How to speak while the arguments are not parsed, or no longer at hand.
Output wantedOutput(int argc, char** argv)
{
    Output output;
    output.json = std::any_of(argv, argv + argc, [](const char* text) { return std::strcmp(text, "--json") == 0; });
    return output;
}

/// What is printed when the arguments themselves are wrong: --json may be among them all the same.
int reportUsage(const CLI::App& app, const CLI::ParseError& error, int argc, char** argv)
{
    const Output output = wantedOutput(argc, argv);
    QString message = QString::fromUtf8(error.what());
    const auto unknown = app.remaining(true);
    if (dynamic_cast<const CLI::RequiredError*>(&error) && !unknown.empty() && app.get_subcommands().empty())
        message = QStringLiteral("no such command: %1").arg(QString::fromStdString(unknown.front()));
    const Fault usage{Fault::Kind::Usage,
                      {},
                      {},
                      message,
                      QStringLiteral("%1 --help says more").arg(QString::fromStdString(app.get_name()))};
    return print({{}, {}, usage}, output);
}

int run(int argc, char** argv)
{
    CLI::App app("Picture quality of LED cabinets, from the command line", "qualityctl");
    Output output;
    app.add_flag("--json", output.json, "One JSON document on stdout, for failures too");
    app.add_flag("--quiet", output.quiet, "No progress and no log lines on stderr");
    app.set_version_flag("--version", QUALITYCTL_VERSION);
    app.require_subcommand(1);
    app.fallthrough();
    app.footer(footer);
    // For the build, which installs what they print; not in --help.
    app.add_flag_callback("--man-page", [&app] { throw SelfDescription{manPage(app)}; })->group("");
    app.add_flag_callback("--bash-completion", [&app] { throw SelfDescription{bashCompletion(app)}; })->group("");
    Command chosen;
    addCalibrateCommand(app, chosen);
    addVerifyCommand(app, chosen);
    addWallCommands(app, chosen);
    addSendCommands(app, chosen);
    addGamutCommands(app, chosen);
    addMatchCommand(app, chosen);
    addGrayCommands(app, chosen);
    addMeasureCommands(app, chosen);
    addDocCommands(app, chosen);
    addProjectCommands(app, chosen);
    addHubCommands(app, chosen);
    addSettingsCommands(app, chosen);
    try {
        app.parse(argc, argv);
    } catch (const SelfDescription& description) {
        return print({description.text, {}}, {});
    } catch (const CLI::Success& request) { // --help and --version
        return app.exit(request);
    } catch (const CLI::ParseError& error) {
        return reportUsage(app, error, argc, argv);
    }
    try {
        return print(chosen(output), output);
    } catch (const Fault& error) {
        return print({{}, {}, error}, output);
    }
}

} // namespace

int main(int argc, char** argv)
{
#ifdef SIGXFSZ
    std::signal(SIGXFSZ, SIG_IGN); // a file-size limit is an error like a full disk
#endif
    qputenv("QT_QPA_PLATFORM", "offscreen"); // charts are drawn without a display
    qInstallMessageHandler(
        [](QtMsgType, const QMessageLogContext&, const QString&) {}); // about missing session folders
    const QApplication application(argc, argv);
    qInstallMessageHandler(nullptr);
    std::setlocale(LC_NUMERIC, "C"); // numbers use a point in every locale; Qt has set the user's
    try {
        return run(argc, argv);
    } catch (const std::exception& error) {
        return print({{}, {}, Fault{Fault::Kind::Internal, {}, {}, QString::fromUtf8(error.what())}},
                     wantedOutput(argc, argv));
    }
}
