#include "commands.h"
#include "options.h"
#include "wallargument.h"
#include <calibration/selection.h>
#include <reports/table.h>

#include <CLI/CLI.hpp>

namespace {

std::vector<unsigned long long> cidsOf(const Service::WallDevice& device)
{
    std::vector<unsigned long long> cids;
    for (const auto& cabinet : device.entry.cabinets)
        cids.push_back(cabinet->getCid());
    return cids;
}

QJsonArray cabinetsOf(const Service::WallDevice& device)
{
    QJsonArray cabinets;
    for (const auto& cabinet : device.entry.cabinets)
        cabinets.append(QJsonObject{
            {QStringLiteral("cid"), Reports::identifier(cabinet->getCid()).value},
            {QStringLiteral("gray_scale_bits"), cabinet->getBase().getGrayScaleSeries()},
            {QStringLiteral("chip_effect_flag"), cabinet->getBase().getChipEffectFlag()},
            {QStringLiteral("effect_mode"), static_cast<int>(cabinet->getDisplayEffectPara().getEffectMode())}});
    return cabinets;
}

CommandResult showWall(const OpenWall& wall)
{
    Reports::Table table({{QStringLiteral("device"), QStringLiteral("device")},
                          {QStringLiteral("type"), QStringLiteral("type")},
                          {QStringLiteral("batch_correction_switch"), QStringLiteral("batch switch")},
                          {{}, QStringLiteral("cabinets")},
                          {{}, QStringLiteral("identifiers")},
                          {QStringLiteral("cabinets"), {}}});
    for (const Service::WallDevice& device : wall.wall) {
        const Model::Device& model = *device.entry.device;
        table.add({QString::fromStdString(model.getBase().getId()),
                   QString::fromStdString(model.getBase().getType()),
                   Reports::flag(model.getConfiguration().getCapacity().getIsSupportBatchCorrectionSwitch(),
                                 QStringLiteral("yes"), QStringLiteral("no")),
                   static_cast<int>(device.entry.cabinets.size()),
                   Calibration::cabinetRanges(cidsOf(device)),
                   {{}, cabinetsOf(device)}});
    }
    return {QStringLiteral("%1\n\n").arg(wall.name) + table.toText(),
            {{QStringLiteral("wall"), wall.name}, {QStringLiteral("devices"), table.toJson()}}};
}

CommandResult checkWall(const OpenWall& wall)
{
    QString error;
    if (!Simulator::SimulatedWall::create(wall.wall, 0, error))
        throw Fault{Fault::Kind::BadData, QStringLiteral("wall document %1").arg(wall.name), {}, error};
    std::size_t cabinets = 0;
    for (const Service::WallDevice& device : wall.wall)
        cabinets += device.entry.cabinets.size();
    return {QStringLiteral("%1: good, %2 devices, %3 cabinets\n")
                .arg(wall.name, QString::number(wall.wall.size()), QString::number(cabinets)),
            {{QStringLiteral("wall"), wall.name},
             {QStringLiteral("devices"), static_cast<int>(wall.wall.size())},
             {QStringLiteral("cabinets"), static_cast<int>(cabinets)}}};
}

void addCommand(CLI::App& parent, Command& chosen, const char* name, const char* description,
                CommandResult (*run)(const OpenWall&))
{
    CLI::App* command = parent.add_subcommand(name, description);
    const auto argument = std::make_shared<WallArgument>();
    addWall(*command, argument->file);
    command->callback(
        [&chosen, argument, run] { chosen = [argument, run](const Output&) { return run(openWall(*argument)); }; });
}

} // namespace

void addWallCommands(CLI::App& app, Command& chosen)
{
    CLI::App* wall = app.add_subcommand("wall", "Look at a wall document");
    wall->require_subcommand(1);
    addCommand(*wall, chosen, "show", "List a wall's devices and cabinets", showWall);
    addCommand(*wall, chosen, "check", "Say whether a wall document is good, and if not where and why", checkWall);
}
