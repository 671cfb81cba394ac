#include "graytable.h"

#include <QRegularExpression>
#include <QStringList>
#include <QTextStream>

#include <algorithm>

namespace Calibration {

namespace {

constexpr std::size_t maxLevels = 65536;
constexpr int maxLineLength = 1024;
constexpr int columnCount = 4;

Fault refusal(const QString& subject, const QString& expected, const QString& found)
{
    return {Fault::Kind::BadData, subject, expected, found};
}

/// A first line without any number.
bool isHeading(const QStringList& columns)
{
    return std::none_of(columns.begin(), columns.end(), [](const QString& column) {
        bool isNumber = false;
        QString(column).remove(QLatin1Char('"')).toDouble(&isNumber);
        return isNumber;
    });
}

Result<void> addLevel(const QStringList& columns, const QString& place, Action::GrayTable& table)
{
    if (columns.size() != columnCount)
        return refusal(place, QStringLiteral("4 columns (red, green, blue, magnitude)"),
                       QString::number(columns.size()));
    std::vector<unsigned char>* const lists[] = {&table.red, &table.green, &table.blue, &table.magnitude};
    for (int column = 0; column < columnCount; ++column) {
        bool converted = false;
        const int value = columns.at(column).toInt(&converted, 10);
        if (!converted || value < 0 || value > 255)
            return refusal(place, QStringLiteral("an integer from 0 to 255"),
                           QStringLiteral("\"%1\"").arg(columns.at(column)));
        lists[column]->push_back(static_cast<unsigned char>(value));
    }
    if (table.red.size() > maxLevels)
        return refusal(place, {}, QStringLiteral("more than %1 gray levels").arg(maxLevels));
    return {};
}

} // namespace

Result<Action::GrayTable> parseGrayTable(const Input& input, int frequency)
{
    static const QRegularExpression separators(QStringLiteral("[,;\\s]+"));
    Action::GrayTable table;
    table.freq = frequency;
    QTextStream stream(input.bytes);
    bool isFirst = true;
    for (int number = 1; !stream.atEnd(); ++number) {
        const QString line = stream.readLine().trimmed();
        if (line.isEmpty() || line.startsWith(QLatin1Char('#')))
            continue;
        const QString place = QStringLiteral("%1, line %2").arg(input.subject(), QString::number(number));
        if (line.size() > maxLineLength)
            return refusal(place, QStringLiteral("at most %1 characters").arg(maxLineLength),
                           QString::number(line.size()));
        const QStringList columns = line.split(separators);
        const bool isSkipped = isFirst && isHeading(columns);
        isFirst = false;
        const auto added = isSkipped ? Result<void>() : addLevel(columns, place, table);
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
