#pragma once

#include <suite/action/cabinetreader.h>
#include <suite/action/transport.h>
#include <suite/service/modelservice.h>

#include <QString>

#include <functional>
#include <optional>
#include <unordered_map>
#include <variant>

namespace Simulator {

using Action::CabinetState;
using Action::GrayTable;

/// The reply of a device, or the text with which it refuses.
using Outcome = std::variant<Parameters, QString>;

/// One device with its cabinets, without time and threads: takes a request, checks it as a real device would, stores
/// what it brings and gives the reply. A refused request changes nothing.
class SimulatedDevice
{
public:
    explicit SimulatedDevice(const Service::DeviceEntry& entry);

    /// Whether a cabinet takes part in a request; those that do not keep what they have and are not named in the reply.
    using CabinetFilter = std::function<bool(unsigned long long cid)>;

    Outcome execute(Action::Request::Method method, const std::string& action, const Parameters& parameters,
                    const CabinetFilter& takesPart);

    /// What a cabinet holds; nothing for a cabinet that the device does not have.
    std::optional<CabinetState> cabinet(unsigned long long cid) const;

private:
    std::unordered_map<unsigned long long, CabinetState> m_cabinets;
};

} // namespace Simulator
