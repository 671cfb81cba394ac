#pragma once

#include "output.h"
#include <gateway/client.h>
#include <qualityutility/tool/sender4th/cabinetsenderbase.h>
#include <simulator/simulatedwall.h>

/// Which wall a command works on, which of its cabinets, and how it is simulated.
struct WallArgument
{
    std::string file; ///< empty: what the gateway has, or the built-in example wall; "-": standard input
    std::string transport = "simulated"; ///< or "gateway:HOST:PORT"
    std::vector<std::string> devices;
    std::vector<std::string> cabinets; ///< identifiers and ranges such as 5-9; empty: all
    unsigned int seed = 1;             ///< of the simulated faults
};

/// A wall that has been read and entered into the registry.
struct OpenWall
{
    QString name;
    QString sha256; ///< of the document; empty for the built-in wall and for a gateway's
    Service::Wall wall;
    std::shared_ptr<Gateway::Client> gateway;     ///< null: the wall is to be simulated in this process
    CabinetSenderSpace::CabinetTargetMap targets; ///< what the argument selects
};

/// Where a transport's name leads, nothing for "simulated". Fault: usage.
Common::Result<std::optional<Gateway::Address>> gatewayAddress(const std::string& transport);

/// Connects to the gateway, where one is named, reads the wall's document, enters it into the registry and selects its
/// targets. Throws Fault: unavailable, no input, bad data, usage for a device or cabinet that it does not have.
OpenWall openWall(const WallArgument& argument);

/// The devices of a wall, behind its gateway or simulated in this process, as the transport of all sending while this
/// lives.
class WallDevices
{
public:
    /// Says on stderr where they are, and whether they are simulated. Throws Fault, bad data.
    WallDevices(const OpenWall& wall, unsigned int seed, const Output& output);
    ~WallDevices();
    WallDevices(const WallDevices&) = delete;
    WallDevices& operator=(const WallDevices&) = delete;

    /// Null where cabinets cannot be asked.
    const Action::CabinetReader* reader() const { return m_reader.get(); }
    bool isSimulated() const { return m_isSimulated; }

private:
    std::shared_ptr<const Action::CabinetReader> m_reader;
    bool m_isSimulated = true;
};

/// The wall of a document, simulated. Throws Fault, bad data.
std::shared_ptr<Simulator::SimulatedWall> simulate(const OpenWall& wall, unsigned int seed);
