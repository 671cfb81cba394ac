#include "commands.h"
#include "options.h"
#include "wallargument.h"
#include "wallserver.h"
#include <calibration/selection.h>
#include <calibration/steps.h>
#include <reports/table.h>

#include <CLI/CLI.hpp>

#include <QHostAddress>

namespace {

std::vector<unsigned long long> cidsOf(const Service::WallDevice& device)
{
    std::vector<unsigned long long> cids;
    for (const auto& cabinet : device.entry.cabinets)
        cids.push_back(cabinet->getCid());
    return cids;
}

/// What a cabinet holds; null where it was not read.
QJsonValue heldBy(const std::optional<Action::CabinetState>& state)
{
    if (!state)
        return {};
    QJsonArray coefficients;
    for (const unsigned short bits : state->coefficients)
        coefficients.append(static_cast<qint16>(bits));
    const auto gamutName = [](const std::shared_ptr<const Model::ColorGamutInfo>& gamut) {
        return gamut ? QJsonValue(QString::fromStdString(gamut->name)) : QJsonValue();
    };
    return QJsonObject{
        {QStringLiteral("effect_mode"), state->mode},
        {QStringLiteral("coefficients"), coefficients},
        {QStringLiteral("gray_levels"), state->grayTable ? static_cast<int>(state->grayTable->red.size()) : 0},
        {QStringLiteral("target"), gamutName(state->targetGamut)},
        {QStringLiteral("binary_bytes"), state->binary ? state->binary->size() : 0}};
}

QJsonArray cabinetsOf(const Service::WallDevice& device, const Action::CabinetReader* reader)
{
    QJsonArray cabinets;
    for (const auto& cabinet : device.entry.cabinets) {
        QJsonObject row{
            {QStringLiteral("cid"), Reports::identifier(cabinet->getCid()).value},
            {QStringLiteral("gray_scale_bits"), cabinet->getBase().getGrayScaleSeries()},
            {QStringLiteral("chip_effect_flag"), cabinet->getBase().getChipEffectFlag()},
            {QStringLiteral("effect_mode"), static_cast<int>(cabinet->getDisplayEffectPara().getEffectMode())}};
        if (reader)
            row.insert(QStringLiteral("held"),
                       heldBy(reader->cabinet(device.entry.device->getBase().getId(), cabinet->getCid())));
        cabinets.append(row);
    }
    return cabinets;
}

/// What the read cabinets hold, in a word for each kind.
QString correctionOf(const QJsonArray& cabinets)
{
    QStringList kinds;
    for (const QJsonValue cabinet : cabinets) {
        const QJsonValue held = cabinet[QLatin1String("held")];
        QString kind = QStringLiteral("not read");
        if (held.isObject())
            kind = (held[QLatin1String("effect_mode")].toInt() & Calibration::gamutCorrectionBit) != 0
                       ? QStringLiteral("on")
                       : QStringLiteral("off");
        if (!kinds.contains(kind))
            kinds << kind;
    }
    return kinds.join(QStringLiteral(", "));
}

CommandResult showWall(const OpenWall& wall)
{
    Reports::Table table({{QStringLiteral("device"), QStringLiteral("device")},
                          {QStringLiteral("type"), QStringLiteral("type")},
                          {QStringLiteral("batch_correction_switch"), QStringLiteral("batch switch")},
                          {{}, QStringLiteral("cabinets")},
                          {{}, QStringLiteral("identifiers")},
                          {{}, QStringLiteral("correction")},
                          {QStringLiteral("cabinets"), {}}});
    for (const Service::WallDevice& device : wall.wall) {
        const QJsonArray cabinets = cabinetsOf(device, wall.devices.reader.get());
        const Model::Device& model = *device.entry.device;
        table.add({QString::fromStdString(model.getBase().getId()),
                   QString::fromStdString(model.getBase().getType()),
                   Reports::flag(model.getConfiguration().getCapacity().getIsSupportBatchCorrectionSwitch(),
                                 QStringLiteral("yes"), QStringLiteral("no")),
                   static_cast<int>(device.entry.cabinets.size()),
                   Calibration::cabinetRanges(cidsOf(device)),
                   correctionOf(cabinets),
                   {{}, cabinets}});
    }
    return {QStringLiteral("%1\n\n").arg(wall.name) + table.toText(),
            {{QStringLiteral("wall"), wall.name}, {QStringLiteral("devices"), table.toJson()}}};
}

CommandResult checkWall(const OpenWall& wall)
{
    simulate(wall, {});
    std::size_t cabinets = 0;
    for (const Service::WallDevice& device : wall.wall)
        cabinets += device.entry.cabinets.size();
    return {QStringLiteral("%1: good, %2 devices, %3 cabinets\n")
                .arg(wall.name, QString::number(wall.wall.size()), QString::number(cabinets)),
            {{QStringLiteral("wall"), wall.name},
             {QStringLiteral("devices"), static_cast<int>(wall.wall.size())},
             {QStringLiteral("cabinets"), static_cast<int>(cabinets)}}};
}

CLI::App* addCommand(CLI::App& parent, Command& chosen, const char* name, const char* description,
                     CommandResult (*run)(const OpenWall&), const std::shared_ptr<WallArgument>& argument)
{
    CLI::App* command = parent.add_subcommand(name, description);
    addWall(*command, argument->file);
    command->callback([&chosen, argument, run] {
        chosen = [argument, run](const Output&) {
            const OpenWall open = openWall(*argument);
            return withRecording(run(open), open.recorder.get());
        };
    });
    return command;
}

void addServe(CLI::App& wall, Command& chosen)
{
    const auto arguments = std::make_shared<ServeArguments>();
    CLI::App* command = wall.add_subcommand("serve", "Simulate a wall as a device gateway, for other processes");
    addWall(*command, arguments->wall.file);
    command->add_option("--seed", arguments->wall.seed, "Seed of the simulated faults; 1 without it");
    command->add_option("--port", arguments->port, "Port; 0: the system chooses")
        ->check(CLI::Range(0, 65535))
        ->capture_default_str();
    command->add_option("--listen", arguments->address, "Address to listen on; anyone who reaches it is served")
        ->check([](const std::string& text) {
            return QHostAddress(QString::fromStdString(text)).isNull() ? "expected an address, found " + text
                                                                       : std::string();
        })
        ->capture_default_str();
    command->callback(
        [&chosen, arguments] { chosen = [arguments](const Output& output) { return serveWall(*arguments, output); }; });
}

} // namespace

void addWallCommands(CLI::App& app, Command& chosen)
{
    CLI::App* wall = app.add_subcommand("wall", "Look at a wall document");
    wall->require_subcommand(1);
    auto argument = std::make_shared<WallArgument>();
    addTransport(*addCommand(*wall, chosen, "show", "List a wall's devices and cabinets", showWall, argument),
                 *argument);
    argument = std::make_shared<WallArgument>();
    addCommand(*wall, chosen, "check", "Say whether a wall document is good, and if not where and why", checkWall,
               argument);
    addServe(*wall, chosen);
    addReplayCommand(*wall, chosen, Recording::Kind::Gateway);
}
