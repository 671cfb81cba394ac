#include "builtinresource.h"
#include "commands.h"
#include "graycalibration.h"
#include "hostcharts.h"
#include "hostlog.h"
#include "inputfile.h"
#include "outputfile.h"

#include <CLI/CLI.hpp>
#include <suite/model/finegray.h>
#include <suite/model/graydetailpara.h>
#include <suite/model/grayeffectpara.h>
#include <suite/model/magicgraycoeffs.h>
#include <suite/model/magicgrayparam.h>

#include <QDir>
#include <QFileInfo>
#include <QJsonArray>
#include <QSaveFile>
#include <QTemporaryDir>
#include <qualityutility/resource/picqualityresource.h>
#include <qualityutility/tool/file/picqualityfiletool.h>

namespace {

using Tool = PicQualityFileTool;

struct GrayArguments
{
    std::string calibration;
    std::string out;
    bool force = false;
};

struct Paths
{
    explicit Paths(const QString& folder)
        : config(QDir(folder).filePath(QStringLiteral("fine-gray.gray"))),
          cache(QDir(folder).filePath(QStringLiteral("grayCache.gray")))
    {}

    QString config;
    QString cache;
};

Paths preparePaths(const GrayArguments& arguments)
{
    const QString folder = QString::fromStdString(arguments.out);
    makeOutputFolder(folder);
    const Paths paths(folder);
    for (const QString& path : {paths.config, paths.cache})
        requireNewFile(path, arguments.force);
    return paths;
}

bool writeConfiguration(const QString& path, const GrayCalibration& calibration)
{
    return Tool::writeFineGrayConfig(path, calibration.red, calibration.green, calibration.blue, calibration.coeffs) &&
           Tool::updateGrayStateConfig(path, calibration.effect, calibration.detail) &&
           Tool::updateMGGrayConfig(path, calibration.magicGray, {});
}

bool writeCache(const QString& path, const GrayCalibration& calibration)
{
    return Tool::writeFineGrayCache(path, calibration.red, calibration.green, calibration.blue) &&
           Tool::updateFineGrayCache(path, calibration.advance) &&
           Tool::updateFineGrayCache(path, calibration.magicGray);
}

/// Opens a file for a replacement, and writes it. Throws CommandError: cannot create, or input/output.
void prepareReplacement(QSaveFile& file, const QByteArray& content)
{
    if (!file.open(QIODevice::WriteOnly | QIODevice::Unbuffered))
        throw CommandError{ExitCode::CannotCreate, QStringLiteral("%1: %2").arg(file.fileName(), file.errorString())};
    if (!writeThrough(file, content))
        throw CommandError{ExitCode::InputOutput, QStringLiteral("%1: %2").arg(file.fileName(), file.errorString())};
}

/// Puts both documents in their places, or none: a document takes several steps to write, so they are made elsewhere,
/// and stand on the disk whole before the first takes its place.
void writeBoth(const Paths& paths, const GrayCalibration& calibration)
{
    const QTemporaryDir own;
    const Paths made(own.path());
    if (!own.isValid() || !writeConfiguration(made.config, calibration) || !writeCache(made.cache, calibration))
        throw CommandError{ExitCode::InputOutput,
                           QStringLiteral("%1: the documents cannot be written").arg(QDir::tempPath()),
                           HostLog::takeCriticalLine()};
    QSaveFile config(paths.config);
    QSaveFile cache(paths.cache);
    constexpr qint64 maxBytes = 16 * maxInputBytes; // a document is longer than what it is made from
    prepareReplacement(config, readInputFile(made.config, QStringLiteral("document"), maxBytes));
    prepareReplacement(cache, readInputFile(made.cache, QStringLiteral("document"), maxBytes));
    for (QSaveFile* file : {&config, &cache}) {
        if (!file->commit())
            throw CommandError{ExitCode::InputOutput,
                               QStringLiteral("%1: %2").arg(file->fileName(), file->errorString())};
    }
}

/// What a configuration or a cache gives back of a calibration, compared with it.
bool configurationHolds(const QString& path, const GrayCalibration& calibration)
{
    GrayCalibration back;
    Model::MagicGrayParam param;
    return Tool::readFineGrayConfig(path, back.red, back.green, back.blue, back.coeffs, back.effect, back.detail,
                                    back.magicGray, param) &&
           back.red == calibration.red && back.green == calibration.green && back.blue == calibration.blue &&
           back.coeffs == calibration.coeffs && back.effect == calibration.effect &&
           back.detail == calibration.detail && back.magicGray == calibration.magicGray;
}

bool cacheHolds(const QString& path, const GrayCalibration& calibration)
{
    GrayCalibration back;
    back.magicGray.getCurrentLUTs() = calibration.magicGray.getCurrentLUTs(); // the cache keeps no tables
    return Tool::readFineGrayCache(path, back.red, back.green, back.blue, back.advance, back.magicGray) &&
           back.red == calibration.red && back.green == calibration.green && back.blue == calibration.blue &&
           back.advance == calibration.advance && back.magicGray == calibration.magicGray;
}

CommandResult writeDocuments(const GrayArguments& arguments, const Output& output)
{
    const GrayCalibration calibration = readGrayCalibration(QString::fromStdString(arguments.calibration));
    const Paths paths = preparePaths(arguments);
    HostLog::install(output.quiet);
    writeBoth(paths, calibration);
    CommandResult result;
    QList<QStringList> rows{{QStringLiteral("document"), QStringLiteral("bytes"), QStringLiteral("read back")}};
    QJsonArray documents;
    const auto add = [&](const QString& path, bool isEqual) {
        const QFileInfo info(path);
        rows.append(QStringList{path, QString::number(info.size()),
                                isEqual ? QStringLiteral("equal") : QStringLiteral("DIFFERENT")});
        documents.append(QJsonObject{{QStringLiteral("path"), path},
                                     {QStringLiteral("bytes"), info.size()},
                                     {QStringLiteral("equal"), isEqual}});
        if (!isEqual)
            result.error =
                CommandError{ExitCode::Difference, QStringLiteral("%1: what is read back differs").arg(path)};
    };
    add(paths.config, configurationHolds(paths.config, calibration));
    add(paths.cache, cacheHolds(paths.cache, calibration));
    result.text = textTable(rows);
    result.json.insert(QStringLiteral("documents"), documents);
    return result;
}

CommandResult listTables(const Output& output)
{
    HostLog::install(output.quiet);
    PicQualityResource& resource = builtInResource();
    resource.initResourceFile();
    QList<QStringList> rows{
        {QStringLiteral("table"), QStringLiteral("numbers"), QStringLiteral("first"), QStringLiteral("last")}};
    QJsonArray tables;
    const auto add = [&](const QString& name, const auto& table) {
        const double first = table.isEmpty() ? 0 : table.first();
        const double last = table.isEmpty() ? 0 : table.last();
        rows.append(
            QStringList{name, QString::number(table.size()), QString::number(first), QString::number(last, 'f', 0)});
        tables.append(QJsonObject{{QStringLiteral("table"), name},
                                  {QStringLiteral("numbers"), table.size()},
                                  {QStringLiteral("first"), first},
                                  {QStringLiteral("last"), last}});
    };
    for (int i = 0; i < PicQualityResource::GrayTableCount; ++i) {
        const auto table = static_cast<PicQualityResource::GrayTable>(i);
        add(QFileInfo(PicQualityResource::grayTablePath(table)).baseName(), resource.grayTable(table));
    }
    add(QStringLiteral("LUT_INDEX"), resource.lutIndexTable());
    add(QStringLiteral("nGray_White"), resource.whiteGrayTable());
    return {textTable(rows), {{QStringLiteral("tables"), tables}}};
}

struct ChartArguments
{
    std::string table;
    std::string out;
    bool force = false;
};

CommandResult drawChart(const ChartArguments& arguments, const Output& output)
{
    const QString path = QString::fromStdString(arguments.out);
    const QString table = QString::fromStdString(arguments.table);
    const GrayTableFile content = readGrayTable(table);
    requireChartSuffix(path);
    requireNewFile(path, arguments.force);
    HostLog::install(output.quiet);
    writeChart(grayTableChart(content, QFileInfo(table).fileName()), path);
    return {QStringLiteral("%1\n").arg(path), {{QStringLiteral("file"), path}}};
}

} // namespace

