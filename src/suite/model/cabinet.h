#pragma once

#include <suite/model/displayeffectpara.h>

namespace Model {

/// Fixed properties of a cabinet.
class CabinetBase
{
public:
    /// Gray-scale depth of the cabinet's driver, in bits. 14 by default, as common panels have it. @{
    int getGrayScaleSeries() const { return m_grayScaleSeries; }
    void setGrayScaleSeries(int series) { m_grayScaleSeries = series; }
    /// @}

    /// Driver-chip effect variant, a number of the maker's. 0 by default: none. @{
    int getChipEffectFlag() const { return m_chipEffectFlag; }
    void setChipEffectFlag(int flag) { m_chipEffectFlag = flag; }
    /// @}

private:
    int m_grayScaleSeries = 14;
    int m_chipEffectFlag = 0;
};

/// One cabinet of a wall. Shared by those who look it up; it stays valid after the registry let go of it. Not
/// thread-safe: one thread at a time uses it, normally the GUI thread, or the one that sends to its device.
class Cabinet
{
public:
    /// With defaults, until a wall document or a device says more.
    explicit Cabinet(unsigned long long cid) : m_cid(cid) {}

    /// The identifier, unique within its device.
    unsigned long long getCid() const { return m_cid; }

    /// What does not change while it hangs on its wall. Valid as long as the cabinet. @{
    CabinetBase& getBase() { return m_base; }
    const CabinetBase& getBase() const { return m_base; }
    /// @}

    /// What its device confirmed last; nothing is asked of the device here. Valid as long as the cabinet. @{
    DisplayEffectPara& getDisplayEffectPara() { return m_displayEffectPara; }
    const DisplayEffectPara& getDisplayEffectPara() const { return m_displayEffectPara; }
    /// @}

private:
    unsigned long long m_cid;
    CabinetBase m_base;
    DisplayEffectPara m_displayEffectPara;
};

} // namespace Model
