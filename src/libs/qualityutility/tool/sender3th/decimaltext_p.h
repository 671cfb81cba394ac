#pragma once

#include <QList>
#include <QString>

#include <array>
#include <cstring>
#include <type_traits>

/// The decimal texts of 0 to 255, each with a comma behind it.
struct DecimalTable
{
    struct Entry
    {
        std::array<ushort, 4> characters;
        int length;
    };
    std::array<Entry, 256> entries{};

    constexpr DecimalTable()
    {
        for (int number = 0; number < 256; ++number) {
            Entry& entry = entries[static_cast<size_t>(number)];
            int length = 0;
            for (int power = 100; power > 0; power /= 10) {
                if (number >= power || power == 1)
                    entry.characters[static_cast<size_t>(length++)] = static_cast<ushort>('0' + number / power % 10);
            }
            entry.characters[static_cast<size_t>(length++)] = ',';
            entry.length = length;
        }
    }
};

/// The numbers of a list of bytes as decimal text, joined by commas without blanks; empty for an empty list.
template <typename T>
QString listToString(const QList<T>& list)
{
    static_assert(sizeof(T) == 1 && std::is_unsigned_v<T>, "numbers from 0 to 255");
    static constexpr DecimalTable table;
    constexpr int longest = 4;
    if (list.isEmpty())
        return {};
    QString text(list.size() * longest, Qt::Uninitialized);
    QChar* out = text.data();
    for (const T number : list) {
        const DecimalTable::Entry& entry = table.entries[number];
        std::memcpy(static_cast<void*>(out), entry.characters.data(),
                    sizeof(entry.characters)); // a fixed length copies fastest; what is too much is overwritten
        out += entry.length;
    }
    text.resize(static_cast<int>(out - text.data()) - 1); // less the last comma
    return text;
}
