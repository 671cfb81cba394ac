#pragma once

#include <suite/model/lxy.h>

#include <vector>

namespace Model {

/// Coefficients of a gamut correction: a 3 x 3 matrix, row-major, rows are LED channels and columns content channels,
/// in signed Q1.14 (1.0 is 16384) kept as the two's-complement bits. The default is the identity: nothing is corrected.
class GamutCoeff
{
public:
    /// Nine values. Another number of them is kept too, and travels to devices as it stands. @{
    const std::vector<unsigned short>& getCoeffs() const { return m_coeffs; }
    void setCoeffs(const std::vector<unsigned short>& coeffs) { m_coeffs = coeffs; }
    /// @}

    /// Bit for bit. @{
    friend bool operator==(const GamutCoeff& a, const GamutCoeff& b) { return a.m_coeffs == b.m_coeffs; }
    friend bool operator!=(const GamutCoeff& a, const GamutCoeff& b) { return !(a == b); }
    /// @}

private:
    std::vector<unsigned short> m_coeffs{16384, 0, 0, 0, 16384, 0, 0, 0, 16384};
};

/// A colour gamut: its primaries and white point, its name, and how it relates to another gamut. By default nothing is
/// measured: all points are zero.
struct ColorGamutInfo
{
    LXY rLxy;              ///< what red at full drive shows, or should show
    LXY gLxy;              ///< the same of green
    LXY bLxy;              ///< the same of blue
    LXY wLxy;              ///< the same of all three together: the white point
    std::string name;      ///< UTF-8
    double cover = 0.0;    ///< share of the target that can be shown, 0..1
    double orgCover = 0.0; ///< area of the source gamut over the target's area, 0 or more
    GamutCoeff coeff;      ///< the correction that shows this gamut on the wall it was computed for

    /// Names, coverage and coefficients count too. @{
    friend bool operator==(const ColorGamutInfo& a, const ColorGamutInfo& b)
    {
        return std::tie(a.rLxy, a.gLxy, a.bLxy, a.wLxy, a.name, a.cover, a.orgCover, a.coeff) ==
               std::tie(b.rLxy, b.gLxy, b.bLxy, b.wLxy, b.name, b.cover, b.orgCover, b.coeff);
    }
    friend bool operator!=(const ColorGamutInfo& a, const ColorGamutInfo& b) { return !(a == b); }
    /// @}
};

} // namespace Model
