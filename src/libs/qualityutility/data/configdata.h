#pragma once

#include <qualityutility/data/brightnessparameter.h>

#include <QPointer>

/// The configuration of a receiving card, as objects that are kept by their properties and used on their own thread.
namespace ReceivingCard {

/// The picture configuration of a receiving card. Its object name is "ScanBoardProperty", a copy's too.
class QUALITYUTILITY_EXPORT ConfigData : public Xq::Serialize::Serializable
{
    Q_OBJECT
    /// brightness() as a map of its properties, packed; empty where there is none.
    Q_PROPERTY(
        QVariant BrightnessParameter READ _getBrightnessParameterm_brightness WRITE _setBrightnessParameterm_brightness)

public:
    /// With a BrightnessParameter of defaults. A child of `parent`, which deletes it; without one it is its maker's.
    explicit ConfigData(Serializable* parent = nullptr);
    /// Copies are deep: they own a BrightnessParameter of their own, or none where the source has none.
    ConfigData(const ConfigData& other);
    /// Deletes this object's BrightnessParameter first. Parent and name stay.
    ConfigData& operator=(const ConfigData& other);
    /// A deep copy without a parent, owned by the caller.
    ConfigData* clone() const { return new ConfigData(*this); }

    /// Owned by this object; null after someone deleted it. @{
    class BrightnessParameter* brightness() { return m_brightness; }
    const class BrightnessParameter* brightness() const { return m_brightness; }
    /// @}

    /// The property's. A value for what is null makes a new one of defaults first; an empty value changes nothing. @{
    QVariant _getBrightnessParameterm_brightness() const;
    void _setBrightnessParameterm_brightness(const QVariant& value);
    /// @}

private:
    void copyBrightness(const ConfigData& other);

    QPointer<class BrightnessParameter> m_brightness;
};

} // namespace ReceivingCard
