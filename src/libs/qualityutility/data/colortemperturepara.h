#pragma once

#include <qualityutility/qualityutility_export.h>
#include <suite/serialize/serializable.h>

namespace ReceivingCard {

/// Colour temperature of a receiving card and what its primaries and white measure: brightness in cd/m2, CIE 1931
/// chromaticity. White is not serialised. ("Temperture" is how documents and callers spell it.)
class QUALITYUTILITY_EXPORT ColorTemperturePara : public Xq::Serialize::Serializable
{
    Q_OBJECT
    /// The members of the same names. @{
    Q_PROPERTY(int ColorTemperature MEMBER colorTemperature)
    Q_PROPERTY(int InitColorTemp MEMBER initColorTemp)
    Q_PROPERTY(double RBrightness MEMBER rBrightness)
    Q_PROPERTY(double GBrightness MEMBER gBrightness)
    Q_PROPERTY(double BBrightness MEMBER bBrightness)
    Q_PROPERTY(double RCx MEMBER rCx)
    Q_PROPERTY(double GCx MEMBER gCx)
    Q_PROPERTY(double BCx MEMBER bCx)
    Q_PROPERTY(double RCy MEMBER rCy)
    Q_PROPERTY(double BCy MEMBER bCy)
    Q_PROPERTY(double GCy MEMBER gCy)
    /// @}

public:
    /// A child of `parent`, which deletes it; without one it is its maker's.
    explicit ColorTemperturePara(Serializable* parent = nullptr);
    /// All members, white's too, and the attribute; no parent.
    ColorTemperturePara(const ColorTemperturePara& other) = default;

    /// A copy without a parent, owned by the caller.
    ColorTemperturePara* clone() const { return new ColorTemperturePara(*this); }

    int colorTemperature = 6500; ///< kelvin
    int initColorTemp = 6500;    ///< kelvin; before anybody changed it

    /// Red, green, blue and white as measured; until then those of a common panel. @{
    double rBrightness = 809.05;
    double rCx = 0.69;
    double rCy = 0.3;
    double gCx = 0.17;
    double gCy = 0.73;
    double gBrightness = 1796.57;
    double bCx = 0.13;
    double bCy = 0.08;
    double bBrightness = 291.38;
    double wCx = 0.2863;
    double wCy = 0.2949;
    double wBrightness = 3120.0;
    /// @}
};

} // namespace ReceivingCard
