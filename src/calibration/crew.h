#pragma once

#include <calibration/destination.h>

#include <condition_variable>
#include <deque>
#include <exception>
#include <mutex>
#include <optional>
#include <thread>
#include <variant>

class QEventLoop;

namespace Calibration {

/// Threads that serve devices, each of them one device after the other. What they tell comes to the thread that made
/// the crew, which alone uses it.
class Crew
{
public:
    /// A device has been served.
    struct Served
    {
        std::size_t device; ///< its place in the list
        DeviceRecord record;
    };
    /// The first device was reached: what has been begun waits for allow().
    struct Reached
    {};
    /// A step was sent, a device served, or the first one reached.
    using News = std::variant<Outcome, Served, Reached>;

    /// As many threads as the system and the limit of open files (a quarter of it) give, at most `size`, which is not
    /// 0. `destination` and `devices` outlive the crew.
    Crew(Destination& destination, const std::vector<std::string>& devices, std::size_t size);
    /// Blocks until the devices that were begun are served.
    ~Crew();
    Crew(const Crew&) = delete;
    Crew& operator=(const Crew&) = delete;

    std::size_t size() const { return m_threads.size(); }
    /// Has the device at this place of the list served.
    void begin(std::size_t device);
    /// Whether what has been begun, and will be, may send. Once, when the first device is reached.
    void allow(bool isAllowed);
    /// The oldest news. Blocks until there is some; an event loop runs meanwhile, unless it is told to quit. Throws
    /// what serving a device threw.
    News next();
    /// Whether event loops of this thread are told to quit, as the application is when it ends. Serves what waits
    /// there.
    bool isToldToQuit();

private:
    class Teller;
    using Told = std::variant<Outcome, Served, Reached, std::exception_ptr>;

    void work();
    std::optional<std::size_t> nextDevice();
    bool waitForLeave();
    void tell(Told told);
    void tellLocked(Told told);

    Destination& m_destination;
    const std::vector<std::string>& m_devices;
    std::vector<std::thread> m_threads;
    bool m_isToldToQuit = false;

    std::mutex m_mutex; ///< guards what follows
    std::condition_variable m_isBegun;
    std::condition_variable m_isTold;
    std::condition_variable m_isDecided;
    std::deque<std::size_t> m_begun;
    std::deque<Told> m_told;
    bool m_isAsked = false;          ///< for the leave to send
    std::optional<bool> m_isAllowed; ///< nothing: not decided yet
    QEventLoop* m_loop = nullptr;    ///< runs in next(); null otherwise
    bool m_isOver = false;           ///< the threads end as soon as nothing is begun
};

} // namespace Calibration
