#pragma once

#include <qualityutility/data/colortemperturepara.h>

#include <QList>
#include <QMap>
#include <QString>

namespace ReceivingCard {

/// Brightness, gamma and gain of a receiving card, with its colour temperature; the card applies them.
///
/// Brightness and gains are kept in 16 bits: what is set below 0 becomes 0, above 65535 becomes 65535. All other values
/// are kept as given.
class QUALITYUTILITY_EXPORT BrightnessParameter : public Xq::Serialize::Serializable
{
    Q_OBJECT
    /// The values of the accessors below; the last one as a map of its properties, packed. @{
    Q_PROPERTY(bool ISEnable18BitModel MEMBER m_isEnable18BitModel)
    Q_PROPERTY(int Brightness READ brightness WRITE setBrightness)
    Q_PROPERTY(double RedGamma MEMBER m_redGamma)
    Q_PROPERTY(double GreenGamma MEMBER m_greenGamma)
    Q_PROPERTY(double BlueGamma MEMBER m_blueGamma)
    Q_PROPERTY(bool IsCustomGamma MEMBER m_isCustomGamma)
    Q_PROPERTY(bool IsSupportCurrentGain MEMBER m_isSupportCurrentGain)
    Q_PROPERTY(int RedGain READ redGain WRITE setRedGain)
    Q_PROPERTY(int GreenGain READ greenGain WRITE setGreenGain)
    Q_PROPERTY(int BlueGain READ blueGain WRITE setBlueGain)
    Q_PROPERTY(int MinGain READ minGain WRITE setMinGain)
    Q_PROPERTY(int MaxGain READ maxGain WRITE setMaxGain)
    Q_PROPERTY(QMap<int, QString> GainMap MEMBER m_gainMap)
    Q_PROPERTY(QList<int> RedGammaTable MEMBER m_redGammaTable)
    Q_PROPERTY(QList<int> GreenGammaTable MEMBER m_greenGammaTable)
    Q_PROPERTY(QList<int> BlueGammaTable MEMBER m_blueGammaTable)
    Q_PROPERTY(QVariant ColorTemperturePara READ _getColorTemperturePara WRITE _setColorTemperturePara)
    /// @}

public:
    /// A child of `parent`, which deletes it; without one it is its maker's.
    explicit BrightnessParameter(Serializable* parent = nullptr);
    /// All values and the attribute; no parent.
    BrightnessParameter(const BrightnessParameter& other) = default;

    /// A copy of everything, the colour temperature included, without a parent; owned by the caller.
    BrightnessParameter* clone() const { return new BrightnessParameter(*this); }

    /// Switch of the card's 18-bit mode. False by default. @{
    bool isEnable18BitModel() const { return m_isEnable18BitModel; }
    void setEnable18BitModel(bool enable) { m_isEnable18BitModel = enable; }
    /// @}
    /// In the card's steps; 255 by default. @{
    int brightness() const { return m_brightness; }
    void setBrightness(int value) { m_brightness = limited(value); }
    /// @}
    /// Exponents of the curves from gray level to drive; 2.8 by default. @{
    double redGamma() const { return m_redGamma; }
    void setRedGamma(double gamma) { m_redGamma = gamma; }
    double greenGamma() const { return m_greenGamma; }
    void setGreenGamma(double gamma) { m_greenGamma = gamma; }
    double blueGamma() const { return m_blueGamma; }
    void setBlueGamma(double gamma) { m_blueGamma = gamma; }
    /// @}
    /// Whether the gamma tables below are used instead of the exponents. False by default. @{
    bool isCustomGamma() const { return m_isCustomGamma; }
    void setCustomGamma(bool custom) { m_isCustomGamma = custom; }
    /// @}
    /// Whether the card's driver chips have a current gain to set. False by default. @{
    bool isSupportCurrentGain() const { return m_isSupportCurrentGain; }
    void setSupportCurrentGain(bool support) { m_isSupportCurrentGain = support; }
    /// @}
    /// Current gain of each colour, in the driver chip's steps; 255 by default. It is not held to the range below. @{
    int redGain() const { return m_redGain; }
    void setRedGain(int value) { m_redGain = limited(value); }
    int greenGain() const { return m_greenGain; }
    void setGreenGain(int value) { m_greenGain = limited(value); }
    int blueGain() const { return m_blueGain; }
    void setBlueGain(int value) { m_blueGain = limited(value); }
    /// @}
    /// The driver chip's range of current gain; 0 to 255 by default. A minimum above the maximum is kept. @{
    int minGain() const { return m_minGain; }
    void setMinGain(int value) { m_minGain = limited(value); }
    int maxGain() const { return m_maxGain; }
    void setMaxGain(int value) { m_maxGain = limited(value); }
    /// @}
    /// Gain steps and what a user is shown for each. Empty by default. @{
    const QMap<int, QString>& gainMap() const { return m_gainMap; }
    void setGainMap(const QMap<int, QString>& map) { m_gainMap = map; }
    /// @}
    /// Curves in place of the exponents; length and values are the card's to judge. Empty by default. @{
    const QList<int>& redGammaTable() const { return m_redGammaTable; }
    void setRedGammaTable(const QList<int>& table) { m_redGammaTable = table; }
    const QList<int>& greenGammaTable() const { return m_greenGammaTable; }
    void setGreenGammaTable(const QList<int>& table) { m_greenGammaTable = table; }
    const QList<int>& blueGammaTable() const { return m_blueGammaTable; }
    void setBlueGammaTable(const QList<int>& table) { m_blueGammaTable = table; }
    /// @}

    /// Held by value: valid as long as this object. @{
    const class ColorTemperturePara& colorTemperturePara() const { return m_colorTemperturePara; }
    class ColorTemperturePara& colorTemperturePara() { return m_colorTemperturePara; }
    /// @}

    /// The property's, as a packed map; what does not fit is skipped with a warning. @{
    QVariant _getColorTemperturePara() const;
    void _setColorTemperturePara(const QVariant& value);
    /// @}

private:
    static quint16 limited(int value);

    bool m_isEnable18BitModel = false;
    quint16 m_brightness = 255;
    double m_redGamma = 2.8;
    double m_greenGamma = 2.8;
    double m_blueGamma = 2.8;
    bool m_isCustomGamma = false;
    bool m_isSupportCurrentGain = false;
    quint16 m_redGain = 255;
    quint16 m_greenGain = 255;
    quint16 m_blueGain = 255;
    quint16 m_minGain = 0;
    quint16 m_maxGain = 255;
    QMap<int, QString> m_gainMap;
    QList<int> m_redGammaTable;
    QList<int> m_greenGammaTable;
    QList<int> m_blueGammaTable;
    class ColorTemperturePara m_colorTemperturePara;
};

} // namespace ReceivingCard
