#include "serving.h"

#include <calibration/crew.h>

#include <algorithm>

namespace Calibration {

namespace {

using Common::Result;

/// One device after the other, on this thread.
Result<bool> serveInTurn(Destination& destination, const std::vector<std::string>& devices, Observer& observer,
                         const TakeRecord& take)
{
    for (std::size_t i = 0; i < devices.size(); ++i) {
        if (observer.isStopWanted())
            return false;
        const auto taken = take(i, destination.serve(devices[i], observer));
        if (!taken)
            return taken.fault();
    }
    return true;
}

/// As many at the same time as the crew has threads.
Result<bool> serveAtOnce(Crew& crew, std::size_t devices, Observer& observer, const TakeRecord& take)
{
    Result<void> taken;
    bool isStopped = false;
    std::size_t begun = 0;
    std::size_t running = 0;
    const auto beginMore = [&] {
        while (taken && !isStopped && running < crew.size() && begun < devices) {
            isStopped = crew.isToldToQuit() || observer.isStopWanted();
            if (isStopped)
                return;
            crew.begin(begun++);
            ++running;
        }
    };
    for (beginMore(); running > 0; beginMore()) {
        Crew::News news = crew.next();
        if (const auto* outcome = std::get_if<Outcome>(&news)) {
            observer.sent(*outcome);
            continue;
        }
        if (std::holds_alternative<Crew::Reached>(news)) {
            crew.allow(observer.mayBegin());
            continue;
        }
        --running;
        auto& [device, record] = std::get<Crew::Served>(news);
        auto kept = take(device, std::move(record)); // after a fault too: another one's record may still fit
        if (taken)
            taken = std::move(kept);
    }
    if (!taken)
        return taken.fault();
    return !isStopped;
}

} // namespace

Result<bool> serveDevices(Destination& destination, const std::vector<std::string>& devices, int atOnce,
                          Observer& observer, const TakeRecord& take)
{
    const std::size_t size = std::min(devices.size(), static_cast<std::size_t>(std::clamp(atOnce, 1, maxAtOnce)));
    if (size > 1 || (size == 1 && destination.blocksEvents())) {
        Crew crew(destination, devices, size);
        if (crew.size() > 0)
            return serveAtOnce(crew, devices.size(), observer, take);
    }
    return serveInTurn(destination, devices, observer, take);
}

} // namespace Calibration
