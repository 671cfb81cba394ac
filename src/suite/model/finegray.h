#pragma once

#include <suite/model/lxy.h>

#include <vector>

namespace Model {

/// The white to which fine gray corrects.
class FineGrayColorTem
{
public:
    /// Whether the colour temperature below is used rather than the chromaticity.
    bool getCustomColorTemperature() const { return m_isCustom; }
    void setCustomColorTemperature(bool custom) { m_isCustom = custom; }

    /// Kelvin.
    int getColorTemperature() const { return m_colorTemperature; }
    void setColorTemperature(int kelvin) { m_colorTemperature = kelvin; }

    /// CIE 1931 chromaticity.
    double getNColorxCom() const { return m_x; }
    void setNColorxCom(double x) { m_x = x; }
    double getNColoryCom() const { return m_y; }
    void setNColoryCom(double y) { m_y = y; }

private:
    auto tied() const { return std::tie(m_isCustom, m_colorTemperature, m_x, m_y); }
    friend bool operator==(const FineGrayColorTem& a, const FineGrayColorTem& b) { return a.tied() == b.tied(); }
    friend bool operator!=(const FineGrayColorTem& a, const FineGrayColorTem& b) { return !(a == b); }

    bool m_isCustom = false;
    int m_colorTemperature = 6500;
    double m_x = 0.314;
    double m_y = 0.351;
};

/// Gray coefficients of a screen, one entry per gray level. Empty by default.
struct FineGrayCoeffs
{
    std::vector<unsigned char> rGrayCoeffs;
    std::vector<unsigned char> gGrayCoeffs;
    std::vector<unsigned char> bGrayCoeffs;
    std::vector<unsigned char> magnitudes;
    FineGrayColorTem colorTem;

private:
    auto tied() const { return std::tie(rGrayCoeffs, gGrayCoeffs, bGrayCoeffs, magnitudes, colorTem); }
    friend bool operator==(const FineGrayCoeffs& a, const FineGrayCoeffs& b) { return a.tied() == b.tied(); }
    friend bool operator!=(const FineGrayCoeffs& a, const FineGrayCoeffs& b) { return !(a == b); }
};

/// Parameters of a fine-gray calibration in progress. What the numbers count is the calibration tools' business; they
/// are kept as given.
struct FineGrayAdvanceParam
{
    int maxNum = 4;
    int caliNum = 1;
    std::vector<LXY> wMeasure;
    int caliLength = 1021;
    std::vector<unsigned char> rGrayCoeffs;
    std::vector<unsigned char> gGrayCoeffs;
    std::vector<unsigned char> bGrayCoeffs;
    std::vector<unsigned char> magBits;
    std::vector<double> rLumTarget; ///< cd/m2, one entry per gray level; the same for green and blue
    std::vector<double> gLumTarget;
    std::vector<double> bLumTarget;

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
