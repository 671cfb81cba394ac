#pragma once

#include "output.h"
#include <qualityutility/tool/sender4th/cabinetsenderbase.h>
#include <simulator/simulatedwall.h>

/// Which wall a command works on, which of its cabinets, and how it is simulated.
struct WallArgument
{
    std::string file; ///< empty: the built-in example wall; "-": standard input
    std::vector<std::string> devices;
    std::vector<std::string> cabinets; ///< identifiers and ranges such as 5-9; empty: all
    unsigned int seed = 1;             ///< of the simulated faults
};

/// A wall that has been read and entered into the registry.
struct OpenWall
{
    QString name;
    QString sha256; ///< of the document; empty for the built-in wall
    Service::Wall wall;
    CabinetSenderSpace::CabinetTargetMap targets; ///< what the argument selects
};

/// Reads the wall's document, enters it into the registry and selects its targets. Throws Fault: no input, bad data,
/// usage for a device or cabinet that it does not have.
OpenWall openWall(const WallArgument& argument);

/// The wall simulated in this process, as the transport of all sending while this lives.
class Simulation
{
public:
    /// Says on stderr that the wall is simulated. Throws Fault, bad data.
    Simulation(const OpenWall& wall, unsigned int seed, const Output& output);
    ~Simulation();
    Simulation(const Simulation&) = delete;
    Simulation& operator=(const Simulation&) = delete;

    const Action::CabinetReader& reader() const { return *m_wall; }

private:
    std::shared_ptr<Simulator::SimulatedWall> m_wall;
};
