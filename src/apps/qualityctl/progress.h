#pragma once

#include "output.h"

/// Progress on stderr: a bar on a terminal, one line per ten percent elsewhere, nothing with --quiet.
class Progress
{
public:
    Progress(int total, const Output& output);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /// One more is done; `what` names it.
    void advance(const QString& what);

private:
    const int m_total;
    const bool m_isQuiet;
    const bool m_isTerminal;
    int m_done = 0;
};
