#include "commands.h"
#include "gamutargument.h"
#include "graytablefile.h"
#include "hostlog.h"
#include "interrupt.h"

#include <CLI/CLI.hpp>
#include <simulator/simulatedhub.h>

#include <QElapsedTimer>
#include <QEventLoop>
#include <QTcpSocket>
#include <qualityutility/tool/sender3th/cabinetsender3th.h>

namespace {

using CabinetSenderSpace::CabinetSender3th;
using CabinetSenderSpace::ClientSession;

constexpr int connectMs = 2000;
constexpr int lookMs = 100;

struct HubArguments
{
    std::string host;
    int port = 0;
    double timeout = 5.0; ///< seconds
    std::string table;
    std::string gamut;
};

QString address(const QString& host, int port)
{
    return QStringLiteral("hub %1:%2").arg(host).arg(port);
}

/// Says why a hub cannot be reached before a session tries: a session only logs it.
void requireReachable(const QString& host, int port)
{
    QTcpSocket probe;
    probe.connectToHost(host, static_cast<quint16>(port));
    if (probe.waitForConnected(connectMs))
        return;
    const QString reason = probe.error() == QAbstractSocket::ConnectionRefusedError
                               ? QStringLiteral("connection refused")
                           : probe.error() == QAbstractSocket::SocketTimeoutError ? QStringLiteral("unreachable")
                                                                                  : probe.errorString();
    throw CommandError{ExitCode::Unavailable, QStringLiteral("%1: %2").arg(address(host, port), reason)};
}

/// A sender with a connected session; without an address, with a simulated hub of its own.
class HubClient
{
public:
    HubClient(const HubArguments& arguments, const Output& output) : m_timeout(arguments.timeout)
    {
        m_host = QString::fromStdString(arguments.host);
        m_port = arguments.port;
        if (m_host.isEmpty() && m_port == 0)
            startSimulated(output);
        else if (m_host.isEmpty())
            m_host = QStringLiteral("127.0.0.1");
        HostLog::install(output.quiet);
        requireReachable(m_host, m_port);
        m_session.setWaits(connectMs, lookMs, qMax(1, static_cast<int>(arguments.timeout * 1000.0 / lookMs)));
        m_session.connectToServer(m_host, static_cast<quint16>(m_port));
        m_sender->attachSession(&m_session);
    }

    ~HubClient()
    {
        m_sender->attachSession(nullptr);
        CabinetSender3th::releaseInstance();
    }
    HubClient(const HubClient&) = delete;
    HubClient& operator=(const HubClient&) = delete;

    QString name() const { return address(m_host, m_port); }
    const Simulator::SimulatedHub* simulated() const { return m_simulated.get(); }

    /// Runs one operation. Gives its seconds; throws CommandError with what the log said when it fails.
    double run(const std::function<int(CabinetSender3th&)>& operation)
    {
        HostLog::takeCriticalLine();
        QElapsedTimer timer;
        timer.start();
        const int result = operation(*m_sender);
        const double seconds = static_cast<double>(timer.nsecsElapsed()) / 1e9;
        if (result == CabinetSenderSpace::ResultSuccess)
            return seconds;
        throw failure(HostLog::takeCriticalLine(), seconds);
    }

private:
    void startSimulated(const Output& output)
    {
        QString error;
        m_simulated = Simulator::SimulatedHub::start(0, error);
        if (!m_simulated)
            throw CommandError{ExitCode::Unavailable, QStringLiteral("simulated hub: %1").arg(error)};
        m_host = QStringLiteral("127.0.0.1");
        m_port = m_simulated->port();
        output.note(QStringLiteral("qualityctl: no address: using a simulated hub in this process"));
    }

    CommandError failure(const QString& line, double seconds) const
    {
        if (line.startsWith(QLatin1String("result parse failed!")))
            return {ExitCode::Protocol,
                    QStringLiteral("%1: the reply is not the hub's protocol: %2").arg(name(), line)};
        if (line.startsWith(QLatin1String("result error!")))
            return {ExitCode::Unavailable, QStringLiteral("%1: the hub answered with error number %2")
                                               .arg(name(), line.section(QLatin1Char(' '), -1))};
        if (seconds < m_timeout * 0.9)
            return {ExitCode::Unavailable,
                    QStringLiteral("%1: the connection was closed before the reply").arg(name())};
        return {ExitCode::Timeout, QStringLiteral("%1: no reply within %2 s").arg(name()).arg(m_timeout)};
    }

