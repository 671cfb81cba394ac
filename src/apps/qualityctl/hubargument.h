#pragma once

#include "options.h"
#include "output.h"
#include <calibration/destination.h>

#include <recording/recorder.h>

namespace Simulator {
class SimulatedHub;
}

/// The hubs that a command talks to: the given ones, or without an address one that is simulated in this process.
class HubPlaces
{
public:
    /// Says on stderr that the hub is simulated, when it is. Begins the recording; connects to none. Throws
    /// Fault: unavailable, cannot create.
    HubPlaces(const HubArgument& argument, const Output& output);
    ~HubPlaces();
    HubPlaces(const HubPlaces&) = delete;
    HubPlaces& operator=(const HubPlaces&) = delete;

    /// In the order in which they were given. A simulated one is "hub, simulated": its port is of the moment; and it
    /// can be asked what it has received. They end with this.
    const std::vector<Calibration::HubTarget>& targets() const { return m_targets; }
    /// Null where nothing is recorded.
    const Recording::Recorder* recorder() const { return m_recorder.get(); }

private:
    std::unique_ptr<Simulator::SimulatedHub> m_simulated;
    std::shared_ptr<Recording::Recorder> m_recorder;
    std::vector<Calibration::HubTarget> m_targets;
};
