#pragma once

#include <suite/model/lxy.h>

#include <map>
#include <vector>

namespace Model {

/// Measurements of a magic-gray calibration and the tables made from them. Everything is empty by default. Each member
/// can be read, and filled in place through the reference that the non-const accessor gives, valid as long as the
/// record. Which gray level a series belongs to and how long a table is are the calibration tools' business.
class MagicGrayCoeffs
{
public:
    /// One series of measurements, in the order in which it was given.
    using Points = std::vector<LXY>;
    /// Series of measurements by an index of the calibration's. Documents keep the order and not the index: read back,
    /// they are numbered from 0.
    using PointSeries = std::map<int, Points>;
    /// Entries as the driver chip takes them.
    using Table = std::vector<int>;

    /// Measurements of red, green and blue that the tools number 0. @{
    const Points& getR0Measures() const { return m_r0; }
    Points& getR0Measures() { return m_r0; }
    const Points& getG0Measures() const { return m_g0; }
    Points& getG0Measures() { return m_g0; }
    const Points& getB0Measures() const { return m_b0; }
    Points& getB0Measures() { return m_b0; }
    /// @}

    /// Those that they number 1. @{
    const Points& getR1Measures() const { return m_r1; }
    Points& getR1Measures() { return m_r1; }
    const Points& getG1Measures() const { return m_g1; }
    Points& getG1Measures() { return m_g1; }
    const Points& getB1Measures() const { return m_b1; }
    Points& getB1Measures() { return m_b1; }
    /// @}

    /// Those that they call "first". @{
    const Points& getFirstRMeasures() const { return m_firstR; }
    Points& getFirstRMeasures() { return m_firstR; }
    const Points& getFirstGMeasures() const { return m_firstG; }
    Points& getFirstGMeasures() { return m_firstG; }
    const Points& getFirstBMeasures() const { return m_firstB; }
    Points& getFirstBMeasures() { return m_firstB; }
    /// @}

    /// Measurements by index of red, green, blue and white. @{
    const PointSeries& getACRMeasures() const { return m_acR; }
    PointSeries& getACRMeasures() { return m_acR; }
    const PointSeries& getACGMeasures() const { return m_acG; }
    PointSeries& getACGMeasures() { return m_acG; }
    const PointSeries& getACBMeasures() const { return m_acB; }
    PointSeries& getACBMeasures() { return m_acB; }
    const PointSeries& getWhiteMeasures() const { return m_white; }
    PointSeries& getWhiteMeasures() { return m_white; }
    /// @}

    /// Look-up tables: current, and compensated gain of odd and even lines. @{
    const Table& getCurrentLUTs() const { return m_currentLuts; }
    Table& getCurrentLUTs() { return m_currentLuts; }
    const Table& getComGainLUTOdd() const { return m_comGainLutOdd; }
    Table& getComGainLUTOdd() { return m_comGainLutOdd; }
    const Table& getComGainLUTEven() const { return m_comGainLutEven; }
    Table& getComGainLUTEven() { return m_comGainLutEven; }
    /// @}

private:
    auto tied() const
    {
        return std::tie(m_r0, m_g0, m_b0, m_r1, m_g1, m_b1, m_firstR, m_firstG, m_firstB, m_acR, m_acG, m_acB, m_white,
                        m_currentLuts, m_comGainLutOdd, m_comGainLutEven);
    }
    friend bool operator==(const MagicGrayCoeffs& a, const MagicGrayCoeffs& b) { return a.tied() == b.tied(); }
    friend bool operator!=(const MagicGrayCoeffs& a, const MagicGrayCoeffs& b) { return !(a == b); }

    Points m_r0, m_g0, m_b0;
    Points m_r1, m_g1, m_b1;
    Points m_firstR, m_firstG, m_firstB;
    PointSeries m_acR, m_acG, m_acB, m_white;
    Table m_currentLuts, m_comGainLutOdd, m_comGainLutEven;
};

} // namespace Model
