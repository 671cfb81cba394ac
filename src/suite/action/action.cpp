#include "action.h"

#include "requestdesk_p.h"

#include <algorithm>
#include <limits>

namespace Action {

namespace {

constexpr int defaultTimeout = 30;

std::atomic<std::chrono::milliseconds::rep> s_timeoutUnit{1000};

std::chrono::milliseconds timeoutOf(const Parameters& params)
{
    const int* given = params.options().find<int>("timeout");
    const int units = given && *given > 0 ? *given : defaultTimeout;
    // Qt's timers count in an int.
    constexpr std::chrono::milliseconds::rep longest = std::numeric_limits<int>::max();
    return std::chrono::milliseconds(std::min(units * s_timeoutUnit.load(), longest));
}

} // namespace

std::shared_ptr<RequestHandle> put(const std::string& action, const std::string& deviceId, const Parameters& params,
                                   const std::function<void(Parameters, std::string)>& onResult,
                                   const std::function<void(const QString&)>& onError, bool acknowledged,
                                   PackagePriority priority)
{
    return RequestDesk::ofCurrentThread().send(
        {Request::Method::Put, action, deviceId, params, {}, acknowledged, priority, timeoutOf(params)}, onResult,
        onError);
}

std::shared_ptr<RequestHandle> post(const std::string& action, const std::string& deviceId, const Parameters& params,
                                    const std::function<void(Parameters, std::string)>& onResult,
                                    const std::function<void(const QString&)>& onError,
                                    const QMap<QString, QString>& headers, bool acknowledged, PackagePriority priority)
{
    return RequestDesk::ofCurrentThread().send(
        {Request::Method::Post, action, deviceId, params, headers, acknowledged, priority, timeoutOf(params)}, onResult,
        onError);
}

void setTimeoutUnit(std::chrono::milliseconds unit)
{
    s_timeoutUnit = unit.count();
}

} // namespace Action
