#pragma once

#include <calibration/input.h>
#include <calibration/steps.h>

#include <QStringList>

namespace Calibration {

/// What a calibration sends.
struct Content
{
    Model::ColorGamutInfo measured;
    Model::ColorGamutInfo target;   ///< with its coefficients
    std::optional<Input> tableFile; ///< the gray table's; none: no table is sent
    Action::GrayTable table;        ///< read from it
    std::optional<Input> binary;    ///< for the receiving cards; none: none is sent
};

/// What a user gives for it: gamuts as readGamut() takes them, and names of files; empty ones are left out.
struct ContentNames
{
    QString measured;
    QString target;
    QString table;
    int frequency = 60; ///< refresh frequency, Hz
    QString binary;

    /// Those that are given.
    QStringList all() const;
};

/// Reads all of it, each input once. The target has no coefficients yet. Faults: as readGamut(), readInput() and
/// parseGrayTable().
Result<Content> readContent(const ContentNames& names);

/// The steps that serve a cabinet of the fourth generation, the correction last.
std::vector<Step> stepsOf(const Content& content);

} // namespace Calibration
