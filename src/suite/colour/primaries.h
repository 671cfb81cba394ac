#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>

namespace Colour {

/// CIE 1931 chromaticity, or where a function says so CIE 1976 u', v'.
struct Chromaticity
{
    double x = 0.0; ///< 0..1; u' in the other plane
    double y = 0.0; ///< above 0 and up to 1 for a real colour; v' in the other plane
};

/// A colour as an instrument gives it.
struct MeasuredColour
{
    Chromaticity xy;        ///< CIE 1931
    double luminance = 0.0; ///< cd/m2
};

/// The chromaticities of an RGB system and of its white.
struct Primaries
{
    Chromaticity red;   ///< of red alone
    Chromaticity green; ///< of green alone
    Chromaticity blue;  ///< of blue alone
    Chromaticity white; ///< of all three at full
};

/// A gamut that a standard gives.
struct StandardGamut
{
    const char* key;     ///< as typed on a command line
    const char* name;    ///< as shown to people
    const char* source;  ///< the standard
    const char* others;  ///< other common names in lower-case letters and digits, with blanks between them
    Primaries primaries; ///< as the standard prints them
};

/// The standards that the suite knows by name, in the order in which they are listed to people.
inline constexpr std::array<StandardGamut, 8> standardGamuts{{
    {"rec709",
     "Rec.709 / sRGB",
     "ITU-R BT.709-6; IEC 61966-2-1",
     "bt709 rec709srgb srgb",
     {{0.640, 0.330}, {0.300, 0.600}, {0.150, 0.060}, {0.3127, 0.3290}}},
    {"bt2020",
     "BT.2020",
     "ITU-R BT.2020-2",
     "rec2020",
     {{0.708, 0.292}, {0.170, 0.797}, {0.131, 0.046}, {0.3127, 0.3290}}},
    {"p3-d65",
     "P3-D65",
     "SMPTE EG 432-1",
     "displayp3 p3",
     {{0.680, 0.320}, {0.265, 0.690}, {0.150, 0.060}, {0.3127, 0.3290}}},
    {"dci-p3", "DCI-P3", "SMPTE RP 431-2", "dcip3", {{0.680, 0.320}, {0.265, 0.690}, {0.150, 0.060}, {0.314, 0.351}}},
    {"adobe-rgb",
     "Adobe RGB (1998)",
     "Adobe RGB (1998) Color Image Encoding",
     "adobergb1998",
     {{0.640, 0.330}, {0.210, 0.710}, {0.150, 0.060}, {0.3127, 0.3290}}},
    {"ntsc1953",
     "NTSC 1953",
     "ITU-R BT.470-6 (system M)",
     "ntsc",
     {{0.670, 0.330}, {0.210, 0.710}, {0.140, 0.080}, {0.310, 0.316}}},
    {"ebu",
     "EBU / PAL",
     "EBU Tech 3213-E; ITU-R BT.470-6",
     "ebupal pal",
     {{0.640, 0.330}, {0.290, 0.600}, {0.150, 0.060}, {0.3127, 0.3290}}},
    {"smpte-c",
     "SMPTE-C",
     "SMPTE RP 145",
     "smptec rp145",
     {{0.630, 0.340}, {0.310, 0.595}, {0.155, 0.070}, {0.3127, 0.3290}}},
}};

/// The shares of red, green and blue in the luminance of white, which add up to 1: the solution of N s = (white's XYZ
/// with Y = 1) where the columns of N are the primaries' XYZ with Y = 1 (SMPTE RP 177). NaN or infinite where a y is
/// zero or the primaries lie on one line.
inline std::array<double, 3> luminanceShares(const Primaries& primaries)
{
    // Per column: X/Y and Z/Y; the row of Y is all ones, so the system has two free rows after subtracting blue's
    // column.
    const auto overY = [](const Chromaticity& c) { return std::array{c.x / c.y, (1.0 - c.x - c.y) / c.y}; };
    const auto r = overY(primaries.red);
    const auto g = overY(primaries.green);
    const auto b = overY(primaries.blue);
    const auto w = overY(primaries.white);
    const double det = (r[0] - b[0]) * (g[1] - b[1]) - (g[0] - b[0]) * (r[1] - b[1]);
    const double red = ((w[0] - b[0]) * (g[1] - b[1]) - (g[0] - b[0]) * (w[1] - b[1])) / det;
    const double green = ((r[0] - b[0]) * (w[1] - b[1]) - (w[0] - b[0]) * (r[1] - b[1])) / det;
    return {red, green, 1.0 - red - green};
}

/// Below this share in the luminance of white a primary counts as missing from it: a channel could not be driven so
/// finely, and at zero the system has no inverse.
inline constexpr double minWhiteShare = 1e-6;

/// Whether the primaries can make their white: each has a share of at least `minWhiteShare` in it. False for a white
/// outside of their triangle or beside its edge, and for what makes no RGB system.
inline bool showsWhite(const Primaries& primaries)
{
    const auto shares = luminanceShares(primaries);
    return std::all_of(shares.begin(), shares.end(), [](double share) { return share >= minWhiteShare; });
}

/// The white that red, green and blue at full drive add up to, each as measured alone: what a measured white should be
/// on a wall that is additive. Nothing for a y that is not above zero, a luminance below zero, no light at all, or a
/// number that is not finite.
inline std::optional<MeasuredColour> sumOfPrimaries(const MeasuredColour& red, const MeasuredColour& green,
                                                    const MeasuredColour& blue)
{
    double luminance = 0.0;
    double ofX = 0.0;
    double ofAll = 0.0; // X + Y + Z
    for (const MeasuredColour& primary : {red, green, blue}) {
        if (!(primary.xy.y > 0.0) || !(primary.luminance >= 0.0))
            return std::nullopt;
        luminance += primary.luminance;
        ofX += primary.luminance * primary.xy.x / primary.xy.y;
        ofAll += primary.luminance / primary.xy.y;
    }
    if (!(luminance > 0.0) || !std::isfinite(luminance) || !std::isfinite(ofX) || !std::isfinite(ofAll))
        return std::nullopt;
    return MeasuredColour{{ofX / ofAll, luminance / ofAll}, luminance};
}

/// Whether the primaries span no triangle, or are not numbers.
inline bool isOnOneLine(const Primaries& p)
{
    constexpr double minTwiceArea = 1e-9;
    const double twiceArea =
        (p.green.x - p.red.x) * (p.blue.y - p.red.y) - (p.blue.x - p.red.x) * (p.green.y - p.red.y);
    return !(std::abs(twiceArea) > minTwiceArea);
}

} // namespace Colour
