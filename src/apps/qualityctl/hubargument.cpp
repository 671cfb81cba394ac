#include "hubargument.h"

#include <simulator/simulatedhub.h>

namespace {

using Simulator::HubCommands;

Model::LXY pointOf(const QJsonValue& value)
{
    return {value[QLatin1String("lum")].toDouble(),
            value[QLatin1String("cx")].toDouble(),
            value[QLatin1String("cy")].toDouble(),
            {}};
}

Model::ColorGamutInfo gamutOf(const QJsonObject& data)
{
    Model::ColorGamutInfo gamut;
    gamut.rLxy = pointOf(data.value(QLatin1String("rLxy")));
    gamut.gLxy = pointOf(data.value(QLatin1String("gLxy")));
    gamut.bLxy = pointOf(data.value(QLatin1String("bLxy")));
    gamut.wLxy = pointOf(data.value(QLatin1String("wLxy")));
    gamut.name = data.value(QLatin1String("name")).toString().toStdString();
    return gamut;
}

std::unique_ptr<Simulator::SimulatedHub> startSimulated(const Output& output)
{
    QString error;
    auto hub = Simulator::SimulatedHub::start(0, error);
    if (!hub)
        throw Fault{Fault::Kind::Unavailable, QStringLiteral("simulated hub"), {}, error};
    output.note(QStringLiteral("qualityctl: no address: using a simulated hub in this process"));
    return hub;
}

Calibration::HubReader readerOf(const Simulator::SimulatedHub& hub)
{
    return [&hub]() -> Calibration::HubHoldings {
        return {gamutOf(hub.received(HubCommands::MeasuredGamut)), gamutOf(hub.received(HubCommands::TargetGamut))};
    };
}

} // namespace

HubPlaces::HubPlaces(const HubArgument& argument, const Output& output)
    : m_simulated(argument.isSimulated() ? startSimulated(output) : nullptr)
{
    for (const Calibration::HubAddress& address : argument.addresses())
        m_targets.push_back({address.name(), address});
    if (!argument.record.empty()) {
        m_recorder = take(Recording::Recorder::begin(QString::fromStdString(argument.record), Recording::Kind::Hub));
        for (Calibration::HubTarget& target : m_targets)
            target.tap = m_recorder->tap(target.name);
    }
    if (!m_simulated)
        return;
    m_targets.front().address.port = m_simulated->port();
    m_targets.front().name = QStringLiteral("hub, simulated");
    m_targets.front().reader = readerOf(*m_simulated);
}

HubPlaces::~HubPlaces() = default;
