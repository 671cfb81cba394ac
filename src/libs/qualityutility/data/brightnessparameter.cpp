#include "brightnessparameter.h"

#include <limits>

namespace ReceivingCard {

BrightnessParameter::BrightnessParameter(Serializable* parent) : Serializable(parent)
{
    qRegisterMetaType<QMap<int, QString>>(); // moc's own registration leaves this type out
}

QVariant BrightnessParameter::_getColorTemperturePara() const
{
    return packObjByAttribute(serialize(&m_colorTemperturePara, attribute()), attribute());
}

void BrightnessParameter::_setColorTemperturePara(const QVariant& value)
{
    m_colorTemperturePara.deserialize(unpackObjByAttribute(value, attribute()), attribute());
}

quint16 BrightnessParameter::limited(int value)
{
    return static_cast<quint16>(qBound(0, value, int{std::numeric_limits<quint16>::max()}));
}

} // namespace ReceivingCard
