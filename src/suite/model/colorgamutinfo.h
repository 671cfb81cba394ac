#pragma once

#include <suite/model/lxy.h>

#include <vector>

namespace Model {

/// Coefficients of a gamut correction: a 3 x 3 matrix, row-major, rows are LED channels and columns content channels,
/// in signed Q1.14 (1.0 is 16384) kept as the two's-complement bits. The default is the identity: nothing is corrected.
class GamutCoeff
{
public:
    const std::vector<unsigned short>& getCoeffs() const { return m_coeffs; }
    void setCoeffs(const std::vector<unsigned short>& coeffs) { m_coeffs = coeffs; }

    friend bool operator==(const GamutCoeff& a, const GamutCoeff& b) { return a.m_coeffs == b.m_coeffs; }
    friend bool operator!=(const GamutCoeff& a, const GamutCoeff& b) { return !(a == b); }

private:
    std::vector<unsigned short> m_coeffs{16384, 0, 0, 0, 16384, 0, 0, 0, 16384};
};

/// A colour gamut: its primaries and white point, its name, and how it relates to another gamut. By default nothing is
/// measured: all points are zero.
struct ColorGamutInfo
{
    LXY rLxy;
    LXY gLxy;
    LXY bLxy;
    LXY wLxy;
    std::string name;      ///< UTF-8
    double cover = 0.0;    ///< share of the target that can be shown, 0..1
    double orgCover = 0.0; ///< area of the source gamut over the target's area, 0 or more
    GamutCoeff coeff;

    friend bool operator==(const ColorGamutInfo& a, const ColorGamutInfo& b)
    {
        return std::tie(a.rLxy, a.gLxy, a.bLxy, a.wLxy, a.name, a.cover, a.orgCover, a.coeff) ==
               std::tie(b.rLxy, b.gLxy, b.bLxy, b.wLxy, b.name, b.cover, b.orgCover, b.coeff);
    }
    friend bool operator!=(const ColorGamutInfo& a, const ColorGamutInfo& b) { return !(a == b); }
};

} // namespace Model
