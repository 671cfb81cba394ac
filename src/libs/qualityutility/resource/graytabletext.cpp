#include "graytabletext_p.h"

#include <cstring>

namespace {

/// How a line is converted when it is not plain digits.
unsigned short convert(const QByteArray& line, unsigned short)
{
    return line.toUShort(nullptr, 10);
}

unsigned int convert(const QByteArray& line, unsigned int)
{
    return static_cast<unsigned int>(line.toInt(nullptr, 10));
}

/// Reads a line of one to four digits, which is every number of most tables, and of five where that is safe for the
/// type: the result is then the same as by convert(). Anything else is left to it.
template <typename T>
bool readDigits(const char* begin, const char* end, T& number)
{
    constexpr int maxDigits = sizeof(T) == sizeof(unsigned short) ? 5 : 9;
    if (begin == end || end - begin > maxDigits)
        return false;
    unsigned int value = 0;
    for (const char* c = begin; c != end; ++c) {
        const unsigned int digit = static_cast<unsigned int>(*c - '0');
        if (digit > 9)
            return false;
        value = value * 10 + digit;
    }
    number = static_cast<T>(value);
    return number == value; // a 16-bit number that is too large goes the slow way, to 0
}

template <typename T>
void append(const QByteArray& text, QList<T>& list)
{
    list.reserve(list.size() + text.count('\n') + 1);
    const char* const end = text.constData() + text.size();
    for (const char* line = text.constData(); line != end;) {
        const auto* feed = static_cast<const char*>(std::memchr(line, '\n', static_cast<size_t>(end - line)));
        const char* const lineEnd = feed ? feed : end;
        T number = 0;
        if (!readDigits(line, lineEnd, number))
            number = convert(QByteArray(line, static_cast<int>(lineEnd - line)), T());
        list.append(number);
        line = feed ? feed + 1 : end;
    }
}

} // namespace

void appendGrayNumbers(const QByteArray& text, QList<unsigned short>& list)
{
    append(text, list);
}

void appendGrayNumbers(const QByteArray& text, QList<unsigned int>& list)
{
    append(text, list);
}
