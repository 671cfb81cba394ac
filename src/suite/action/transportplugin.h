#pragma once

/// \file
/// Devices that are reached through a plug-in.

#include <suite/action/devices.h>

#include <QtPlugin>

/// How a plug-in's metadata names Action::TransportPlugin. The number is the version: it changes with the class and
/// with what the class hands over.
#define SUITE_TRANSPORT_PLUGIN_IID "suite.action.TransportPlugin/1"

namespace Action {

/// The root object of a Qt plug-in that reaches devices, so that a host works on them without being built anew:
///
///     class Plugin : public QObject, public Action::TransportPlugin
///     {
///         Q_OBJECT
///         Q_PLUGIN_METADATA(IID SUITE_TRANSPORT_PLUGIN_IID)
///         Q_INTERFACES(Action::TransportPlugin)
///
///     public:
///         std::variant<Action::Devices, QString> open(const QString& argument) override;
///     };
///
/// docs/transport-plugins.md tells the whole.
class SUITE_ACTION_EXPORT TransportPlugin
{
public:
    TransportPlugin() = default;
    virtual ~TransportPlugin();
    TransportPlugin(const TransportPlugin&) = delete;
    TransportPlugin& operator=(const TransportPlugin&) = delete;

    /// Makes what reaches the devices that `argument` names, which is the plug-in's own to read and may be empty; or
    /// gives an error text for people, as does what it throws. Called on the thread of loadDevices(), which it blocks;
    /// perhaps several times, for devices that have nothing to do with each other.
    virtual std::variant<Devices, QString> open(const QString& argument) = 0;
};

/// Loads the plug-in `file` and opens the devices that `argument` names. Nothing in the file runs before its metadata
/// has been checked. It stays loaded until the process ends, whoever lets go of the devices. Blocks for the file work
/// and for what the plug-in does; where the plug-in makes QObjects, on the thread that they are to live on. Fault:
/// unavailable, which names the file.
SUITE_ACTION_EXPORT Common::Result<Devices> loadDevices(const QString& file, const QString& argument);

} // namespace Action

Q_DECLARE_INTERFACE(Action::TransportPlugin, SUITE_TRANSPORT_PLUGIN_IID)
