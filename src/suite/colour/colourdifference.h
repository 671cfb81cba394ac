#pragma once

#include <suite/colour/matrix.h>
#include <suite/colour/suite_colour_export.h>

namespace Colour {

/// CIE 1976 L*a*b*.
struct Lab
{
    double lightness = 0.0; ///< L*: 0 is black, 100 the white beside it
    double a = 0.0;         ///< a*: below 0 towards green, above 0 towards red
    double b = 0.0;         ///< b*: below 0 towards blue, above 0 towards yellow
};

/// L*a*b* of an XYZ beside the XYZ of a white (CIE 15, with the exact 216/24389 and 24389/27). White's components must
/// not be zero.
SUITE_COLOUR_EXPORT Lab toLab(const Vector3& xyz, const Vector3& white);

/// CIE 1976: the Euclidean distance in L*a*b*, 0 or more.
SUITE_COLOUR_EXPORT double deltaE76(const Lab& first, const Lab& second);

/// CIEDE2000 with kL = kC = kH = 1 (Sharma, Wu, Dalal, "The CIEDE2000 Color-Difference Formula", 2005), 0 or more.
/// About 1 is just noticeable side by side.
SUITE_COLOUR_EXPORT double ciede2000(const Lab& first, const Lab& second);

} // namespace Colour
