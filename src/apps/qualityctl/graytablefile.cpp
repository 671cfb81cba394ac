#include "graytablefile.h"

#include "inputfile.h"
#include "output.h"

#include <QRegularExpression>
#include <QStringList>
#include <QTextStream>

#include <algorithm>

namespace {

constexpr int maxLevels = 65536;
constexpr int maxLineLength = 1024;
constexpr qint64 maxTableBytes = qint64{16} * 1024 * 1024;

unsigned char readByte(const QString& text, const QString& place)
{
    bool converted = false;
    const int value = text.toInt(&converted, 10);
    if (!converted || value < 0 || value > 255)
        throw CommandError{ExitCode::BadData,
                           QStringLiteral("%1: expected an integer from 0 to 255, found \"%2\"").arg(place, text)};
    return static_cast<unsigned char>(value);
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

} // namespace

GrayTableFile readGrayTable(const QString& path)
{
    static const QRegularExpression separators(QStringLiteral("[,;\\s]+"));
    GrayTableFile table;
    QTextStream stream(readInputFile(path, QStringLiteral("gray table"), maxTableBytes));
    bool isFirst = true;
    for (int number = 1; !stream.atEnd(); ++number) {
        const QString line = stream.readLine().trimmed();
        if (line.isEmpty() || line.startsWith(QLatin1Char('#')))
            continue;
        const QString place = QStringLiteral("gray table %1, line %2").arg(path, QString::number(number));
        if (line.size() > maxLineLength)
            throw CommandError{ExitCode::BadData,
                               QStringLiteral("%1: expected at most %2 characters, found %3")
                                   .arg(place, QString::number(maxLineLength), QString::number(line.size()))};
        const QStringList columns = line.split(separators);
        const bool skipped = isFirst && isHeading(columns);
        isFirst = false;
        if (skipped)
            continue;
        if (columns.size() != 4)
            throw CommandError{ExitCode::BadData,
                               QStringLiteral("%1: expected 4 columns (red, green, blue, magnitude), found %2")
                                   .arg(place, QString::number(columns.size()))};
        QList<unsigned char>* const lists[] = {&table.red, &table.green, &table.blue, &table.magnitude};
        for (int column = 0; column < 4; ++column)
            lists[column]->append(readByte(columns.at(column), place));
        if (table.red.size() > maxLevels)
            throw CommandError{ExitCode::BadData,
                               QStringLiteral("%1: more than %2 gray levels").arg(place, QString::number(maxLevels))};
    }
    if (table.red.isEmpty())
        throw CommandError{ExitCode::BadData, QStringLiteral("gray table %1: no gray levels").arg(path)};
    return table;
}
