#pragma once

#include <tuple>

namespace Model {

/// Detail and peak-luminance settings of a screen. Everything is off by default, and the peak values are not valid. The
/// screen does the work; here the settings are kept as given.
class GrayDetailPara
{
public:
    /// Switch of the advanced picture quality. @{
    bool getQualityAdvance() const { return m_qualityAdvance; }
    void setQualityAdvance(bool on) { m_qualityAdvance = on; }
    /// @}

    /// Switch of the detail enhancement. @{
    bool getDetailAdvance() const { return m_detailAdvance; }
    void setDetailAdvance(bool on) { m_detailAdvance = on; }
    /// @}

    /// Strength of the detail enhancement, 0 for none. @{
    int getDetailLevel() const { return m_detailLevel; }
    void setDetailLevel(int level) { m_detailLevel = level; }
    /// @}

    /// Automatic brightness limitation. @{
    bool getABLSwitch() const { return m_abl; }
    void setABLSwitch(bool on) { m_abl = on; }
    /// @}

    /// Whether the three values below are valid. In documents it is called "peakInvalid", with this sense. @{
    bool getPeakValid() const { return m_peakValid; }
    void setPeakValid(bool valid) { m_peakValid = valid; }
    /// @}

    /// Measured peak luminance, wanted peak luminance and the screen's maximum, cd/m2. @{
    int getPeakMeasure() const { return m_peakMeasure; }
    void setPeakMeasure(int luminance) { m_peakMeasure = luminance; }
    int getPeakLum() const { return m_peakLum; }
    void setPeakLum(int luminance) { m_peakLum = luminance; }
    int getMaxLum() const { return m_maxLum; }
    void setMaxLum(int luminance) { m_maxLum = luminance; }
    /// @}

    /// Inverse tone mapping. @{
    bool getINVTMOSwitch() const { return m_inverseToneMapping; }
    void setINVTMOSwitch(bool on) { m_inverseToneMapping = on; }
    /// @}

private:
    auto tied() const
    {
        return std::tie(m_qualityAdvance, m_detailAdvance, m_detailLevel, m_abl, m_peakValid, m_peakMeasure, m_peakLum,
                        m_maxLum, m_inverseToneMapping);
    }
    friend bool operator==(const GrayDetailPara& a, const GrayDetailPara& b) { return a.tied() == b.tied(); }
    friend bool operator!=(const GrayDetailPara& a, const GrayDetailPara& b) { return !(a == b); }

    bool m_qualityAdvance = false;
    bool m_detailAdvance = false;
    int m_detailLevel = 0;
    bool m_abl = false;
    bool m_peakValid = false;
    int m_peakMeasure = 0;
    int m_peakLum = 0;
    int m_maxLum = 0;
    bool m_inverseToneMapping = false;
};

} // namespace Model
