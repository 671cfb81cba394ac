#pragma once

#include <suite/colour/correction.h>

namespace Colour {

/// The contents by which a correction is judged, in the order of all figures: the corners, full red, green, blue,
/// yellow, cyan, magenta and white, as linear RGB; then grays of these shares of white's luminance.
inline constexpr std::array<Vector3, 11> judgedContents{{{1, 0, 0},
                                                         {0, 1, 0},
                                                         {0, 0, 1},
                                                         {1, 1, 0},
                                                         {0, 1, 1},
                                                         {1, 0, 1},
                                                         {1, 1, 1},
                                                         {0.75, 0.75, 0.75},
                                                         {0.5, 0.5, 0.5},
                                                         {0.25, 0.25, 0.25},
                                                         {0.1, 0.1, 0.1}}};
/// White's place among them.
inline constexpr std::size_t judgedWhite = 6;

/// One content, as wanted, as a wall could show it and as it does. Each XYZ is relative to its own white (Y = 1), so
/// that a wall that is only dimmer differs by nothing.
struct Corner
{
    Vector3 target{};    ///< XYZ that the content asks for
    Vector3 reachable{}; ///< XYZ of the exact correction, its drive limited to what the LEDs can do
    Vector3 shown{};     ///< XYZ of the coefficients
    /// What the exact correction asks of red, green and blue (1.0 is full scale). The LEDs stop at 0 and 1.
    Vector3 exactDrive{};
    double outOfReach = 0.0; ///< CIEDE2000 of `reachable` from `target`: the LEDs' part, which no coefficients mend
    double notHeld = 0.0;    ///< CIEDE2000 of `shown` from `reachable`: the coefficients' part
    double difference = 0.0; ///< CIEDE2000 of `shown` from `target`
};

/// All judged contents of a correction.
struct Corners
{
    double whiteKept = 0.0;                              ///< luminance of white over the source's luminance of white
    std::array<Corner, judgedContents.size()> corners{}; ///< in the order of judgedContents
};

/// What coefficients make of the judged contents of a target on a wall of the primaries `source`, which limits each
/// channel to 0..full scale. The exact correction is as bright in white as the coefficients are, or as bright as it can
/// be where that is less. L*a*b* is taken beside the target's white. Nothing where there is no correction
/// (correctionMatrix()) or where white comes out without light.
SUITE_COLOUR_EXPORT std::optional<Corners> corners(const Primaries& source, const Primaries& target,
                                                   const Coefficients& coefficients);

/// CIE 1931 chromaticity of an XYZ; nothing for one without light.
SUITE_COLOUR_EXPORT std::optional<Chromaticity> chromaticity(const Vector3& xyz);

/// The triangle and the white that are shown; nothing where a primary gives no light.
SUITE_COLOUR_EXPORT std::optional<Primaries> shownPrimaries(const Corners& corners);

} // namespace Colour
