#include "interrupt.h"

#include <QCoreApplication>

#include <csignal>

namespace {

constexpr int pollMs = 50;

volatile std::sig_atomic_t s_isRequested = 0;

extern "C" void onSignal(int signal)
{
    s_isRequested = 1;
    std::signal(signal, SIG_DFL);
}

} // namespace

Interrupt::Interrupt(What what)
{
    std::signal(SIGINT, onSignal);
    std::signal(SIGTERM, onSignal);
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
