#pragma once

#include <QTimer>

/// Catches Ctrl-C and termination while it lives. The first one is noted, and makes the waits of this thread end early
/// (the application is told to quit) unless what runs is to be finished; a second one ends the process at once.
class Interrupt
{
public:
    enum class What { EndWaits, FinishRunning };

    explicit Interrupt(What what = What::EndWaits);
    ~Interrupt();
    Interrupt(const Interrupt&) = delete;
    Interrupt& operator=(const Interrupt&) = delete;

    static bool isRequested();

private:
    QTimer m_poll; ///< a signal handler may not call into Qt, so the wish is looked for
};
