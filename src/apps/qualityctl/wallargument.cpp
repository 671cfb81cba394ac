#include "wallargument.h"

#include <calibration/input.h>
#include <calibration/selection.h>
#include <suite/action/action.h>

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

std::shared_ptr<Gateway::Client> connectGateway(const std::string& transport)
{
    const auto address = take(gatewayAddress(transport));
    return address ? take(Gateway::Client::connect(*address)) : nullptr;
}

/// Reads the document, wherever it is.
OpenWall readDocument(const WallArgument& argument)
{
    OpenWall open;
    open.gateway = connectGateway(argument.transport);
    if (open.gateway && argument.file.empty()) {
        open.name = open.gateway->name();
        open.wall = take(Service::parseWall(take(open.gateway->wall()), open.name));
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

Common::Result<std::optional<Gateway::Address>> gatewayAddress(const std::string& transport)
{
    if (transport == "simulated")
        return std::optional<Gateway::Address>();
    const QString text = QString::fromStdString(transport);
    const QString prefix = QStringLiteral("gateway:");
    const int colon = text.lastIndexOf(QLatin1Char(':'));
    bool isNumber = false;
    const ushort port = text.mid(colon + 1).toUShort(&isNumber);
    if (!text.startsWith(prefix) || colon <= prefix.size() || !isNumber || port == 0)
        return Fault{Fault::Kind::Usage, {}, QStringLiteral("simulated or gateway:HOST:PORT"), text};
    return std::optional(Gateway::Address{text.mid(prefix.size(), colon - prefix.size()), port});
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

std::shared_ptr<Simulator::SimulatedWall> simulate(const OpenWall& wall, unsigned int seed)
{
    QString error;
    auto simulation = Simulator::SimulatedWall::create(wall.wall, seed, error);
    if (!simulation)
        throw Fault{Fault::Kind::BadData, subjectOf(wall), {}, error};
    return simulation;
}

WallDevices::WallDevices(const OpenWall& wall, unsigned int seed, const Output& output)
{
    if (!wall.gateway) {
        const auto simulation = simulate(wall, seed);
        m_reader = simulation;
        Action::setTransport(simulation);
        output.note(QStringLiteral("qualityctl: simulated wall: %1").arg(wall.name));
        return;
    }
    const Gateway::Hello hello = wall.gateway->hello();
    if (hello.isReadable)
        m_reader = wall.gateway;
    m_isSimulated = hello.isSimulated;
    Action::setTransport(wall.gateway);
    output.note(
        QStringLiteral("qualityctl: %1, %2 devices")
            .arg(wall.gateway->name(), m_isSimulated ? QStringLiteral("simulated") : QStringLiteral("not simulated")));
}

WallDevices::~WallDevices()
{
    Action::setTransport(nullptr);
}
