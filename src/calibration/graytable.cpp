#include "graytable.h"

#include <calibration/textfields.h>

#include <algorithm>

namespace Calibration {

namespace {

constexpr std::size_t maxLevels = 65536;
constexpr int maxLineLength = 1024;
constexpr std::size_t columnCount = 4;

Fault refusal(const QString& subject, const QString& expected, const QString& found)
{
    return {Fault::Kind::BadData, subject, expected, found};
}

/// A first line without any number.
bool isHeading(const std::vector<Field>& columns)
{
    return std::none_of(columns.begin(), columns.end(), [](const Field& column) {
        bool isNumber = false;
        QString(column.text).remove(QLatin1Char('"')).toDouble(&isNumber);
        return isNumber;
    });
}

Result<void> addLevel(const std::vector<Field>& columns, const QString& place, Action::GrayTable& table)
{
    if (columns.size() != columnCount)
        return refusal(place, QStringLiteral("4 columns (red, green, blue, magnitude)"),
                       QString::number(columns.size()));
    std::vector<unsigned char>* const lists[] = {&table.red, &table.green, &table.blue, &table.magnitude};
    for (std::size_t column = 0; column < columnCount; ++column) {
        const QString& text = columns[column].text;
        bool converted = false;
        const int value = text.toInt(&converted, 10);
        if (!converted || value < 0 || value > 255)
            return refusal(place, QStringLiteral("an integer from 0 to 255"), QStringLiteral("\"%1\"").arg(text));
        lists[column]->push_back(static_cast<unsigned char>(value));
    }
    if (table.red.size() > maxLevels)
        return refusal(place, {}, QStringLiteral("more than %1 gray levels").arg(maxLevels));
    return {};
}

} // namespace

Result<Action::GrayTable> parseGrayTable(const Input& input, int frequency)
{
    const FieldStyle style{QStringLiteral(",; \t\v\f\r"), true, false};
    Action::GrayTable table;
    table.freq = frequency;
    FieldReader reader(input, maxLineLength);
    for (bool isFirst = true;; isFirst = false) {
        const auto hasLine = reader.next();
        if (!hasLine)
            return hasLine.fault();
        if (!*hasLine)
            break;
        const auto columns = reader.fields(style);
        if (!columns)
            return columns.fault();
        if (isFirst && isHeading(*columns))
            continue;
        const auto added = addLevel(*columns, reader.place(), table);
        if (!added)
            return added.fault();
    }
    if (table.red.empty())
        return refusal(input.subject(), {}, QStringLiteral("no gray levels"));
    return table;
}

Result<GrayTableFile> readGrayTable(const QString& name, int frequency)
{
    const auto input = readInput(name, QStringLiteral("gray table"), maxTableBytes);
    if (!input)
        return input.fault();
    const auto table = parseGrayTable(*input, frequency);
    if (!table)
        return table.fault();
    return GrayTableFile{*input, *table};
}

} // namespace Calibration