    double m_timeout;
    QString m_host;
    int m_port = 0;
    std::unique_ptr<Simulator::SimulatedHub> m_simulated;
    ClientSession m_session;
    CabinetSender3th* m_sender = CabinetSender3th::getInstance();
};

CommandResult done(const HubClient& hub, const QString& what, double seconds, QJsonObject json = {})
{
    json.insert(QStringLiteral("hub"), hub.name());
    json.insert(QStringLiteral("seconds"), seconds);
    return {QStringLiteral("%1: %2, %3 s\n").arg(hub.name(), what).arg(seconds, 0, 'f', 4), json};
}

CommandResult queryFineGray(const HubArguments& arguments, const Output& output, const QString& what)
{
    HubClient hub(arguments, output);
    int level = 0;
    int mode = 0;
    const double seconds =
        hub.run([&](CabinetSender3th& sender) { return sender.getFineGrayConfig({}, 0, level, mode); });
    return done(hub, what.arg(level).arg(mode), seconds,
                {{QStringLiteral("level"), level}, {QStringLiteral("mode"), mode}});
}

CommandResult ping(const HubArguments& arguments, const Output& output)
{
    return queryFineGray(arguments, output, QStringLiteral("alive (level %1, mode %2)"));
}

CommandResult fineGray(const HubArguments& arguments, const Output& output)
{
    return queryFineGray(arguments, output, QStringLiteral("level %1, mode %2"));
}

CommandResult sendGray(const HubArguments& arguments, const Output& output)
{
    const GrayTableFile table = readGrayTable(QString::fromStdString(arguments.table));
    HubClient hub(arguments, output);
    const double seconds = hub.run([&](CabinetSender3th& sender) {
        return sender.setGrayScaleTable({}, table.red, table.green, table.blue, table.magnitude, 0);
    });
    return done(hub, QStringLiteral("took a gray table of %1 levels").arg(table.red.size()), seconds,
                {{QStringLiteral("gray_levels"), table.red.size()}});
}

CommandResult sendGamut(const HubArguments& arguments, const Output& output)
{
    const auto gamut = parseGamut(arguments.gamut);
    HubClient hub(arguments, output);
    const double seconds = hub.run([&](CabinetSender3th& sender) { return sender.uploadNiccData({}, gamut); });
    return done(hub, QStringLiteral("took the target gamut %1").arg(QString::fromStdString(gamut.name)), seconds);
}

CommandResult sendMeasure(const HubArguments& arguments, const Output& output)
{
    const auto gamut = parseGamut(arguments.gamut);
    HubClient hub(arguments, output);
    const double seconds = hub.run([&](CabinetSender3th& sender) { return sender.uploadNiccMeasure({}, gamut); });
    return done(hub, QStringLiteral("took the measured gamut"), seconds);
}

CommandResult serve(const HubArguments& arguments, const Output& output)
{
    QString error;
    const auto hub = Simulator::SimulatedHub::start(static_cast<quint16>(arguments.port), error);
    if (!hub)
        throw CommandError{ExitCode::Unavailable, QStringLiteral("hub serve: %1").arg(error)};
    output.note(QStringLiteral("qualityctl: simulated hub on 127.0.0.1:%1; Ctrl-C ends it").arg(hub->port()));
    const Interrupt interrupt;
    QEventLoop loop;
    loop.exec();
    const int requests = hub->requests().size();
    return {QStringLiteral("served %1 requests\n").arg(requests), {{QStringLiteral("requests"), requests}}};
}

using Run = CommandResult (*)(const HubArguments&, const Output&);

/// Adds a command that talks to a hub; the options of what it sends are the caller's to add.
CLI::App* addCommand(CLI::App& parent, Command& chosen, const char* name, const char* description, Run run,
                     const std::shared_ptr<HubArguments>& arguments)
{
    CLI::App* command = parent.add_subcommand(name, description);
    command->add_option("--host", arguments->host, "The hub's host; with --port alone this machine");
    command->add_option("--port", arguments->port, "The hub's port")->check(CLI::Range(0, 65535));
    command->add_option("--timeout", arguments->timeout, "Longest wait for a reply, in seconds")
        ->check(CLI::PositiveNumber)
        ->capture_default_str();
    command->callback([&chosen, arguments, run] {
        if (!arguments->host.empty() && arguments->port == 0)
            throw CLI::ValidationError("--host", "needs --port");
        chosen = [arguments, run](const Output& output) { return run(*arguments, output); };
    });
    return command;
}

} // namespace

void addHubCommands(CLI::App& app, Command& chosen)
{
    CLI::App* hub = app.add_subcommand("hub", "Talk to the message hub of third-generation cabinets");
    hub->require_subcommand(1);
    const auto fresh = [] { return std::make_shared<HubArguments>(); };

    const auto served = fresh();
    CLI::App* server = hub->add_subcommand("serve", "Run the simulated hub, for other clients too");
    server->add_option("--port", served->port, "Port; 0: the system chooses")
        ->check(CLI::Range(0, 65535))
        ->capture_default_str();
    server->callback([&chosen, served] { chosen = [served](const Output& output) { return serve(*served, output); }; });

    addCommand(*hub, chosen, "ping", "Ask whether the hub answers", ping, fresh());
    addCommand(*hub, chosen, "fine-gray", "Ask for the fine-gray configuration", fineGray, fresh());
    CLI::App* send = hub->add_subcommand("send", "Send picture-quality data through the hub");
    send->require_subcommand(1);
    auto arguments = fresh();
    addCommand(*send, chosen, "gray", "Send a gray-scale table", sendGray, arguments)
        ->add_option("--table", arguments->table, "Gray table: text or CSV with red, green, blue, magnitude (0..255)")
        ->required();
    constexpr auto gamutHelp = "Gamut: a standard name, a JSON file, or rx,ry:gx,gy:bx,by:wx,wy[:cd_m2]";
    arguments = fresh();
    addCommand(*send, chosen, "gamut", "Send the target gamut", sendGamut, arguments)
        ->add_option("--gamut", arguments->gamut, gamutHelp)
        ->required();
    arguments = fresh();
    addCommand(*send, chosen, "measure", "Send the measured gamut", sendMeasure, arguments)
        ->add_option("--gamut", arguments->gamut, gamutHelp)
        ->required();
}
