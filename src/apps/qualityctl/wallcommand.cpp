#include "commands.h"
#include "wallargument.h"

#include <CLI/CLI.hpp>
#include <simulator/simulatedwall.h>

#include <QJsonArray>
#include <QStringList>

namespace {

/// Identifiers as short text: 1-12, 20.
QString ranges(const Service::DeviceEntry& entry)
{
    std::vector<unsigned long long> cids;
    for (const auto& cabinet : entry.cabinets)
        cids.push_back(cabinet->getCid());
    std::sort(cids.begin(), cids.end());
    QStringList parts;
    for (size_t first = 0; first < cids.size();) {
        size_t last = first;
        while (last + 1 < cids.size() && cids[last + 1] == cids[last] + 1)
            ++last;
        parts << (last == first ? QString::number(cids[first])
                                : QStringLiteral("%1-%2").arg(cids[first]).arg(cids[last]));
        first = last + 1;
    }
    return parts.isEmpty() ? QStringLiteral("none") : parts.join(QStringLiteral(", "));
}

QJsonObject toJson(const Service::WallDevice& device)
{
    QJsonArray cabinets;
    for (const auto& cabinet : device.entry.cabinets) {
        cabinets.append(QJsonObject{
            {QStringLiteral("cid"), cidToJson(cabinet->getCid())},
            {QStringLiteral("gray_scale_bits"), cabinet->getBase().getGrayScaleSeries()},
            {QStringLiteral("chip_effect_flag"), cabinet->getBase().getChipEffectFlag()},
            {QStringLiteral("effect_mode"), static_cast<int>(cabinet->getDisplayEffectPara().getEffectMode())}});
    }
    const Model::Device& model = *device.entry.device;
    return {{QStringLiteral("device"), QString::fromStdString(model.getBase().getId())},
            {QStringLiteral("type"), QString::fromStdString(model.getBase().getType())},
            {QStringLiteral("batch_correction_switch"),
             model.getConfiguration().getCapacity().getIsSupportBatchCorrectionSwitch()},
            {QStringLiteral("cabinets"), cabinets}};
}

CommandResult showWall(const WallArgument& argument)
{
    const OpenWall wall = openWall(argument);
    QList<QStringList> rows{{QStringLiteral("device"), QStringLiteral("type"), QStringLiteral("batch switch"),
                             QStringLiteral("cabinets"), QStringLiteral("identifiers")}};
    QJsonArray devices;
    for (const Service::WallDevice& device : wall.wall) {
        const Model::Device& model = *device.entry.device;
        const bool batch = model.getConfiguration().getCapacity().getIsSupportBatchCorrectionSwitch();
        rows.append(QStringList{QString::fromStdString(model.getBase().getId()),
                                QString::fromStdString(model.getBase().getType()),
                                batch ? QStringLiteral("yes") : QStringLiteral("no"),
                                QString::number(device.entry.cabinets.size()), ranges(device.entry)});
        devices.append(toJson(device));
    }
    return {QStringLiteral("%1\n\n").arg(wall.name) + textTable(rows),
            {{QStringLiteral("wall"), wall.name}, {QStringLiteral("devices"), devices}}};
}

CommandResult checkWall(const WallArgument& argument)
{
    const OpenWall wall = openWall(argument);
    QString error;
    if (!Simulator::SimulatedWall::create(wall.wall, 0, error))
        throw CommandError{ExitCode::BadData, QStringLiteral("wall document %1: %2").arg(wall.name, error)};
    size_t cabinets = 0;
    for (const Service::WallDevice& device : wall.wall)
        cabinets += device.entry.cabinets.size();
    return {QStringLiteral("%1: good, %2 devices, %3 cabinets\n").arg(wall.name).arg(wall.wall.size()).arg(cabinets),
            {{QStringLiteral("wall"), wall.name},
             {QStringLiteral("devices"), static_cast<int>(wall.wall.size())},
             {QStringLiteral("cabinets"), static_cast<int>(cabinets)}}};
}

void addCommand(CLI::App& parent, Command& chosen, const char* name, const char* description,
                CommandResult (*run)(const WallArgument&))
{
    CLI::App* command = parent.add_subcommand(name, description);
    const auto argument = std::make_shared<WallArgument>();
    command->add_option("--wall", argument->file, "Wall document; the built-in example wall without one");
    command->callback([&chosen, argument, run] { chosen = [argument, run](const Output&) { return run(*argument); }; });
}

} // namespace

void addWallCommands(CLI::App& app, Command& chosen)
{
    CLI::App* wall = app.add_subcommand("wall", "Look at a wall document");
    wall->require_subcommand(1);
    addCommand(*wall, chosen, "show", "List a wall's devices and cabinets", showWall);
    addCommand(*wall, chosen, "check", "Say whether a wall document is good, and if not where and why", checkWall);
}
