#include "textfields.h"

#include <algorithm>

namespace Calibration {

namespace {

constexpr QLatin1Char quote('"');

/// Goes over the fields of one line.
class FieldCursor
{
public:
    FieldCursor(const QString& line, const FieldStyle& style) : m_line(line), m_style(style), m_end(line.size())
    {
        while (style.areRunsOne && m_end > 0 && line.at(m_end - 1).isSpace())
            --m_end;
        while (style.areRunsOne && m_at < m_end && line.at(m_at).isSpace())
            ++m_at;
    }

    int column() const { return m_at + 1; }
    bool isAtEnd() const { return m_at >= m_end; }
    bool isAtSeparator() const { return !isAtEnd() && m_style.separators.contains(m_line.at(m_at)); }

    void passBlanks()
    {
        while (!isAtEnd() && m_line.at(m_at).isSpace() && !isAtSeparator())
            ++m_at;
    }

    void passSeparators()
    {
        do
            ++m_at;
        while (m_style.areRunsOne && isAtSeparator());
    }

    bool isAtQuote() const { return m_style.areQuotesRead && !isAtEnd() && m_line.at(m_at) == quote; }

    QString plain()
    {
        const int begin = m_at;
        while (!isAtEnd() && !isAtSeparator())
            ++m_at;
        return m_line.mid(begin, m_at - begin).trimmed();
    }

    /// Nothing for a quote that is not closed.
    std::optional<QString> quoted()
    {
        QString text;
        for (++m_at; !isAtEnd(); ++m_at) {
            if (m_line.at(m_at) == quote && (++m_at >= m_end || m_line.at(m_at) != quote))
                return text;
            text += m_line.at(m_at);
        }
        return std::nullopt;
    }

private:
    const QString& m_line;
    const FieldStyle& m_style;
    int m_at = 0;
    int m_end;
};

} // namespace

FieldReader::FieldReader(const Input& input, int maxLineLength)
    : m_input(input), m_stream(input.bytes), m_maxLineLength(maxLineLength)
{
    m_stream.setCodec("UTF-8"); // whatever the process's locale is
}

Result<bool> FieldReader::next()
{
    while (!m_stream.atEnd()) {
        m_line = m_stream.readLine();
        ++m_number;
        const QString content = text();
        if (content.isEmpty() || content.startsWith(QLatin1Char('#')))
            continue;
        if (content.size() > m_maxLineLength)
            return Fault{Fault::Kind::BadData, place(), QStringLiteral("at most %1 characters").arg(m_maxLineLength),
                         QString::number(content.size())};
        return true;
    }
    return false;
}

Result<std::vector<Field>> FieldReader::fields(const FieldStyle& style) const
{
    std::vector<Field> fields;
    FieldCursor cursor(m_line, style);
    for (;; cursor.passSeparators()) {
        cursor.passBlanks();
        Field field{{}, cursor.column()};
        const auto text = cursor.isAtQuote() ? cursor.quoted() : cursor.plain();
        if (!text)
            return Fault{Fault::Kind::BadData, place(field), {}, QStringLiteral("a quote that is not closed")};
        field.text = *text;
        fields.push_back(field);
        cursor.passBlanks();
        if (cursor.isAtEnd())
            return fields;
        if (!cursor.isAtSeparator())
            return Fault{Fault::Kind::BadData, place({{}, cursor.column()}),
                         QStringLiteral("a separator behind the closing quote"), m_line.mid(cursor.column() - 1, 1)};
    }
}

QString FieldReader::place() const
{
    return QStringLiteral("%1, line %2").arg(m_input.subject(), QString::number(std::max(1, m_number)));
}

QString FieldReader::place(const Field& field) const
{
    return QStringLiteral("%1, column %2").arg(place(), QString::number(field.column));
}

} // namespace Calibration
