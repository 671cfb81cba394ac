#include "settingstext_p.h"

#include <QTextCodec>

#include <algorithm>

namespace {

bool isLineEnd(char c)
{
    return c == '\r' || c == '\n';
}

/// What may stand around a name or a value.
bool isPadding(char c)
{
    return c == ' ' || c == '\t';
}

bool isBlank(char c)
{
    return isPadding(c) || isLineEnd(c);
}

/// The lines of an INI file as QSettings finds them: blank lines and comments are passed over, quotations and escaped
/// line ends go on, and a ";" after something ends a line as a line end does.
class IniLines
{
public:
    explicit IniLines(const QByteArray& text) : m_text(text)
    {
        if (text.startsWith("\xEF\xBB\xBF"))
            m_end = 3;
    }

    /// Goes to the next line. False at the end.
    bool next();

    int begin() const { return m_begin; }
    int end() const { return m_end; }
    /// The line's first "=" outside of quotations; -1 for none.
    int equals() const { return m_equals; }
    /// Whether the text ended before the last line did.
    bool isOpen() const { return m_isOpen; }

private:
    void skipBlanksAndComments();
    int escapedEnd(int backslash);

    const QByteArray& m_text;
    int m_begin = 0;
    int m_end = 0;
    int m_equals = -1;
    bool m_isOpen = false;
};

bool IniLines::next()
{
    skipBlanksAndComments();
    m_equals = -1;
    bool isQuoted = false;
    int i = m_begin;
    while (i < m_text.size()) {
        const char c = m_text.at(i);
        if (!isQuoted && (isLineEnd(c) || c == ';'))
            break;
        if (c == '"')
            isQuoted = !isQuoted;
        else if (c == '=' && !isQuoted && m_equals < 0)
            m_equals = i;
        i = c == '\\' ? escapedEnd(i) : i + 1;
    }
    m_isOpen = m_isOpen || isQuoted; // still quoted: no line end was found
    m_end = i;
    return m_end > m_begin;
}

void IniLines::skipBlanksAndComments()
{
    const auto skip = [this](const auto& isPassed) {
        while (m_begin < m_text.size() && isPassed(m_text.at(m_begin)))
            ++m_begin;
    };
    m_begin = m_end;
    skip(isBlank);
    while (m_begin < m_text.size() && m_text.at(m_begin) == ';') {
        skip([](char c) { return !isLineEnd(c); });
        skip(isBlank);
    }
}

/// Behind a backslash and what it escapes: a line end of two characters counts as one.
int IniLines::escapedEnd(int backslash)
{
    const int escaped = backslash + 1;
    if (escaped < m_text.size() && !isLineEnd(m_text.at(escaped)))
        return escaped + 1;
    const int after = qMin(escaped + 1, m_text.size());
    const bool isPair = after < m_text.size() && isLineEnd(m_text.at(after)) && m_text.at(escaped) != m_text.at(after);
    const int end = isPair ? after + 1 : after;
    m_isOpen = end == m_text.size(); // what is added there belongs to this line
    return end;
}

/// A name as QSettings reads it: "\" is "/", "%41" and "%U0041" are characters by their number.
QString unescapedName(const QByteArray& name)
{
    QString result;
    for (int i = 0; i < name.size(); ++i) {
        const bool isWide = i + 1 < name.size() && name.at(i + 1) == 'U';
        const QByteArray number = name.mid(isWide ? i + 2 : i + 1, isWide ? 4 : 2);
        bool isNumber = false;
        const int code = number.toInt(&isNumber, 16);
        if (name.at(i) == '%' && isNumber && number.size() == (isWide ? 4 : 2)) {
            result += QChar(code);
            i += isWide ? 5 : 2;
        } else {
            result += name.at(i) == '\\' ? QLatin1Char('/') : QLatin1Char(name.at(i));
        }
    }
    return result;
}

QString groupOf(const QByteArray& heading)
{
    const int bracket = heading.indexOf(']');
    return unescapedName(heading.mid(1, bracket < 0 ? -1 : bracket - 1).trimmed());
}

QString nameOf(QByteArray name)
{
    while (!name.isEmpty() && isPadding(name.back()))
        name.chop(1);
    return unescapedName(name);
}

bool isHexDigit(char16_t c)
{
    return (c >= u'0' && c <= u'9') || (c >= u'a' && c <= u'f') || (c >= u'A' && c <= u'F');
}

/// A character's bytes; none where the codec lacks it, or where a byte could be read as one of the file's own.
QByteArray encodedCharacter(QChar c, const QTextCodec* codec)
{
    if (!codec) // Qt without its codecs
        return {};
    const QByteArray bytes = codec->fromUnicode(QString(c));
    const bool isSafe = std::all_of(bytes.begin(), bytes.end(), [](char b) { return (b & 0x80) != 0; });
    return isSafe && !bytes.isEmpty() && codec->toUnicode(bytes) == c ? bytes : QByteArray();
}

QByteArray encodedValue(const QString& value, const QTextCodec* codec)
{
    QByteArray result;
    bool isAfterNumber = false; // where a hexadecimal digit would go on
    for (const QChar c : value.startsWith(QLatin1Char('@')) ? QLatin1Char('@') + value : value) {
        const char16_t code = c.unicode();
        const bool isPlain = code >= 0x20 && code < 0x7F && !(isAfterNumber && isHexDigit(code));
        const QByteArray bytes = isPlain ? QByteArray(1, static_cast<char>(code)) : encodedCharacter(c, codec);
        isAfterNumber = bytes.isEmpty();
        if (code == '"' || code == '\\')
            result += '\\';
        result += isAfterNumber ? "\\x" + QByteArray::number(code, 16) : bytes;
    }
    const auto isSpecial = [](char b) { return b == ';' || b == ',' || b == '='; };
    const bool isQuoted = result.startsWith(' ') || result.endsWith(' ') || value.endsWith(QLatin1Char('\t')) ||
                          std::any_of(result.begin(), result.end(), isSpecial);
    return isQuoted ? '"' + result + '"' : result;
}

/// Where a new line goes below a heading that ends at `end`; -1 where that is the end of a text without a line end.
int lineBelow(const QByteArray& text, int end)
{
    while (end < text.size() && !isLineEnd(text.at(end))) // a comment
        ++end;
    if (end == text.size())
        return -1;
    return text.mid(end, 2) == "\r\n" ? end + 2 : end + 1;
}

/// Where a key stands in a text, and where its group.
struct Place
{
    int valueBegin = -1; ///< -1: nowhere
    int valueEnd = -1;
    int headingEnd = -1; ///< -1: there is no such group
    bool isTextOpen = false;
};

Place placeOf(const SettingsKey& key, const QByteArray& text)
{
    Place place;
    bool isInGroup = false;
    IniLines lines(text);
    while (lines.next()) {
        const auto part = [&](int end) { return text.mid(lines.begin(), end - lines.begin()); };
        if (text.at(lines.begin()) == '[') {
            isInGroup = groupOf(part(lines.end())) == key.group;
            place.headingEnd = isInGroup ? lines.end() : place.headingEnd;
        } else if (isInGroup && lines.equals() >= 0 && nameOf(part(lines.equals())) == key.name) {
            place.valueBegin = lines.equals() + 1;
            place.valueEnd = lines.end();
        }
    }
    while (place.valueBegin < place.valueEnd && isPadding(text.at(place.valueBegin)))
        ++place.valueBegin;
    while (place.valueBegin < place.valueEnd && isPadding(text.at(place.valueEnd - 1)))
        --place.valueEnd;
    place.isTextOpen = lines.isOpen();
    return place;
}

} // namespace

std::optional<QByteArray> withSetting(const QByteArray& text, const SettingsKey& key, const QString& value,
                                      const QTextCodec* codec)
{
    const Place place = placeOf(key, text);
    const QByteArray encoded = encodedValue(value, codec);
    if (place.valueBegin >= 0)
        return text.left(place.valueBegin) + encoded + text.mid(place.valueEnd);

    const QByteArray lineEnd = text.contains("\r\n") ? "\r\n" : "\n";
    const QByteArray line = key.name.toLatin1() + '=' + encoded + lineEnd;
    const int below = place.headingEnd >= 0 ? lineBelow(text, place.headingEnd) : -1;
    if (below >= 0)
        return text.left(below) + line + text.mid(below);
    if (place.isTextOpen)
        return std::nullopt;
    const QByteArray before = text.isEmpty() || isLineEnd(text.back()) ? text : text + lineEnd;
    if (place.headingEnd >= 0)
        return before + line;
    return before + (text.isEmpty() ? "" : lineEnd) + '[' + key.group.toLatin1() + ']' + lineEnd + line;
}
