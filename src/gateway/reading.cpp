#include "reading.h"

#include "typedarray_p.h"

#include <QCborArray>
#include <QCborMap>
#include <QCborValue>
#include <QJsonArray>
#include <QtEndian>

namespace Gateway {

namespace {

constexpr qint64 maxExact = qint64{1} << 53;

QJsonValue read(const QCborValue& value);

QJsonValue readNumber(qint64 number)
{
    return number <= maxExact && number >= -maxExact ? QJsonValue(number) : QJsonValue(QString::number(number));
}

template <typename T>
QJsonArray readNumbers(const QByteArray& bytes)
{
    QJsonArray numbers;
    for (int i = 0; i + static_cast<int>(sizeof(T)) <= bytes.size(); i += static_cast<int>(sizeof(T))) {
        const T number = qFromLittleEndian<T>(bytes.constData() + i);
        numbers.append(number <= maxExact ? QJsonValue(static_cast<qint64>(number))
                                          : QJsonValue(QString::number(number)));
    }
    return numbers;
}

QJsonValue readTagged(const QCborValue& value)
{
    const QCborValue content = value.taggedValue();
    switch (static_cast<quint64>(value.tag())) {
    case typedArrayTag<unsigned short>:
        return readNumbers<unsigned short>(content.toByteArray());
    case typedArrayTag<unsigned long long>:
        return readNumbers<quint64>(content.toByteArray());
    default:
        return read(content);
    }
}

QJsonObject readMap(const QCborMap& map)
{
    QJsonObject object;
    for (const auto& [key, value] : map)
        object.insert(key.toString(), read(value));
    return object;
}

QJsonArray readArray(const QCborArray& array)
{
    QJsonArray result;
    for (const QCborValue& value : array)
        result.append(read(value));
    return result;
}

QJsonValue read(const QCborValue& value)
{
    switch (value.type()) {
    case QCborValue::Integer:
        return readNumber(value.toInteger());
    case QCborValue::ByteArray:
        return QString::fromLatin1(value.toByteArray().toBase64());
    case QCborValue::Tag:
        return readTagged(value);
    case QCborValue::Array:
        return readArray(value.toArray());
    case QCborValue::Map:
        return readMap(value.toMap());
    default:
        return value.toJsonValue();
    }
}

} // namespace

QJsonObject readingOf(const QByteArray& payload)
{
    return readMap(QCborValue::fromCbor(payload).toMap());
}

} // namespace Gateway
