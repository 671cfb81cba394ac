#include "wallargument.h"

#include <calibration/input.h>
#include <calibration/selection.h>
#include <suite/action/action.h>

namespace {

QString subjectOf(const OpenWall& wall)
{
    return QStringLiteral("wall document %1").arg(wall.name);
}

std::shared_ptr<Simulator::SimulatedWall> simulate(const OpenWall& wall, unsigned int seed)
{
    QString error;
    auto simulation = Simulator::SimulatedWall::create(wall.wall, seed, error);
    if (!simulation)
        throw Fault{Fault::Kind::BadData, subjectOf(wall), {}, error};
    return simulation;
}

Calibration::Selection selectionOf(const WallArgument& argument)
{
    QStringList cabinets;
    for (const std::string& text : argument.cabinets)
        cabinets << QString::fromStdString(text);
    return {argument.devices, take(Calibration::parseCabinets(cabinets))};
}

} // namespace

OpenWall openWall(const WallArgument& argument)
{
    const bool isBuiltIn = argument.file.empty();
    const auto input = take(Calibration::readInput(isBuiltIn ? QStringLiteral(":/examples/wall.json")
                                                             : QString::fromStdString(argument.file),
                                                   QStringLiteral("wall document"), Service::maxWallBytes));
    OpenWall open;
    open.name = isBuiltIn ? QStringLiteral("built-in example wall") : input.name;
    open.sha256 = isBuiltIn ? QString() : input.sha256;
    open.wall = take(Service::parseWall(input.bytes, open.name));
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

Simulation::Simulation(const OpenWall& wall, unsigned int seed, const Output& output) : m_wall(simulate(wall, seed))
{
    output.note(QStringLiteral("qualityctl: simulated wall: %1").arg(wall.name));
    Action::setTransport(m_wall);
}

Simulation::~Simulation()
{
    Action::setTransport(nullptr);
}
