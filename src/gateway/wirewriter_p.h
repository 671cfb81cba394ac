#pragma once

#include <suite/action/parameters.h>

#include <QBuffer>
#include <QByteArray>
#include <QCborStreamWriter>
#include <QString>

namespace Gateway {

/// Nested parameters may be this deep: more than any action has, less than a stack minds.
inline constexpr int maxDepth = 8;

/// Writes one message as a frame: values keep their types, see docs/device-gateway.md.
class WireWriter
{
public:
    /// A message of `count` members, which follow as key and value.
    explicit WireWriter(quint64 count);

    void key(const char* name) { m_writer.append(QLatin1String(name)); }
    void integer(qint64 value) { m_writer.append(value); }
    void flag(bool value) { m_writer.append(value); }
    /// Text, or bytes where it is no UTF-8.
    void text(const std::string& text);
    void map(const ParameterMap& map);

    /// Why it cannot be sent; empty when it can.
    const QString& fault() const { return m_fault; }
    /// The frame, header included; to be called once, at the end.
    QByteArray take();

private:
    template <typename T>
    void list(const std::vector<T>& list);
    void list(const std::vector<Parameters>& list);
    bool value(const boost::any& value);
    template <typename T>
    bool tryList(const boost::any& value);

    QByteArray m_frame;
    QBuffer m_buffer; ///< writes behind the header
    QCborStreamWriter m_writer;
    int m_depth = 0;
    QString m_fault;
};

} // namespace Gateway
