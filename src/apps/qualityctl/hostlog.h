#pragma once

#include <QString>

/// The host's ends of both logs: Qt's and the suite's spdlog logger. Lines go to stderr, marked "log:"; the text behind
/// the last
/// "... error:" line of the suite's logger is kept, because the library's result says only that a device failed.
namespace HostLog {

void install(bool quiet);

/// Takes the last error text; empty when there was none since the last call.
QString takeErrorText();

/// Takes the last critical line of Qt's log; empty when there was none since the last call.
QString takeCriticalLine();

} // namespace HostLog
