#include "wallargument.h"

#include <calibration/input.h>
#include <calibration/selection.h>
#include <suite/action/action.h>
#include <suite/action/transportplugin.h>

namespace {

QString subjectOf(const OpenWall& wall)
{
    return QStringLiteral("wall document %1").arg(wall.name);
}

Calibration::Selection selectionOf(const WallArgument& argument)
{
    QStringList cabinets;
    for (const std::string& text : argument.cabinets)
        cabinets << QString::fromStdString(text);
    return {argument.devices, take(Calibration::parseCabinets(cabinets))};
}

Action::Devices devicesOf(const std::shared_ptr<Gateway::Client>& client)
{
    const Gateway::Hello hello = client->hello();
    return {client, hello.isReadable ? client : nullptr, [client] { return client->wall(); }, hello.isSimulated};
}

void openGateway(const Gateway::Address& address, OpenWall& open)
{
    const auto tap = open.recorder
                         ? open.recorder->tap(QStringLiteral("gateway %1:%2").arg(address.host).arg(address.port))
                         : nullptr;
    const auto client = take(Gateway::Client::connect(address, tap));
    open.transport = client->name();
    open.devices = devicesOf(client);
}

void openPlugin(const PluginName& plugin, OpenWall& open)
{
    open.transport = QStringLiteral("plug-in %1").arg(plugin.file);
    if (!plugin.argument.isEmpty())
        open.transport += QLatin1Char('=') + plugin.argument;
    open.devices = take(Action::loadDevices(plugin.file, plugin.argument));
}

OpenWall openTransport(const WallArgument& argument)
{
    OpenWall open;
    const TransportName name = take(parseTransport(argument.transport));
    const auto* address = std::get_if<Gateway::Address>(&name);
    if (argument.seed && name.index() != 0)
        throw Fault{Fault::Kind::Usage, QStringLiteral("--seed"), QStringLiteral("--transport simulated"),
                    QString::fromStdString(argument.transport)};
    if (!argument.record.empty()) {
        if (!address)
            throw Fault{Fault::Kind::Usage, QStringLiteral("--record"), QStringLiteral("--transport gateway:HOST:PORT"),
                        QString::fromStdString(argument.transport)};
        open.recorder =
            take(Recording::Recorder::begin(QString::fromStdString(argument.record), Recording::Kind::Gateway));
    }
    if (address)
        openGateway(*address, open);
    else if (const auto* plugin = std::get_if<PluginName>(&name))
        openPlugin(*plugin, open);
    return open;
}

/// Reads the document, wherever it is.
OpenWall readDocument(const WallArgument& argument)
{
    OpenWall open = openTransport(argument);
    if (open.devices.wall && argument.file.empty()) {
        open.name = open.transport;
        open.wall = take(Service::parseWall(take(open.devices.wall()), open.name));
        return open;
    }
    const bool isBuiltIn = argument.file.empty();
    const auto input = take(Calibration::readInput(isBuiltIn ? QStringLiteral(":/examples/wall.json")
                                                             : QString::fromStdString(argument.file),
                                                   QStringLiteral("wall document"), Service::maxWallBytes));
    open.name = isBuiltIn ? QStringLiteral("built-in example wall") : input.name;
    open.sha256 = isBuiltIn ? QString() : input.sha256;
    open.wall = take(Service::parseWall(input.bytes, open.name));
    return open;
}

} // namespace

Common::Result<TransportName> parseTransport(const std::string& transport)
{
    const QString text = QString::fromStdString(transport);
    const QString kind = text.section(QLatin1Char(':'), 0, 0);
    const QString rest = text.mid(kind.size() + 1);
    if (text == QLatin1String("simulated"))
        return TransportName();
    if (kind == QLatin1String("gateway")) {
        const int colon = rest.lastIndexOf(QLatin1Char(':'));
        bool isNumber = false;
        const ushort port = rest.mid(colon + 1).toUShort(&isNumber);
        if (colon > 0 && isNumber && port > 0)
            return TransportName(Gateway::Address{rest.left(colon), port});
    }
    const QString file = rest.section(QLatin1Char('='), 0, 0);
    if (kind == QLatin1String("plugin") && !file.isEmpty())
        return TransportName(PluginName{file, rest.mid(file.size() + 1)});
    return Fault{
        Fault::Kind::Usage, {}, QStringLiteral("simulated, gateway:HOST:PORT or plugin:FILE[=ARGUMENT]"), text};
}

OpenWall openWall(const WallArgument& argument)
{
    OpenWall open = readDocument(argument);
    std::vector<Service::DeviceEntry> entries;
    for (const Service::WallDevice& device : open.wall)
        entries.push_back(device.entry);
    Service::ModelService::setDevices(entries);
    auto targets = Calibration::selectTargets(open.wall, selectionOf(argument));
    if (!targets && targets.fault().subject.isEmpty()) { // the wall's own, whose name is known here only
        Fault fault = targets.fault();
        fault.subject = subjectOf(open);
        throw fault;
    }
    open.targets = take(std::move(targets));
    return open;
}

std::shared_ptr<Simulator::SimulatedWall> simulate(const OpenWall& wall, const WallArgument& argument)
{
    QString error;
    auto simulation = Simulator::SimulatedWall::create(wall.wall, argument.seed.value_or(1), error);
    if (!simulation)
        throw Fault{Fault::Kind::BadData, subjectOf(wall), {}, error};
    return simulation;
}

WallDevices::WallDevices(const OpenWall& wall, const WallArgument& argument, const Output& output)
    : m_devices(wall.devices)
{
    if (!m_devices.transport) {
        const auto simulation = simulate(wall, argument);
        m_devices = {simulation, simulation, {}, true};
        output.note(QStringLiteral("qualityctl: simulated wall: %1").arg(wall.name));
    } else {
        output.note(
            QStringLiteral("qualityctl: %1, %2 devices")
                .arg(wall.transport, isSimulated() ? QStringLiteral("simulated") : QStringLiteral("not simulated")));
    }
    Action::setTransport(m_devices.transport);
}

WallDevices::~WallDevices()
{
    Action::setTransport(nullptr);
}
