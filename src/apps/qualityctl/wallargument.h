#pragma once

#include "output.h"
#include <gateway/client.h>
#include <qualityutility/tool/sender4th/cabinetsenderbase.h>
#include <simulator/simulatedwall.h>
#include <suite/action/devices.h>

#include <recording/recorder.h>

/// Which wall a command works on, which of its cabinets, and how it is simulated.
struct WallArgument
{
    std::string file; ///< empty: what the devices tell, or the built-in example wall; "-": standard input
    std::string transport = "simulated"; ///< or what else parseTransport() reads
    std::string record;                  ///< a new file for what goes over a gateway; empty: none
    std::vector<std::string> devices;
    std::vector<std::string> cabinets; ///< identifiers and ranges such as 5-9; empty: all
    std::optional<unsigned int> seed;  ///< of the simulated faults; 1 where none is given
};

/// A wall that has been read and entered into the registry.
struct OpenWall
{
    QString name;
    QString sha256; ///< of the document; empty for the built-in wall and for what devices tell
    Service::Wall wall;
    QString transport;       ///< "gateway 127.0.0.1:9100"; empty: the wall is to be simulated in this process
    Action::Devices devices; ///< what the transport leads to; empty likewise
    std::shared_ptr<Recording::Recorder> recorder; ///< null: nothing is recorded
    CabinetSenderSpace::CabinetTargetMap targets;  ///< what the argument selects
};

/// A plug-in and what it is told.
struct PluginName
{
    QString file;
    QString argument; ///< may be empty
};

/// What a transport's name stands for; nothing for the simulation in this process.
using TransportName = std::variant<std::monostate, Gateway::Address, PluginName>;

/// Reads "simulated", "gateway:HOST:PORT" or "plugin:FILE[=ARGUMENT]". Fault: usage.
Common::Result<TransportName> parseTransport(const std::string& transport);

/// Opens the way to the devices, where one is named, reads the wall's document, enters it into the registry and selects
/// its targets. Throws Fault: unavailable, no input, bad data, usage for a device or cabinet that it does not have.
OpenWall openWall(const WallArgument& argument);

/// The devices of a wall, those it has or simulated ones in this process, as the transport of all sending while this
/// lives.
class WallDevices
{
public:
    /// Says on stderr where they are, and whether they are simulated. Throws Fault, bad data.
    WallDevices(const OpenWall& wall, const WallArgument& argument, const Output& output);
    ~WallDevices();
    WallDevices(const WallDevices&) = delete;
    WallDevices& operator=(const WallDevices&) = delete;

    /// Null where cabinets cannot be asked.
    const Action::CabinetReader* reader() const { return m_devices.reader.get(); }
    bool isSimulated() const { return m_devices.isSimulated; }

private:
    Action::Devices m_devices;
};

/// The wall of a document, simulated. Throws Fault, bad data.
std::shared_ptr<Simulator::SimulatedWall> simulate(const OpenWall& wall, const WallArgument& argument);
