#include "builtinresource.h"
#include "chartfile.h"
#include "commands.h"
#include "hostlog.h"
#include "options.h"
#include <calibration/graycalibration.h>
#include <calibration/graytable.h>
#include <calibration/output.h>
#include <qualityutility/resource/picqualityresource.h>
#include <reports/figuresreport.h>

#include <CLI/CLI.hpp>

#include <QFileInfo>

namespace {

struct WriteArguments
{
    std::string calibration;
    std::string out;
    bool force = false;
};

CommandResult writeDocuments(const WriteArguments& arguments, const Output& output)
{
    const auto input =
        take(Calibration::readInput(QString::fromStdString(arguments.calibration), QStringLiteral("gray calibration")));
    const auto calibration = take(Calibration::parseGrayCalibration(input));
    const QString folder = QString::fromStdString(arguments.out);
    require(Calibration::makeFolder(folder));
    for (const QString& path : Calibration::grayDocumentPaths(folder))
        require(Calibration::requireNewFile(path, arguments.force));
    HostLog::install(output.quiet);
    Reports::Table table({{QStringLiteral("path"), QStringLiteral("document")},
                          {QStringLiteral("bytes"), QStringLiteral("bytes")},
                          {QStringLiteral("equal"), QStringLiteral("read back")}});
    CommandResult result;
    for (const auto& document : take(Calibration::writeGrayDocuments(folder, calibration))) {
        table.add({document.path, static_cast<int>(document.bytes),
                   Reports::flag(document.isEqual, QStringLiteral("equal"), QStringLiteral("DIFFERENT"))});
        if (!document.isEqual)
            result.error =
                Fault{Fault::Kind::Difference, document.path, {}, QStringLiteral("what is read back differs")};
    }
    result.text = table.toText();
    result.json.insert(QStringLiteral("documents"), table.toJson());
    return result;
}

template <typename Numbers>
void addRow(Reports::Table& table, const QString& name, const Numbers& numbers)
{
    const double first = numbers.isEmpty() ? 0 : numbers.first();
    const double last = numbers.isEmpty() ? 0 : numbers.last();
    table.add({name, numbers.size(), Reports::decimal(first, 0), Reports::decimal(last, 0)});
}

CommandResult listTables(const Output& output)
{
    HostLog::install(output.quiet);
    PicQualityResource& resource = builtInResource();
    resource.initResourceFile();
    Reports::Table table({{QStringLiteral("table"), QStringLiteral("table")},
                          {QStringLiteral("numbers"), QStringLiteral("numbers")},
                          {QStringLiteral("first"), QStringLiteral("first")},
                          {QStringLiteral("last"), QStringLiteral("last")}});
    for (int i = 0; i < PicQualityResource::GrayTableCount; ++i) {
        const auto kind = static_cast<PicQualityResource::GrayTable>(i);
        addRow(table, QFileInfo(PicQualityResource::grayTablePath(kind)).baseName(), resource.grayTable(kind));
    }
    addRow(table, QStringLiteral("LUT_INDEX"), resource.lutIndexTable());
    addRow(table, QStringLiteral("nGray_White"), resource.whiteGrayTable());
    return {table.toText(), {{QStringLiteral("tables"), table.toJson()}}};
}

struct ChartArguments
{
    std::string table;
    std::string out;
    bool force = false;
};

CommandResult drawChart(const ChartArguments& arguments, const Output& output)
{
    const auto table = take(Calibration::readGrayTable(QString::fromStdString(arguments.table), 0));
    const ChartFile file(arguments.out, arguments.force);
    HostLog::install(output.quiet);
    return file.write(Reports::grayTableChart(table.table, QFileInfo(table.file.name).fileName()));
}

} // namespace

void addGrayCommands(CLI::App& app, Command& chosen)
{
    CLI::App* gray = app.add_subcommand("gray", "Work with gray calibrations");
    gray->require_subcommand(1);
    gray->add_subcommand("tables", "List the built-in gray tables")->callback([&chosen] { chosen = listTables; });
    CLI::App* write =
        gray->add_subcommand("write", "Write a calibration as configuration and cache, and read both back");
    const auto arguments = std::make_shared<WriteArguments>();
    write
        ->add_option("--calibration", arguments->calibration,
                     "Gray calibration (JSON), see examples/gray-calibration.json")
        ->required();
    addOutputFolder(*write, arguments->out, arguments->force);
    write->callback([&chosen, arguments] {
        chosen = [arguments](const Output& output) { return writeDocuments(*arguments, output); };
    });

    CLI::App* chart = gray->add_subcommand("chart", "Draw the curves of a gray table");
    const auto drawn = std::make_shared<ChartArguments>();
    chart->add_option("--table", drawn->table, "Gray table: text or CSV with red, green, blue, magnitude (0..255)")
        ->required();
    addChartFile(*chart, drawn->out, drawn->force);
    chart->callback([&chosen, drawn] { chosen = [drawn](const Output& output) { return drawChart(*drawn, output); }; });
}
