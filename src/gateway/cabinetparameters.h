#pragma once

#include <suite/action/cabinetreader.h>
#include <suite/action/parameters.h>

namespace Gateway {

/// What a cabinet holds, as it travels; what it never received is left out.
Parameters toParameters(const Action::CabinetState& state);

/// The way back; nothing for parameters without "mode", which stand for a cabinet that is not there. Large parts that
/// equal those of `like` are shared with it.
std::optional<Action::CabinetState> toCabinet(const Parameters& parameters, const Action::CabinetState& like);

/// The one cabinet of a read call's reply, likewise; nothing for another reply.
std::optional<Action::CabinetState> onlyCabinet(const Parameters& reply, const Action::CabinetState& like);

} // namespace Gateway
