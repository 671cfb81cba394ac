#pragma once

#include "output.h"
#include <charts/chart.h>

#include <QString>

#include <string>

/// The file of a chart, SVG or PNG by its suffix.
class ChartFile
{
public:
    /// Throws Fault: usage for another suffix; cannot create for a file that is there, without `force`.
    ChartFile(const std::string& path, bool force);

    /// Throws Fault: cannot create; input/output.
    CommandResult write(const Charts::Chart& chart) const;

private:
    QString m_path;
};
