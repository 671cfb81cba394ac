#pragma once

#include "options.h"
#include "output.h"
#include <calibration/destination.h>

namespace Simulator {
class SimulatedHub;
}

/// The hub that a command talks to: the given one, or without an address one that is simulated in this process.
class OpenHub
{
public:
    /// Says on stderr that the hub is simulated, when it is. Throws Fault, unavailable.
    OpenHub(const HubArgument& argument, const Output& output);
    ~OpenHub();
    OpenHub(const OpenHub&) = delete;
    OpenHub& operator=(const OpenHub&) = delete;

    Calibration::HubClient& client() { return *m_client; }
    /// "hub, simulated" for a simulated one: its port is of the moment.
    QString name() const;
    /// Asks a simulated hub what it has received; null for another one.
    Calibration::HubReader reader() const;

private:
    std::unique_ptr<Simulator::SimulatedHub> m_simulated;
    std::unique_ptr<Calibration::HubClient> m_client;
};
