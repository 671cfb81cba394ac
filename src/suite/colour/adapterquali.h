#pragma once

#include <suite/colour/suite_colour_export.h>

/// CIE 1931 chromaticities of the primaries.
struct ColorGamutPARM
{
    double redX;   ///< x of red, 0..1
    double redY;   ///< y of red; 0 has no answer, nor has it for the others
    double greenX; ///< x of green
    double greenY; ///< y of green
    double blueX;  ///< x of blue
    double blueY;  ///< y of blue
};

/// One colour point: luminance in cd/m2 and CIE 1931 chromaticity.
struct OnePointLxy
{
    double L; ///< cd/m2; not positive where it is unknown
    double x; ///< 0..1
    double y; ///< 0..1; 0 has no answer
};

/// The suite's door to its colour science. Stateless: any thread, nothing is allocated, nothing throws.
///
/// A host's own colour library has more behind this door, which nothing here calls. MRGBToLxy, MCulGammaArrayNum,
/// MCountGammaOriginal, MCountGammaCurve and MCalculatePQ are not bundled: their names and argument types do not say
/// what their tables hold, in which unit and at which scale, and a guess would be numbers that look right.
class SUITE_COLOUR_EXPORT AdapterQuali
{
public:
    /// The nine coefficients that make a wall of `source` primaries and white show `target` content: a 3 x 3 matrix,
    /// row-major, LED channels in rows, content channels in columns, signed Q1.14 (1.0 is 16384). `whiteLumRatio`
    /// (0..1) goes from "white as bright as every channel allows" (0) to "white as bright as the target's white" (1),
    /// never brighter than the first; where an entry would pass the type's limit all nine are dimmed to fit. Nine zeros
    /// for input that has no correction: a y of zero, three points on a line, a number that is not finite, or a white
    /// that cannot be shown, because a primary's share in its luminance is below a millionth (source's and target's
    /// white by their own primaries, the target's by the source's) or rounds to no drive at all. In all others each
    /// row's sum is above zero. docs/colour.md has the derivation.
    void MICCMatrixCoef(short* coefficients, double* whiteLumRatio, const ColorGamutPARM& target,
                        const ColorGamutPARM& source, OnePointLxy targetWhite, OnePointLxy sourceWhite) const;

    /// `first` = area(source) / area(target), `second` = area(source and target) / area(target), CIE 1931 xy,
    /// fractions. Both zero for a triangle without area, a y of zero or a number that is not finite.
    void MICCGamutCoverge(double* first, double* second, const ColorGamutPARM& source,
                          const ColorGamutPARM& target) const;

    /// CIE 1976 colour difference of two points beside the same white, whose luminance is L* 100. NaN where a y or the
    /// white's luminance is zero.
    double MDeltaE76Lxy(OnePointLxy first, OnePointLxy second, OnePointLxy white) const;

    /// The shares of red, green and blue in the luminance of white (0..1, together 1; `white`'s own luminance plays no
    /// part). A share below 0 means a white outside of the primaries' triangle. All zero for input that makes no RGB
    /// system, as for MICCMatrixCoef.
    void MWRGBxy2RGBLratio(const ColorGamutPARM& gamut, OnePointLxy white, double* red, double* green,
                           double* blue) const;
};
