#pragma once

#include <calibration/additivity.h>
#include <calibration/input.h>
#include <calibration/steps.h>

namespace Calibration {

/// What a calibration sends.
struct Content
{
    Measurement measurement; ///< as it was read
    WhiteSource white = WhiteSource::Measured;
    Model::ColorGamutInfo measured; ///< from it, with that white
    Model::ColorGamutInfo target;   ///< with its coefficients
    std::optional<Input> tableFile; ///< the gray table's; none: no table is sent
    Action::GrayTable table;        ///< read from it
    std::optional<Input> binary;    ///< for the receiving cards; none: none is sent
    std::vector<InputDigest> files; ///< that were read, in this order
    QStringList warnings;           ///< what speaks against the figures, a sentence each
};

/// What a user gives for it: gamuts as readMeasured() and readTarget() take them, and names of files; empty ones are
/// left out.
struct ContentNames
{
    QString measured;
    WhiteSource white = WhiteSource::Measured;
    QString target;
    QString table;
    int frequency = 60; ///< refresh frequency, Hz
    QString binary;
    bool force = false; ///< primaries that look swapped are taken all the same
};

/// A measured gamut and a target on its wall.
struct GamutPair
{
    Measurement measurement;
    Model::ColorGamutInfo measured; ///< from it, with the white that is wanted
    Model::ColorGamutInfo target;   ///< without coefficients
    QStringList warnings;           ///< what speaks against the figures, a sentence each
    std::vector<InputDigest> files; ///< that were read
};

/// Reads the gamuts of `names`. Faults: as readMeasured(), requireLabels(), withWhite(), readTarget() and onWall().
Result<GamutPair> readGamuts(const ContentNames& names);

// Gamuts that are sent alone. Luminances must be known. Faults: as readGamuts() and requireLuminance().

/// Reads `names.measured`.
Result<Measurement> readMeasuredToSend(const ContentNames& names);
/// Reads `names.target`, with the luminance that `names.measured` keeps where that is given and the target's is not.
Result<Model::ColorGamutInfo> readTargetToSend(const ContentNames& names);

/// Reads all of it, each input once; the luminances that are sent and written must be known. The target has no
/// coefficients yet. Faults: as readGamuts(), requireLuminance(), readInput() and parseGrayTable().
Result<Content> readContent(const ContentNames& names);

/// The steps that serve a cabinet of the fourth generation, the correction last.
std::vector<Step> stepsOf(const Content& content);

} // namespace Calibration
