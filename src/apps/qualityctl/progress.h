#pragma once

#include "output.h"
#include <calibration/step.h>

/// Shows a run on stderr and ends it on Ctrl-C: a bar on a terminal, one line per ten percent elsewhere, nothing with
/// --quiet.
class Progress : public Calibration::Observer
{
public:
    explicit Progress(const Output& output);
    ~Progress() override;

    void begin(int steps) override;
    void sent(const Calibration::Outcome& outcome) override;
    bool isStopWanted() override;

private:
    const bool m_isQuiet;
    const bool m_isTerminal;
    int m_total = 1;
    int m_done = 0;
};