void addGrayCommands(CLI::App& app, Command& chosen)
{
    CLI::App* gray = app.add_subcommand("gray", "Work with gray calibrations");
    gray->require_subcommand(1);
    gray->add_subcommand("tables", "List the built-in gray tables")->callback([&chosen] { chosen = listTables; });
    CLI::App* write =
        gray->add_subcommand("write", "Write a calibration as configuration and cache, and read both back");
    const auto arguments = std::make_shared<GrayArguments>();
    write
        ->add_option("--calibration", arguments->calibration,
                     "Gray calibration (JSON), see examples/gray-calibration.json")
        ->required();
    write->add_option("--out", arguments->out, "Folder for the documents; made when it is missing")->required();
    write->add_flag("--force", arguments->force, "Replace documents that are there");
    write->callback([&chosen, arguments] {
        chosen = [arguments](const Output& output) { return writeDocuments(*arguments, output); };
    });

    CLI::App* chart = gray->add_subcommand("chart", "Draw the curves of a gray table");
    const auto drawn = std::make_shared<ChartArguments>();
    chart->add_option("--table", drawn->table, "Gray table: text or CSV with red, green, blue, magnitude (0..255)")
        ->required();
    chart->add_option("--out", drawn->out, "The chart's file, .svg or .png")->required();
    chart->add_flag("--force", drawn->force, "Replace a file that is there");
    chart->callback([&chosen, drawn] { chosen = [drawn](const Output& output) { return drawChart(*drawn, output); }; });
}
