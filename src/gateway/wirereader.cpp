#include "typedarray_p.h"
#include "wirereader_p.h"
#include "wirewriter_p.h"

#include <qfloat16.h>

#include <QtEndian>

namespace Gateway {

namespace {

using Type = QCborStreamReader::Type;

/// Values take up to hundreds of bytes each once they are read, and one on the wire.
constexpr int maxValues = 200'000;
/// A message, a map, and for each that is nested in it a list, an entry and a map.
constexpr int maxContainers = 2 + 3 * (maxDepth - 1);

} // namespace

void WireReader::fail(const QString& text)
{
    if (m_fault.isEmpty())
        m_fault = QStringLiteral("byte %1: %2").arg(m_reader.currentOffset()).arg(text);
}

/// False once something is wrong: the value is then not to be read.
bool WireReader::take(bool isExpected, const char* expected)
{
    if (++m_values > maxValues)
        fail(QStringLiteral("more than %1 values").arg(maxValues));
    else if (m_reader.lastError() != QCborError::NoError)
        fail(m_reader.lastError().toString());
    else if (!isExpected)
        fail(QStringLiteral("expected %1").arg(QLatin1String(expected)));
    return m_fault.isEmpty();
}

bool WireReader::enter(Type type)
{
    const bool isMap = type == QCborStreamReader::Map;
    if (!take(m_reader.type() == type, isMap ? "a map" : "a list"))
        return false;
    if (++m_depth > maxContainers)
        fail(QStringLiteral("nested too deeply"));
    else if (!m_reader.enterContainer())
        fail(QStringLiteral("cut off"));
    return m_fault.isEmpty();
}

void WireReader::leave()
{
    --m_depth;
    if (m_fault.isEmpty() && (m_reader.lastError() != QCborError::NoError || !m_reader.leaveContainer()))
        fail(QStringLiteral("cut off"));
}

void WireReader::map(const std::function<void(const std::string&)>& member)
{
    if (!enter(QCborStreamReader::Map))
        return;
    while (m_fault.isEmpty() && m_reader.hasNext()) {
        const std::string key = text();
        if (m_fault.isEmpty())
            member(key);
    }
    leave();
}

void WireReader::map(ParameterMap& target)
{
    map([&](const std::string& key) { store(target, key); });
}

qint64 WireReader::integer(qint64 min, qint64 max)
{
    if (!take(m_reader.isInteger(), "an integer"))
        return 0;
    constexpr auto most = static_cast<quint64>(std::numeric_limits<qint64>::max());
    const bool isWide = m_reader.isUnsignedInteger() ? m_reader.toUnsignedInteger() > most
                                                     : static_cast<quint64>(m_reader.toNegativeInteger()) - 1 > most;
    const qint64 value = isWide ? 0 : m_reader.toInteger();
    if (isWide || value < min || value > max)
        fail(QStringLiteral("expected an integer from %1 to %2").arg(min).arg(max));
    m_reader.next();
    return value;
}

bool WireReader::flag()
{
    if (!take(m_reader.isBool(), "true or false"))
        return false;
    const bool value = m_reader.toBool();
    m_reader.next();
    return value;
}

double WireReader::real()
{
    if (!take(m_reader.isFloat16() || m_reader.isFloat() || m_reader.isDouble(), "a number"))
        return 0.0;
    const double value = m_reader.isDouble()  ? m_reader.toDouble()
                         : m_reader.isFloat() ? static_cast<double>(m_reader.toFloat())
                                              : static_cast<double>(static_cast<float>(m_reader.toFloat16()));
    m_reader.next();
    return value;
}

/// A text or byte string, in however many pieces. What a piece claims is looked at before memory is taken for it.
template <typename Bytes>
Bytes WireReader::bytes()
{
    Bytes result;
    for (;;) {
        const qsizetype size = m_reader.currentStringChunkSize();
        if (size < 0 || size > m_size - m_reader.currentOffset()) {
            fail(QStringLiteral("cut off"));
            return {};
        }
        const std::size_t start = result.size();
        result.resize(start + static_cast<std::size_t>(size));
        const auto piece = m_reader.readStringChunk(reinterpret_cast<char*>(result.data()) + start, size);
        if (piece.status == QCborStreamReader::EndOfString) {
            result.resize(start);
            return result;
        }
        if (piece.status != QCborStreamReader::Ok || piece.data != size || ++m_values > maxValues) {
            fail(QStringLiteral("a broken string"));
            return {};
        }
    }
}

std::string WireReader::text()
{
    return take(m_reader.isString() || m_reader.isByteArray(), "a text") ? bytes<std::string>() : std::string();
}

template <typename T>
std::vector<T> WireReader::list()
{
    if (!take(m_reader.isByteArray(), "a byte string"))
        return {};
    auto content = bytes<std::vector<unsigned char>>();
    if constexpr (sizeof(T) == 1) {
        return content;
    } else {
        if (content.size() % sizeof(T) != 0)
            fail(QStringLiteral("expected numbers of %1 bytes").arg(sizeof(T)));
        std::vector<T> result(content.size() / sizeof(T));
        if (!result.empty()) // an empty vector may have no address
            qFromLittleEndian<T>(content.data(), static_cast<qsizetype>(result.size()), result.data());
        return result;
    }
}

Parameters WireReader::nested()
{
    Parameters result;
    if (!enter(QCborStreamReader::Array))
        return result;
    for (ParameterMap* target : {&result.arguments(), &result.options(), &result.attributes()}) {
        if (m_fault.isEmpty() && m_reader.hasNext())
            map(*target);
    }
    leave();
    return result;
}

std::vector<Parameters> WireReader::parameters()
{
    std::vector<Parameters> result;
    if (!enter(QCborStreamReader::Array))
        return result;
    while (m_fault.isEmpty() && m_reader.hasNext())
        result.push_back(nested());
    leave();
    return result;
}

bool WireReader::storeList(ParameterMap& target, const std::string& key)
{
    const auto tag = static_cast<quint64>(m_reader.toTag());
    m_reader.next();
    if (tag == typedArrayTag<unsigned char>)
        return target.insert(key, list<unsigned char>());
    if (tag == typedArrayTag<unsigned short>)
        return target.insert(key, list<unsigned short>());
    if (tag == typedArrayTag<unsigned long long>)
        return target.insert(key, list<unsigned long long>());
    fail(QStringLiteral("unknown tag %1").arg(tag));
    return true;
}

void WireReader::store(ParameterMap& target, const std::string& key)
{
    bool isNew = true;
    if (m_reader.isTag())
        isNew = storeList(target, key);
    else if (m_reader.isInteger())
        isNew = target.insert(
            key, static_cast<int>(integer(std::numeric_limits<int>::min(), std::numeric_limits<int>::max())));
    else if (m_reader.isBool())
        isNew = target.insert(key, flag());
    else if (m_reader.isString() || m_reader.isByteArray())
        isNew = target.insert(key, text());
    else if (m_reader.isArray())
        isNew = target.insert(key, parameters());
    else
        isNew = target.insert(key, real());
    if (!isNew)
        fail(QStringLiteral("key \"%1\" stands twice").arg(QString::fromStdString(key)));
}

void WireReader::skip()
{
    if (take(true, "") && !m_reader.next(maxContainers))
        fail(QStringLiteral("cut off, or nested too deeply"));
}

QString WireReader::fault()
{
    if (m_fault.isEmpty() && m_reader.currentOffset() != m_size)
        fail(QStringLiteral("bytes after the message"));
    return m_fault;
}

} // namespace Gateway
