#include "crew.h"

#include <QCoreApplication>
#include <QEventLoop>

#ifdef Q_OS_UNIX
#include <sys/resource.h>
#endif

#include <algorithm>
#include <system_error>
#include <utility>

namespace Calibration {

namespace {

/// How many threads may wait in event loops. Each takes one or two of the process's file descriptors, and Qt ends the
/// process where none is left: so half of them at most.
std::size_t mostThreads(std::size_t wanted)
{
#ifdef Q_OS_UNIX
    rlimit descriptors{};
    if (getrlimit(RLIMIT_NOFILE, &descriptors) == 0)
        return static_cast<std::size_t>(std::clamp<rlim_t>(descriptors.rlim_cur / 4, 1, wanted));
#endif
    return wanted;
}

} // namespace

/// Hands on what a device's steps come to.
class Crew::Teller : public Observer
{
public:
    explicit Teller(Crew& crew) : m_crew(crew) {}
    void sent(const Outcome& outcome) override { m_crew.tell(outcome); }
    bool mayBegin() override { return m_crew.waitForLeave(); }

private:
    Crew& m_crew;
};

Crew::Crew(Destination& destination, const std::vector<std::string>& devices, std::size_t size)
    : m_destination(destination), m_devices(devices)
{
    const std::size_t most = mostThreads(size);
    m_threads.reserve(most);
    try {
        while (m_threads.size() < most)
            m_threads.emplace_back([this] { work(); });
    } catch (const std::system_error&) { // the system gives no more: those that are there do it
    }
}

Crew::~Crew()
{
    {
        const std::lock_guard lock(m_mutex);
        m_isOver = true;
    }
    m_isBegun.notify_all();
    m_isDecided.notify_all();
    for (std::thread& thread : m_threads)
        thread.join();
}

void Crew::begin(std::size_t device)
{
    {
        const std::lock_guard lock(m_mutex);
        m_begun.push_back(device);
    }
    m_isBegun.notify_one();
}

void Crew::allow(bool isAllowed)
{
    {
        const std::lock_guard lock(m_mutex);
        m_isAllowed = isAllowed;
    }
    m_isDecided.notify_all();
}

Crew::News Crew::next()
{
    std::unique_lock lock(m_mutex);
    while (m_told.empty()) {
        if (m_isToldToQuit || !QCoreApplication::instance()) { // loops end at once then, or never
            m_isTold.wait(lock);
            continue;
        }
        QEventLoop loop; // transports and timers of this thread go on
        m_loop = &loop;
        lock.unlock();
        m_isToldToQuit = loop.exec() != 0;
        lock.lock();
        m_loop = nullptr;
    }
    Told told = std::move(m_told.front());
    m_told.pop_front();
    if (auto* outcome = std::get_if<Outcome>(&told))
        return std::move(*outcome);
    if (auto* served = std::get_if<Served>(&told))
        return std::move(*served);
    if (std::holds_alternative<Reached>(told))
        return Reached();
    std::rethrow_exception(std::get<std::exception_ptr>(told));
}

bool Crew::isToldToQuit()
{
    if (!m_isToldToQuit && QCoreApplication::instance()) {
        QEventLoop loop; // Qt tells only those who begin one
        QMetaObject::invokeMethod(&loop, "quit", Qt::QueuedConnection);
        m_isToldToQuit = loop.exec() != 0;
    }
    return m_isToldToQuit;
}

void Crew::work()
{
    Teller teller(*this);
    while (const auto device = nextDevice()) {
        try {
            tell(Served{*device, m_destination.serve(m_devices[*device], teller)});
        } catch (...) {
            tell(std::current_exception());
        }
    }
}

std::optional<std::size_t> Crew::nextDevice()
{
    std::unique_lock lock(m_mutex);
    m_isBegun.wait(lock, [this] { return m_isOver || !m_begun.empty(); });
    if (m_begun.empty())
        return std::nullopt;
    const std::size_t device = m_begun.front();
    m_begun.pop_front();
    return device;
}

bool Crew::waitForLeave()
{
    std::unique_lock lock(m_mutex);
    if (!std::exchange(m_isAsked, true))
        tellLocked(Reached());
    m_isDecided.wait(lock, [this] { return m_isOver || m_isAllowed; });
    return m_isAllowed.value_or(false);
}

void Crew::tell(Told told)
{
    const std::lock_guard lock(m_mutex);
    tellLocked(std::move(told));
}

void Crew::tellLocked(Told told)
{
    m_told.push_back(std::move(told));
    m_isTold.notify_one();
    if (m_loop && m_told.size() == 1) // queued: a quit() that comes before exec() has begun would be lost
        QMetaObject::invokeMethod(m_loop, "quit", Qt::QueuedConnection);
}

} // namespace Calibration
