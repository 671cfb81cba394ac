#pragma once

#include <suite/colour/primaries.h>

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

} // namespace Charts
