#pragma once

#include <suite/colour/primaries.h>

#include <array>
#include <vector>

namespace Charts {

/// A spectral colour.
struct SpectralPoint
{
    int nanometres;
    Colour::Chromaticity chromaticity; ///< CIE 1931, 2 degree observer
};

inline constexpr std::size_t spectralPointCount = 59;

/// The spectral locus, 380 to 670 nm in steps of 5 nm; longer waves hardly move. CIE 15, table of chromaticity
/// coordinates of the 1931 observer, four digits.
extern const std::array<SpectralPoint, spectralPointCount> spectralLocus;

/// The spectral locus in steps of 1 nm: natural cubic splines of x and y over the wavelength, which meet the table's
/// points. Splines through every other point miss those between by 0.0025 at most; at half the spacing a cubic spline
/// has a sixteenth of that error, 0.00016.
std::vector<SpectralPoint> smoothLocus();

} // namespace Charts
