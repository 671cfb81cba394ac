#include "transportplugin.h"

#include <QFileInfo>
#include <QJsonObject>
#include <QPluginLoader>

namespace Action {

namespace {

using Common::Fault;
using Common::Result;

/// One plug-in on its way into the process, with the faults that keep it out.
class Loading
{
public:
    explicit Loading(const QString& file) : m_file(file), m_loader(m_file.absoluteFilePath()) {}

    Result<Devices> open(const QString& argument)
    {
        const auto checked = check();
        if (!checked)
            return checked.fault();
        try {
            return run(argument);
        } catch (const std::exception& fault) {
            return refusal(QStringLiteral("devices"),
                           QStringLiteral("an exception: ") + QString::fromUtf8(fault.what()));
        } catch (...) {
            return refusal(QStringLiteral("devices"), QStringLiteral("an exception of an unknown type"));
        }
    }

private:
    Fault refusal(const QString& expected, const QString& found, const QString& hint = {}) const
    {
        return {Fault::Kind::Unavailable, QStringLiteral("plug-in %1").arg(m_file.filePath()), expected, found, hint};
    }

    /// Looks at the file, none of which runs.
    Result<void> check() const
    {
        const QString wanted = QStringLiteral(SUITE_TRANSPORT_PLUGIN_IID);
        const QString plugin = QStringLiteral("a Qt plug-in of interface %1").arg(wanted);
        if (!m_file.exists())
            return refusal(plugin, QStringLiteral("no such file"));
        if (!m_file.isFile())
            return refusal(plugin, QStringLiteral("what is no regular file"));
        const QString found = m_loader.metaData().value(QLatin1String("IID")).toString();
        if (found.isEmpty())
            return refusal(plugin, QStringLiteral("none: ") + m_loader.errorString());
        if (found == wanted)
            return {};
        const bool isOtherVersion = found.section(QLatin1Char('/'), 0, -2) == wanted.section(QLatin1Char('/'), 0, -2);
        return refusal(plugin, QStringLiteral("one of %1").arg(found),
                       isOtherVersion ? QStringLiteral("build it against this suite") : QString());
    }

    Result<Devices> run(const QString& argument)
    {
        // What it misses is told now, not in the middle of a calibration.
        m_loader.setLoadHints(QLibrary::ResolveAllSymbolsHint | QLibrary::PreventUnloadHint);
        if (!m_loader.load())
            return refusal(QStringLiteral("a plug-in that Qt %1 loads").arg(QLatin1String(qVersion())),
                           m_loader.errorString());
        auto* plugin = qobject_cast<TransportPlugin*>(m_loader.instance());
        if (!plugin)
            return refusal(QStringLiteral("an object with Q_INTERFACES(Action::TransportPlugin)"),
                           QStringLiteral("one without"));
        auto opened = plugin->open(argument);
        if (const auto* text = std::get_if<QString>(&opened))
            return refusal(QStringLiteral("devices"), QStringLiteral("an error: ") + *text);
        auto& devices = std::get<Devices>(opened);
        if (!devices.transport)
            return refusal(QStringLiteral("devices"), QStringLiteral("no transport to them"));
        return std::move(devices);
    }

    const QFileInfo m_file;
    QPluginLoader m_loader; ///< lets go of the library, but does not unload it
};

} // namespace

TransportPlugin::~TransportPlugin() = default;

Result<Devices> loadDevices(const QString& file, const QString& argument)
{
    return Loading(file).open(argument);
}

} // namespace Action
