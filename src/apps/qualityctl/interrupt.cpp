#include "interrupt.h"

#include <QCoreApplication>

#include <atomic>
#include <csignal>

namespace {

constexpr int pollMs = 50;

// A signal comes to any thread; the one that looks is another.
std::atomic<bool> s_isRequested{false};
static_assert(std::atomic<bool>::is_always_lock_free);

/// The first signal, whichever, is noted; the next one ends the process.
extern "C" void onSignal(int)
{
    s_isRequested = true;
    std::signal(SIGINT, SIG_DFL);
    std::signal(SIGTERM, SIG_DFL);
}

/// Installs a handler, but not over one that ignores: a shell's background job is not interrupted.
void handle(int signal)
{
    if (std::signal(signal, onSignal) == SIG_IGN)
        std::signal(signal, SIG_IGN);
}

} // namespace

Interrupt::Interrupt(What what)
{
    handle(SIGINT);
    handle(SIGTERM);
    QObject::connect(&m_poll, &QTimer::timeout, [] {
        if (isRequested())
            QCoreApplication::quit();
    });
    if (what == What::EndWaits)
        m_poll.start(pollMs);
}

Interrupt::~Interrupt()
{
    std::signal(SIGINT, SIG_DFL);
    std::signal(SIGTERM, SIG_DFL);
}

bool Interrupt::isRequested()
{
    return s_isRequested;
}
