#include "commands.h"
#include "interrupt.h"
#include <gateway/server.h>

#include <CLI/CLI.hpp>
#include <recording/gatewayreplay.h>
#include <recording/hubreplay.h>

#include <QEventLoop>
#include <QJsonArray>

namespace {

struct ReplayArguments
{
    std::string file;
    int port = 0;
};

/// Speaks for a replay until the user ends it.
class ReplayHost
{
public:
    explicit ReplayHost(const Output& output) : m_output(output) {}

    /// For the replay: tells a difference when it comes.
    std::function<void(const QString&)> teller() const
    {
        return [output = m_output](const QString& difference) {
            output.note(QStringLiteral("qualityctl: %1").arg(difference));
        };
    }

    CommandResult run(const QString& name, quint16 port, bool isPortKnown,
                      const std::function<Recording::ReplayState()>& state) const
    {
        Output{m_output.json, m_output.quiet && isPortKnown}.note(
            QStringLiteral("qualityctl: %1 on 127.0.0.1:%2; Ctrl-C ends it").arg(name).arg(port));
        QEventLoop loop;
        loop.exec();
        return resultOf(name, port, state());
    }

private:
    static CommandResult resultOf(const QString& name, quint16 port, const Recording::ReplayState& state)
    {
        CommandResult result;
        result.text = QStringLiteral("asked %1 of %2 recorded requests, %3 differed\n")
                          .arg(state.asked)
                          .arg(state.recorded)
                          .arg(state.differing);
        result.json = {{QStringLiteral("port"), port},
                       {QStringLiteral("recorded"), state.recorded},
                       {QStringLiteral("asked"), state.asked},
                       {QStringLiteral("differing"), state.differing},
                       {QStringLiteral("differences"), QJsonArray::fromStringList(state.differences)}};
        if (state.differing > 0)
            result.error = Fault{Fault::Kind::Difference, name, {}, state.differences.first()};
        return result;
    }

    const Interrupt m_interrupt; // before the port is told: who knows it may end this at once
    Output m_output;
};

CommandResult replayHub(const ReplayArguments& arguments, const Output& output)
{
    const ReplayHost host(output);
    const auto session = take(Recording::readSession(QString::fromStdString(arguments.file), Recording::Kind::Hub));
    const auto replay = take(Recording::HubReplay::start(session, static_cast<quint16>(arguments.port), host.teller()));
    return host.run(session.name, replay->port(), arguments.port != 0, [&] { return replay->state(); });
}

CommandResult replayWall(const ReplayArguments& arguments, const Output& output)
{
    const ReplayHost host(output);
    const auto session = take(Recording::readSession(QString::fromStdString(arguments.file), Recording::Kind::Gateway));
    const auto replay = take(Recording::GatewayReplay::create(session, host.teller()));
    Gateway::Listening listening;
    listening.port = static_cast<quint16>(arguments.port);
    // Simulated, whatever the recorded devices were: nothing stands behind the answers now.
    const auto server = take(Gateway::Server::start(
        {replay, replay->isReadable() ? replay : nullptr, [&] { return replay->wall(); }, true}, listening));
    return host.run(session.name, server->port(), arguments.port != 0, [&] { return replay->state(); });
}

} // namespace

void addReplayCommand(CLI::App& parent, Command& chosen, Recording::Kind kind)
{
    const bool isHub = kind == Recording::Kind::Hub;
    CLI::App* command = parent.add_subcommand(
        "replay", isHub ? "Stand for a hub that --record has recorded, and say where a client differs"
                        : "Stand for a gateway that --record has recorded, and say where a client differs");
    const auto arguments = std::make_shared<ReplayArguments>();
    command->add_option("file", arguments->file, "The recording")->required();
    command->add_option("--port", arguments->port, "Port; 0: the system chooses")
        ->check(CLI::Range(0, 65535))
        ->capture_default_str();
    command->callback([&chosen, arguments, isHub] {
        chosen = [arguments, isHub](const Output& output) {
            return isHub ? replayHub(*arguments, output) : replayWall(*arguments, output);
        };
    });
}
