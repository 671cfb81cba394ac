#include "interrupt.h"

#include <QCoreApplication>

#include <csignal>

namespace {

constexpr int pollMs = 50;

volatile std::sig_atomic_t s_isRequested = 0;

/// The first signal, whichever, is noted; the next one ends the process.
extern "C" void onSignal(int)
{
    s_isRequested = 1;
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
    return s_isRequested != 0;
}
