#include "configdata.h"

namespace ReceivingCard {

namespace {

const QString s_objectName = QStringLiteral("ScanBoardProperty");

} // namespace

ConfigData::ConfigData(Serializable* parent) : Serializable(parent), m_brightness(new class BrightnessParameter(this))
{
    setObjectName(s_objectName);
}

ConfigData::ConfigData(const ConfigData& other) : Serializable(other)
{
    setObjectName(s_objectName);
    copyBrightness(other);
}

ConfigData& ConfigData::operator=(const ConfigData& other)
{
    if (this == &other)
        return *this;
    delete m_brightness;
    setAttribute(other.attribute());
    copyBrightness(other);
    return *this;
}

void ConfigData::copyBrightness(const ConfigData& other)
{
    if (!other.m_brightness)
        return;
    m_brightness = other.m_brightness->clone();
    m_brightness->setParent(this);
}

QVariant ConfigData::_getBrightnessParameterm_brightness() const
{
    return packObjByAttribute(serialize(m_brightness, attribute()), attribute());
}

void ConfigData::_setBrightnessParameterm_brightness(const QVariant& value)
{
    class BrightnessParameter* member = m_brightness;
    deserializeMember(value, member);
    m_brightness = member;
}

} // namespace ReceivingCard
