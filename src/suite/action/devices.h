#pragma once

#include <suite/action/cabinetreader.h>
#include <suite/action/transport.h>
#include <suite/common/result.h>

#include <functional>

namespace Action {

/// Devices, wherever they are, as a host works on them.
struct Devices
{
    std::shared_ptr<Transport> transport;        ///< the way to them; never null where devices are handed over
    std::shared_ptr<const CabinetReader> reader; ///< null: cabinets cannot be asked
    /// The wall document of what is there now. Null: nothing here knows it. May block for the time of a request, does
    /// not throw; called by one thread at a time.
    std::function<Common::Result<QByteArray>()> wall;
    bool isSimulated = false; ///< whether no real wall changes
};

} // namespace Action
