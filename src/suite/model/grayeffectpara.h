#pragma once

#include <tuple>

namespace Model {

/// Which gray-scale enhancements of a screen are switched on. All are off by default.
class GrayEffectPara
{
public:
    /// Super gray; what it does is the receiving card's. @{
    bool getSupGraySwitch() const { return m_supGray; }
    void setSupGraySwitch(bool on) { m_supGray = on; }
    /// @}

    /// Fine gray: per-level correction tables. @{
    bool getFineGraySwitch() const { return m_fineGray; }
    void setFineGraySwitch(bool on) { m_fineGray = on; }
    /// @}

    /// 22-bit gray depth. @{
    bool get22bitSwitch() const { return m_22bit; }
    void set22bitSwitch(bool on) { m_22bit = on; }
    /// @}

    /// Magic gray: correction by current gain. @{
    bool getMGSwitch() const { return m_magicGray; }
    void setMGSwitch(bool on) { m_magicGray = on; }
    /// @}

private:
    auto tied() const { return std::tie(m_supGray, m_fineGray, m_22bit, m_magicGray); }
    friend bool operator==(const GrayEffectPara& a, const GrayEffectPara& b) { return a.tied() == b.tied(); }
    friend bool operator!=(const GrayEffectPara& a, const GrayEffectPara& b) { return !(a == b); }

    bool m_supGray = false;
    bool m_fineGray = false;
    bool m_22bit = false;
    bool m_magicGray = false;
};

} // namespace Model
