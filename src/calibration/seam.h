#pragma once

#include <calibration/match.h>

namespace Calibration {

/// How far two groups that show the same content are apart.
struct SeamDifference
{
    double ciede2000 = 0.0; ///< beside the white of the match, with its luminance: brighter and dimmer count
    double duvPrime = 0.0;  ///< CIE 1976 u'v': luminance does not count
};

/// Two groups side by side, computed as of additive LEDs, by content in the order of Colour::judgedContents
/// (judgedName()).
struct Seam
{
    std::array<SeamDifference, Colour::judgedContents.size()> before; ///< both uncorrected
    std::array<SeamDifference, Colour::judgedContents.size()> after;  ///< with the integers as sent

    /// The content of the largest CIEDE2000 before.
    std::size_t worstBefore() const;
    /// The content of the largest CIEDE2000 after.
    std::size_t worstAfter() const;
};

/// The seam between two groups of a match of two or more.
Seam seamOf(const Match& match, std::size_t first, std::size_t second);

} // namespace Calibration
