#pragma once

#include <calibration/destination.h>

namespace Calibration {

/// How many devices are served at the same time unless a host says otherwise, and at most. Each takes a thread, which
/// waits for its device nearly all the time, and descriptors: a process has no more threads than a quarter of the files
/// that it may open.
inline constexpr int defaultAtOnce = 128;
inline constexpr int maxAtOnce = 256;

/// Takes the record of a device, by its place in the list.
using TakeRecord = std::function<Common::Result<void>(std::size_t device, DeviceRecord record)>;

/// Serves devices of a destination, up to `atOnce` of them at the same time, each on a thread of its own, its steps in
/// order. Where it is one, all are served on this thread, unless the destination would stop its events: then on one
/// other, if the system gives it. `observer` and `take` are called on this thread, one at a time; records come as
/// devices end, in whatever order. Blocks meanwhile: an event loop runs on this thread. Of devices on threads of their
/// own the observer's mayBegin() is asked for the first that is reached, and counts for all.
///
/// Once the observer wants a stop, `take` gives a fault, or the application is told to quit (which one after the other
/// ends the waits instead), no device is begun any more, and those that were are finished. True if all were begun, else
/// false, or the first fault of `take`.
Common::Result<bool> serveDevices(Destination& destination, const std::vector<std::string>& devices, int atOnce,
                                  Observer& observer, const TakeRecord& take);

} // namespace Calibration
