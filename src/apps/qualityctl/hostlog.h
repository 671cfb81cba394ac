#pragma once

/// The host's ends of both logs, Qt's and the suite's spdlog logger: warnings and worse go to stderr, marked "log:".
namespace HostLog {

/// From now on; `quiet` drops them instead.
void install(bool quiet);

} // namespace HostLog
