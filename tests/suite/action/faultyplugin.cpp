// A plug-in that does what its argument says, mostly wrong.

#include <suite/action/transportplugin.h>

#include <QObject>

namespace {

class Confirming : public Action::Transport
{
public:
    void send(const Action::Request& request, const Action::Responder& responder) override
    {
        responder.reply(request.parameters);
    }
};

} // namespace

class FaultyPlugin : public QObject, public Action::TransportPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID SUITE_TRANSPORT_PLUGIN_IID)
    Q_INTERFACES(Action::TransportPlugin)

public:
    FaultyPlugin()
    {
        if (qEnvironmentVariableIsSet("FAULTY_PLUGIN_THROWS"))
            throw std::runtime_error("no licence");
    }

    std::variant<Action::Devices, QString> open(const QString& argument) override
    {
        if (argument == QLatin1String("throws"))
            throw std::runtime_error("no bus");
        if (argument == QLatin1String("throws a number"))
            throw 5;
        if (argument == QLatin1String("gives nothing"))
            return Action::Devices();
        if (argument == QLatin1String("confirms"))
            return Action::Devices{std::make_shared<Confirming>(), nullptr, nullptr, false};
        return QStringLiteral("no device \"%1\"").arg(argument);
    }
};

#include "faultyplugin.moc"
