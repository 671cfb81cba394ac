#include "serializable.h"

#include <QDebug>
#include <QMetaProperty>

#include <utility>

namespace Xq::Serialize {

namespace {

bool isNumber(int type)
{
    switch (type) {
    case QMetaType::Char:
    case QMetaType::SChar:
    case QMetaType::UChar:
    case QMetaType::Short:
    case QMetaType::UShort:
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::Long:
    case QMetaType::ULong:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Float:
    case QMetaType::Double:
        return true;
    default:
        return false;
    }
}

/// `value` as a number of `type`; invalid where that would change it. Numbers between integers and floating point go
/// through JSON documents as doubles, so 3.0 is an integer and 3.5 is not.
QVariant withoutLoss(const QVariant& value, int type)
{
    constexpr double maxExact = 9007199254740992.0; // 2^53: beyond it a double is not one integer
    const double number = value.toDouble();
    if (type == QMetaType::Double || type == QMetaType::Float)
        return number;
    if (!(number >= -maxExact && number <= maxExact))
        return {};
    QVariant converted(static_cast<qlonglong>(number));
    if (converted.toDouble() != number || !converted.convert(type) || converted.toDouble() != number)
        return {};
    return converted;
}

/// A list of integers, as a JSON document gives it; invalid where one of them is none.
QVariant integers(const QVariantList& values)
{
    QList<int> list;
    for (const QVariant& value : values) {
        const QVariant integer = isNumber(value.userType()) ? withoutLoss(value, QMetaType::Int) : QVariant();
        if (!integer.isValid())
            return {};
        list.append(integer.toInt());
    }
    return QVariant::fromValue(list);
}

/// Texts by number, from the map of texts that stands for them; invalid where it is none.
QVariant textsByNumber(const QVariantMap& values)
{
    QMap<int, QString> texts;
    for (auto it = values.begin(); it != values.end(); ++it) {
        const int number = it.key().toInt();
        if (QString::number(number) != it.key() || it.value().userType() != QMetaType::QString)
            return {};
        texts.insert(number, it.value().toString());
    }
    return QVariant::fromValue(texts);
}

/// Lists and maps of any type as those of variants, which JSON documents hold.
QVariant plain(const QVariant& value)
{
    if (value.userType() < QMetaType::User)
        return value;
    if (value.canConvert<QVariantMap>())
        return value.value<QVariantMap>();
    return value.canConvert<QVariantList>() ? value.value<QVariantList>() : value;
}

/// Whether all was taken by the deserialize() that runs on this thread; that of a nested object runs within its
/// owner's, which learns by this of what was not.
thread_local bool s_isWhole = true;

/// `value` as the property's type; invalid where it is none.
QVariant fitted(const QVariant& value, const QMetaProperty& property)
{
    const int type = property.userType();
    if (type == QMetaType::QVariant || value.userType() == type)
        return value;
    if (isNumber(type) && isNumber(value.userType()))
        return withoutLoss(value, type);
    if (type == qMetaTypeId<QList<int>>() && value.userType() == QMetaType::QVariantList)
        return integers(value.toList());
    if (type == qMetaTypeId<QMap<int, QString>>() && value.userType() == QMetaType::QVariantMap)
        return textsByNumber(value.toMap());
    return {};
}

} // namespace

Serializable::Serializable(Serializable* parent) : QObject(parent) {}

Serializable::Serializable(const Serializable& other) : QObject(nullptr), m_attribute(other.m_attribute) {}

QVariantMap Serializable::serialize(const Serializable* object, quint32 /*attribute*/)
{
    QVariantMap map;
    if (!object)
        return map;
    const QMetaObject& meta = *object->metaObject();
    for (int i = staticMetaObject.propertyCount(); i < meta.propertyCount(); ++i)
        map.insert(QString::fromLatin1(meta.property(i).name()), plain(meta.property(i).read(object)));
    return map;
}

bool Serializable::deserialize(const QVariantMap& map, quint32 /*attribute*/)
{
    const QMetaObject& meta = *metaObject();
    const bool isOwnerWhole = std::exchange(s_isWhole, true);
    for (auto it = map.begin(); it != map.end(); ++it) {
        const int index = meta.indexOfProperty(it.key().toLatin1().constData());
        if (index < staticMetaObject.propertyCount()) {
            qWarning() << meta.className() << "has no property" << it.key();
            s_isWhole = false;
            continue;
        }
        const QMetaProperty property = meta.property(index);
        const QVariant value = fitted(it.value(), property);
        if (!value.isValid() || !property.write(this, value)) {
            qWarning() << meta.className() << "property" << it.key() << "expected" << property.typeName() << "found"
                       << it.value();
            s_isWhole = false;
        }
    }
    const bool isWhole = s_isWhole;
    s_isWhole = isOwnerWhole && isWhole;
    return isWhole;
}

QVariant Serializable::packObjByAttribute(const QVariantMap& map, quint32 /*attribute*/)
{
    return map;
}

QVariantMap Serializable::unpackObjByAttribute(const QVariant& value, quint32 /*attribute*/)
{
    if (value.userType() != QMetaType::QVariantMap) {
        qWarning() << "a nested object expected a map, found" << value;
        s_isWhole = false;
    }
    return value.toMap();
}

} // namespace Xq::Serialize
