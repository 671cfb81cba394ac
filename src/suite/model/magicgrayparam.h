#pragma once

#include <tuple>
#include <utility>

namespace Model {

/// Parameters of magic-gray generation. Values are kept as given; ranges are the calibration tools' to check. Each pair
/// of accessors is one value; the defaults are those of a common 16-bit PWM panel.
class MagicGrayParam
{
public:
    /// Range of the driver chip's current gain, in its register's units; 0 to 255 by default. Set together: a minimum
    /// above the maximum is kept as given. @{
    int getMinGain() const { return m_minGain; }
    int getMaxGain() const { return m_maxGain; }
    void setGainRange(int min, int max) { std::tie(m_minGain, m_maxGain) = std::pair(min, max); }
    /// @}

    /// Whether the gain range above replaces the driver chip's own. False by default. @{
    bool getGainConfigUse() const { return m_gainConfigUse; }
    void setGainConfigUse(bool use) { m_gainConfigUse = use; }
    /// @}

    /// Layers of the PWM compensation table; 16 by default. @{
    int getPWMLutLayerNum() const { return m_pwmLutLayerNum; }
    void setPWMLutLayerNum(int layers) { m_pwmLutLayerNum = layers; }
    /// @}

    /// Bits of the PWM range under current control; 12 by default. A document's "maxDataShiftBase" is 8 less. @{
    int getPWMRangeBit() const { return m_pwmRangeBit; }
    void setPWMRangeBit(int bits) { m_pwmRangeBit = bits; }
    /// @}

    /// Bits of the output data; 16 by default. @{
    int getDataLen() const { return m_dataLen; }
    void setDataLen(int bits) { m_dataLen = bits; }
    /// @}

    /// Smallest allowed ratio of a compensated to an uncompensated level; 0.1 by default. @{
    double getLimitMinRatio() const { return m_limitMinRatio; }
    void setLimitMinRatio(double ratio) { m_limitMinRatio = ratio; }
    /// @}

    /// Gray level from which compensation applies; 1 by default. @{
    int getMinPos() const { return m_minPos; }
    void setMinPos(int level) { m_minPos = level; }
    /// @}

    /// Exponent and factor of the gain curve; 2.8, a panel's gamma, and 1 by default. @{
    double getPowerPara() const { return m_powerPara; }
    void setPowerPara(double power) { m_powerPara = power; }
    double getKPara() const { return m_kPara; }
    void setKPara(double factor) { m_kPara = factor; }
    /// @}

    /// Switch (0 is off; 1 by default) and kind (the tools' number; 0 by default) of colour correction. "Corrent" is
    /// how the settings spell it. @{
    int getColorCorrentEn() const { return m_colorCorrentEn; }
    void setColorCorrentEn(int enable) { m_colorCorrentEn = enable; }
    int getColorCorrMode() const { return m_colorCorrMode; }
    void setColorCorrMode(int mode) { m_colorCorrMode = mode; }
    /// @}

    /// Bits of the base scale (a document's "compBase") and of the compensation coefficients; 8 and 14 by default. @{
    int getBaseScaleBit() const { return m_baseScaleBit; }
    void setBaseScaleBit(int bits) { m_baseScaleBit = bits; }
    int getCompenCoefBit() const { return m_compenCoefBit; }
    void setCompenCoefBit(int bits) { m_compenCoefBit = bits; }
    /// @}

    /// Longest tables, in entries: white compensation, current, and compensation of one colour. 256 each by default. @{
    int getWCompLUTLimitLength() const { return m_wCompLutLimitLength; }
    void setWCompLUTLimitLength(int entries) { m_wCompLutLimitLength = entries; }
    int getCurrentLimitLength() const { return m_currentLimitLength; }
    void setCurrentLimitLength(int entries) { m_currentLimitLength = entries; }
    int getRGBCompLUTLimitLength() const { return m_rgbCompLutLimitLength; }
    void setRGBCompLUTLimitLength(int entries) { m_rgbCompLutLimitLength = entries; }
    /// @}

    /// The colour-temperature correction of white: its switch (0 is off, as by default), its steps (16) and the weight
    /// of a step (1). @{
    int getWhiteCTCEN() const { return m_whiteCtcEn; }
    void setWhiteCTCEN(int enable) { m_whiteCtcEn = enable; }
    int getCTCnums() const { return m_ctcNums; }
    void setCTCnums(int steps) { m_ctcNums = steps; }
    int getCTCstepWei() const { return m_ctcStepWei; }
    void setCTCstepWei(int weight) { m_ctcStepWei = weight; }
    /// @}

    /// Lowest layer that is set, from 0, as by default. @{
    int getMinLayerSet() const { return m_minLayerSet; }
    void setMinLayerSet(int layer) { m_minLayerSet = layer; }
    /// @}

private:
    auto tied() const
    {
        return std::tie(m_minGain, m_maxGain, m_gainConfigUse, m_pwmLutLayerNum, m_pwmRangeBit, m_dataLen,
                        m_limitMinRatio, m_minPos, m_powerPara, m_kPara, m_colorCorrentEn, m_colorCorrMode,
                        m_baseScaleBit, m_compenCoefBit, m_wCompLutLimitLength, m_currentLimitLength,
                        m_rgbCompLutLimitLength, m_whiteCtcEn, m_ctcNums, m_ctcStepWei, m_minLayerSet);
    }
    friend bool operator==(const MagicGrayParam& a, const MagicGrayParam& b) { return a.tied() == b.tied(); }
    friend bool operator!=(const MagicGrayParam& a, const MagicGrayParam& b) { return !(a == b); }

    int m_minGain = 0;
    int m_maxGain = 255;
    bool m_gainConfigUse = false;
    int m_pwmLutLayerNum = 16;
    int m_pwmRangeBit = 12;
    int m_dataLen = 16;
    double m_limitMinRatio = 0.1;
    int m_minPos = 1;
    double m_powerPara = 2.8;
    double m_kPara = 1.0;
    int m_colorCorrentEn = 1;
    int m_colorCorrMode = 0;
    int m_baseScaleBit = 8;
    int m_compenCoefBit = 14;
    int m_wCompLutLimitLength = 256;
    int m_currentLimitLength = 256;
    int m_rgbCompLutLimitLength = 256;
    int m_whiteCtcEn = 0;
    int m_ctcNums = 16;
    int m_ctcStepWei = 1;
    int m_minLayerSet = 0;
};

} // namespace Model
