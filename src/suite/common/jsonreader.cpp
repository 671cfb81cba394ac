#include "jsonreader.h"

#include <QJsonDocument>
#include <QLocale>

#include <cmath>

namespace Common {

namespace {

/// The place of the byte before `offset`: Qt's JSON errors point behind what is wrong.
QString lineAndColumn(const QByteArray& text, int offset)
{
    const QByteArray before = text.left(qMax(0, offset - 1));
    const int line = before.count('\n') + 1;
    const int column = before.size() - before.lastIndexOf('\n');
    return QStringLiteral("line %1, column %2").arg(line).arg(column);
}

QString rangeText(const QString& what, double min, double max, double openMin, double openMax)
{
    const auto text = [](double bound) { return QString::number(bound, 'g', 17); };
    if (min <= openMin && max >= openMax)
        return what;
    if (max >= openMax)
        return QStringLiteral("%1 of at least %2").arg(what, text(min));
    return QStringLiteral("%1 from %2 to %3").arg(what, text(min), text(max));
}

} // namespace

QString describeJson(const QJsonValue& value)
{
    switch (value.type()) {
    case QJsonValue::Null:
        return QStringLiteral("null");
    case QJsonValue::Bool:
        return value.toBool() ? QStringLiteral("true") : QStringLiteral("false");
    case QJsonValue::Double:
        return QString::number(value.toDouble(), 'g', QLocale::FloatingPointShortest);
    case QJsonValue::String:
        return QStringLiteral("\"%1\"").arg(value.toString());
    case QJsonValue::Array:
        return QStringLiteral("an array");
    case QJsonValue::Object:
        return QStringLiteral("an object");
    case QJsonValue::Undefined:
        break;
    }
    return QStringLiteral("nothing");
}

Result<QJsonObject> parseJsonObject(const QByteArray& text, const QString& subject)
{
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(text, &error);
    if (error.error != QJsonParseError::NoError)
        return Fault{Fault::Kind::BadData,
                     subject,
                     {},
                     QStringLiteral("%1: not JSON: %2").arg(lineAndColumn(text, error.offset), error.errorString())};
    if (!document.isObject())
        return Fault{Fault::Kind::BadData, subject, QStringLiteral("an object"), QStringLiteral("an array")};
    return document.object();
}

JsonReader::JsonReader(const QJsonObject& root, std::optional<Fault>& fault) : m_value(root), m_fault(&fault) {}

JsonReader::JsonReader(const JsonReader& parent, QLatin1String key, int index, QJsonValue value)
    : m_parent(&parent), m_key(key), m_index(index), m_value(std::move(value)), m_fault(parent.m_fault)
{}

QString JsonReader::path() const
{
    if (!m_parent)
        return {};
    const QString above = m_parent->path();
    if (m_index >= 0)
        return QStringLiteral("%1[%2]").arg(above).arg(m_index);
    return above.isEmpty() ? QString(m_key) : above + QLatin1Char('.') + m_key;
}

JsonReader JsonReader::member(const char* key) const
{
    const QLatin1String name(key);
    return {*this, name, -1, m_value[name]};
}

JsonReader JsonReader::element(int index) const
{
    return {*this, QLatin1String(), index, m_value[index]};
}

int JsonReader::count() const
{
    if (!m_value.isArray())
        expect(QStringLiteral("an array"));
    return m_value.toArray().size();
}

const JsonReader& JsonReader::object() const
{
    if (!m_value.isObject())
        expect(QStringLiteral("an object"));
    return *this;
}

QString JsonReader::text() const
{
    if (!m_value.isString())
        expect(QStringLiteral("a string"));
    return m_value.toString();
}

bool JsonReader::flag() const
{
    if (!m_value.isBool())
        expect(QStringLiteral("true or false"));
    return m_value.toBool();
}

double JsonReader::number(double min, double max) const
{
    const double number = m_value.toDouble(std::numeric_limits<double>::quiet_NaN());
    if (number >= min && number <= max)
        return number;
    constexpr double largest = std::numeric_limits<double>::max();
    expect(rangeText(QStringLiteral("a number"), min, max, -largest, largest));
    return 0.0;
}

int JsonReader::integer(int min, int max) const
{
    const double number = m_value.toDouble(std::numeric_limits<double>::quiet_NaN());
    if (number >= min && number <= max && std::floor(number) == number)
        return static_cast<int>(number);
    constexpr int largest = std::numeric_limits<int>::max();
    expect(rangeText(QStringLiteral("an integer"), min, max, std::numeric_limits<int>::min(), largest));
    return 0;
}

void JsonReader::expect(const QString& expected) const
{
    leave(expected, describeJson(m_value));
}

void JsonReader::refuse(const QString& reason) const
{
    leave({}, reason);
}

void JsonReader::leave(const QString& expected, const QString& found) const
{
    if (!hasFault())
        *m_fault = Fault{Fault::Kind::BadData, path(), expected, found};
}

} // namespace Common
