#include "frame.h"
#include "typedarray_p.h"
#include "wirewriter_p.h"

#include <QTextCodec>
#include <QtEndian>

#include <algorithm>

namespace Gateway {

namespace {

bool isUtf8(const std::string& text)
{
    if (std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; }))
        return true;
    QTextCodec::ConverterState state(QTextCodec::IgnoreHeader);
    QTextCodec::codecForName("UTF-8")->toUnicode(text.data(), static_cast<int>(text.size()), &state);
    return state.invalidChars == 0 && state.remainingChars == 0;
}

} // namespace

WireWriter::WireWriter(quint64 count) : m_frame(headerLength, '\0'), m_buffer(&m_frame), m_writer(&m_buffer)
{
    m_buffer.open(QIODevice::WriteOnly | QIODevice::Append);
    m_writer.startMap(count);
}

void WireWriter::text(const std::string& text)
{
    if (isUtf8(text))
        m_writer.appendTextString(text.data(), static_cast<qsizetype>(text.size()));
    else
        m_writer.appendByteString(text.data(), static_cast<qsizetype>(text.size()));
}

template <typename T>
void WireWriter::list(const std::vector<T>& list)
{
    m_writer.append(static_cast<QCborTag>(typedArrayTag<T>));
    const auto size = static_cast<qsizetype>(list.size() * sizeof(T));
    if (list.empty()) { // an empty vector may have no address
        m_writer.appendByteString("", 0);
    } else if constexpr (sizeof(T) == 1) {
        m_writer.appendByteString(reinterpret_cast<const char*>(list.data()), size);
    } else {
        std::vector<char> bytes(static_cast<std::size_t>(size));
        qToLittleEndian<T>(list.data(), static_cast<qsizetype>(list.size()), bytes.data());
        m_writer.appendByteString(bytes.data(), size);
    }
}

void WireWriter::list(const std::vector<Parameters>& list)
{
    m_writer.startArray(list.size());
    for (const Parameters& entry : list) {
        const ParameterMap* const maps[] = {&entry.arguments(), &entry.options(), &entry.attributes()};
        quint64 count = std::size(maps);
        while (count > 0 && maps[count - 1]->items().empty())
            --count;
        m_writer.startArray(count);
        for (quint64 i = 0; i < count; ++i)
            map(*maps[i]);
        m_writer.endArray();
    }
    m_writer.endArray();
}

template <typename T>
bool WireWriter::tryList(const boost::any& value)
{
    const auto* found = boost::any_cast<std::vector<T>>(&value);
    if (found)
        list(*found);
    return found != nullptr;
}

bool WireWriter::value(const boost::any& value)
{
    if (const auto* number = boost::any_cast<int>(&value))
        integer(*number);
    else if (const auto* isSet = boost::any_cast<bool>(&value))
        flag(*isSet);
    else if (const auto* real = boost::any_cast<double>(&value))
        m_writer.append(*real);
    else if (const auto* string = boost::any_cast<std::string>(&value))
        text(*string);
    else
        return tryList<unsigned long long>(value) || tryList<unsigned char>(value) || tryList<unsigned short>(value) ||
               tryList<Parameters>(value);
    return true;
}

void WireWriter::map(const ParameterMap& map)
{
    if (++m_depth > maxDepth) {
        m_fault = QStringLiteral("parameters are nested more than %1 deep").arg(maxDepth);
        m_writer.append(nullptr);
        --m_depth;
        return;
    }
    m_writer.startMap(map.items().size());
    for (const auto& [key, any] : map.items()) {
        text(key);
        if (value(any))
            continue;
        m_writer.append(nullptr);
        m_fault = QStringLiteral("key \"%1\" is of a type that does not travel").arg(QString::fromStdString(key));
    }
    m_writer.endMap();
    --m_depth;
}

QByteArray WireWriter::take()
{
    if (!m_fault.isEmpty())
        return {};
    m_writer.endMap();
    m_buffer.close();
    const int length = m_frame.size() - headerLength;
    if (length > maxPayload) {
        m_fault = QStringLiteral("%1 bytes are more than the %2 of a frame").arg(length).arg(maxPayload);
        return {};
    }
    qToLittleEndian(static_cast<quint32>(length), m_frame.data());
    return std::move(m_frame);
}

} // namespace Gateway
