#pragma once

#include <suite/model/lxy.h>

#include <vector>

namespace Model {

/// The white to which fine gray corrects.
class FineGrayColorTem
{
public:
    /// Whether the colour temperature below is used rather than the chromaticity. @{
    bool getCustomColorTemperature() const { return m_isCustom; }
    void setCustomColorTemperature(bool custom) { m_isCustom = custom; }
    /// @}

    /// Kelvin; 6500 by default. The settings allow 1500 to 100000. @{
    int getColorTemperature() const { return m_colorTemperature; }
    void setColorTemperature(int kelvin) { m_colorTemperature = kelvin; }
    /// @}

    /// CIE 1931 chromaticity; 0.314, 0.351 by default, the white of DCI-P3. @{
    double getNColorxCom() const { return m_x; }
    void setNColorxCom(double x) { m_x = x; }
    double getNColoryCom() const { return m_y; }
    void setNColoryCom(double y) { m_y = y; }
    /// @}

private:
    auto tied() const { return std::tie(m_isCustom, m_colorTemperature, m_x, m_y); }
    friend bool operator==(const FineGrayColorTem& a, const FineGrayColorTem& b) { return a.tied() == b.tied(); }
    friend bool operator!=(const FineGrayColorTem& a, const FineGrayColorTem& b) { return !(a == b); }

    bool m_isCustom = false;
    int m_colorTemperature = 6500;
    double m_x = 0.314;
    double m_y = 0.351;
};

/// Gray coefficients of a screen, one entry per gray level. Empty by default. What an entry does is the receiving
/// card's; tables of unequal length are kept and sent as they are.
struct FineGrayCoeffs
{
    std::vector<unsigned char> rGrayCoeffs; ///< red, 0..255
    std::vector<unsigned char> gGrayCoeffs; ///< green, 0..255
    std::vector<unsigned char> bGrayCoeffs; ///< blue, 0..255
    std::vector<unsigned char> magnitudes;  ///< of the coefficients, 0..255; as the device counts them
    FineGrayColorTem colorTem;              ///< not in documents; PicqualityData takes it from the settings

private:
    auto tied() const { return std::tie(rGrayCoeffs, gGrayCoeffs, bGrayCoeffs, magnitudes, colorTem); }
    friend bool operator==(const FineGrayCoeffs& a, const FineGrayCoeffs& b) { return a.tied() == b.tied(); }
    friend bool operator!=(const FineGrayCoeffs& a, const FineGrayCoeffs& b) { return !(a == b); }
};

/// Parameters of a fine-gray calibration in progress. What the numbers count is the calibration tools' business; they
/// are kept as given.
struct FineGrayAdvanceParam
{
    int maxNum = 4;                         ///< PicqualityData takes it from the settings (MaxWCom/GrayMaxWCom)
    int caliNum = 1;                        ///< the tools' count
    std::vector<LXY> wMeasure;              ///< white as measured so far
    int caliLength = 1021;                  ///< the tools' count
    std::vector<unsigned char> rGrayCoeffs; ///< red coefficients so far, 0..255
    std::vector<unsigned char> gGrayCoeffs; ///< green, likewise
    std::vector<unsigned char> bGrayCoeffs; ///< blue, likewise
    std::vector<unsigned char> magBits;     ///< magnitude bits of the coefficients, 0..255
    std::vector<double> rLumTarget;         ///< wanted luminance of red, cd/m2, one entry per gray level
    std::vector<double> gLumTarget;         ///< green, likewise
    std::vector<double> bLumTarget;         ///< blue, likewise

private:
    auto tied() const
    {
        return std::tie(maxNum, caliNum, wMeasure, caliLength, rGrayCoeffs, gGrayCoeffs, bGrayCoeffs, magBits,
                        rLumTarget, gLumTarget, bLumTarget);
    }
    friend bool operator==(const FineGrayAdvanceParam& a, const FineGrayAdvanceParam& b)
    {
        return a.tied() == b.tied();
    }
    friend bool operator!=(const FineGrayAdvanceParam& a, const FineGrayAdvanceParam& b) { return !(a == b); }
};

} // namespace Model
