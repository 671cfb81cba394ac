#pragma once

#include <suite/action/transport.h>

#include <atomic>
#include <functional>

/// Named device actions, sent through a transport and answered through callbacks.
///
/// Every request ends exactly once: by a reply, an error, its timeout, the loss of the transport or the end of the
/// asking thread. It ends on the thread that asked: inside the call when the transport answers there (or cannot take
/// the request), otherwise through that thread's Qt event loop, which must therefore run until then. On a thread that
/// Qt did not start, make a QEventLoop before the first request: without one there are no timers, and a request that is
/// not answered inside the call ends with an error there.
namespace Action {

/// Receives the reply and the identity of the device that the request went to.
using ResultCallback = std::function<void(Parameters, std::string)>;
/// Receives an error text for people.
using ErrorCallback = std::function<void(const QString&)>;

/// What is left of a request in its caller's hands. Letting go of it changes nothing.
class RequestHandle
{
public:
    /// Whether the request has ended. Any thread.
    bool isEnded() const { return m_ended; }

private:
    friend class RequestDesk;
    std::atomic<bool> m_ended{false};
};

/// Sends `action` to a device. The option "timeout" (int) is in seconds; without one, or with one that is not positive,
/// it is 30; the longest is 2^31 - 1 ms, almost 25 days. `acknowledged` and the priority are the transport's to read.
/// Does not block and does not throw.
SUITE_ACTION_EXPORT std::shared_ptr<RequestHandle> put(const std::string& action, const std::string& deviceId,
                                                       const Parameters& params,
                                                       const std::function<void(Parameters, std::string)>& onResult,
                                                       const std::function<void(const QString&)>& onError,
                                                       bool acknowledged, PackagePriority priority);

/// As put, with headers for the transport.
SUITE_ACTION_EXPORT std::shared_ptr<RequestHandle>
post(const std::string& action, const std::string& deviceId, const Parameters& params,
     const std::function<void(Parameters, std::string)>& onResult, const std::function<void(const QString&)>& onError,
     const QMap<QString, QString>& headers, bool acknowledged, PackagePriority priority);

/// Makes `transport` carry all later requests; null shuts sending down. Requests in flight over the earlier one end
/// with an error that begins with "transport lost". Any thread.
SUITE_ACTION_EXPORT void setTransport(std::shared_ptr<Transport> transport);

/// Sets what one unit of the option "timeout" is: a second unless changed, for tests or a simulation in fast motion.
/// Requests on their way keep theirs. Any thread.
SUITE_ACTION_EXPORT void setTimeoutUnit(std::chrono::milliseconds unit);

/// How many answers came late or twice and were dropped, since the process started. Any thread.
SUITE_ACTION_EXPORT std::uint64_t droppedAnswers();

/// How an error text begins when a request ended by its timeout.
inline constexpr const char timeoutErrorPrefix[] = "timeout: ";

} // namespace Action
