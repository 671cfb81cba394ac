#include "wallserver.h"

#include "interrupt.h"
#include <gateway/server.h>

#include <QEventLoop>
#include <QJsonArray>
#include <QJsonDocument>

namespace {

QJsonObject deviceDocument(const Service::WallDevice& device, const Action::CabinetReader& reader)
{
    const Model::Device& model = *device.entry.device;
    QJsonArray cabinets;
    for (const auto& cabinet : device.entry.cabinets) {
        const auto state = reader.cabinet(model.getBase().getId(), cabinet->getCid());
        cabinets.append(QJsonObject{{QStringLiteral("cid"), QString::number(cabinet->getCid())},
                                    {QStringLiteral("grayScaleSeries"), cabinet->getBase().getGrayScaleSeries()},
                                    {QStringLiteral("chipEffectFlag"), cabinet->getBase().getChipEffectFlag()},
                                    {QStringLiteral("effectMode"), state ? state->mode : 0}});
    }
    return {{QStringLiteral("id"), QString::fromStdString(model.getBase().getId())},
            {QStringLiteral("type"), QString::fromStdString(model.getBase().getType())},
            {QStringLiteral("batchCorrectionSwitch"),
             model.getConfiguration().getCapacity().getIsSupportBatchCorrectionSwitch()},
            {QStringLiteral("cabinets"), cabinets}};
}

/// The wall as it is now: cabinets may have another mode than the document gave them.
QByteArray currentDocument(const Service::Wall& wall, const Action::CabinetReader& reader)
{
    QJsonArray devices;
    for (const Service::WallDevice& device : wall)
        devices.append(deviceDocument(device, reader));
    return QJsonDocument(QJsonObject{{QStringLiteral("devices"), devices}}).toJson(QJsonDocument::Compact);
}

Gateway::Listening listeningOf(const ServeArguments& arguments)
{
    Gateway::Listening listening;
    listening.address = QHostAddress(QString::fromStdString(arguments.address));
    listening.port = static_cast<quint16>(arguments.port);
    return listening;
}

} // namespace

CommandResult serveWall(const ServeArguments& arguments, const Output& output)
{
    const Interrupt interrupt; // before the port is told: who knows it may end this at once
    const OpenWall wall = openWall(arguments.wall);
    const auto simulation = simulate(wall, arguments.wall);
    const Gateway::Listening listening = listeningOf(arguments);
    const auto server = take(Gateway::Server::start(
        {simulation, simulation, [&] { return currentDocument(wall.wall, *simulation); }, true}, listening));
    const QString address = QStringLiteral("%1:%2").arg(listening.address.toString()).arg(server->port());
    const bool isKnown = arguments.port != 0;
    Output{output.json, output.quiet && isKnown}.note(
        QStringLiteral("qualityctl: simulated wall on %1: %2; Ctrl-C ends it").arg(address, wall.name));
    if (!listening.address.isLoopback())
        Output{}.note(QStringLiteral("qualityctl: unauthenticated: whoever reaches %1 is served").arg(address));
    QEventLoop loop;
    loop.exec();
    const qint64 requests = server->requestCount();
    return {QStringLiteral("served %1 requests\n").arg(requests),
            {{QStringLiteral("port"), server->port()}, {QStringLiteral("requests"), requests}}};
}
