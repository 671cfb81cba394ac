#include "table.h"

#include "markup_p.h"

#include <QJsonObject>

#include <algorithm>
#include <cmath>

namespace Reports {

namespace {

using Row = std::vector<QString>;

std::vector<int> widthsOf(const std::vector<Row>& rows)
{
    std::vector<int> widths(rows.front().size(), 0);
    for (const Row& row : rows) {
        for (std::size_t column = 0; column < row.size(); ++column)
            widths[column] = std::max(widths[column], row[column].size());
    }
    return widths;
}

QString lineOf(const Row& row, const std::vector<int>& widths)
{
    QString text;
    for (std::size_t column = 0; column < row.size(); ++column)
        text += row[column].leftJustified(widths[column]) + QStringLiteral("  ");
    while (text.endsWith(QLatin1Char(' ')))
        text.chop(1);
    return text + QLatin1Char('\n');
}

constexpr int longText = 24; // characters; what is longer is a sentence, a digest or a path

QString htmlRow(const Row& row, const std::vector<bool>& areNumbers, const QString& tag)
{
    QString html = QStringLiteral("<tr>");
    for (std::size_t column = 0; column < row.size(); ++column) {
        QString opening = tag;
        if (areNumbers[column])
            opening += QStringLiteral(" class=\"number\"");
        else if (row[column].size() > longText)
            opening += QStringLiteral(" class=\"long\"");
        html += QStringLiteral("<%1>%2</%3>").arg(opening, escaped(row[column]), tag.section(QLatin1Char(' '), 0, 0));
    }
    return html + QStringLiteral("</tr>\n");
}

} // namespace

Cell decimal(double number, int decimals)
{
    const bool isZero = std::abs(number) < std::pow(10.0, -decimals) / 2.0; // which has no sign
    return {QString::number(isZero ? 0.0 : number, 'f', decimals), number};
}

Cell decimal(const std::optional<double>& number, int decimals)
{
    return number ? decimal(*number, decimals) : Cell(QStringLiteral("-"), QJsonValue(QJsonValue::Undefined));
}

Cell percent(double fraction)
{
    return {QStringLiteral("%1 %").arg(100.0 * fraction, 0, 'f', 2), fraction};
}

Cell flag(bool value, const QString& whenTrue, const QString& whenFalse)
{
    return {value ? whenTrue : whenFalse, value};
}

Cell identifier(unsigned long long number)
{
    constexpr unsigned long long maxExact = 1ULL << 53;
    const QString text = QString::number(number);
    return {text, number <= maxExact ? QJsonValue(static_cast<double>(number)) : QJsonValue(text)};
}

bool Table::holdsNumbers(std::size_t column) const
{
    bool hasOne = false;
    for (const auto& row : m_rows) {
        const Cell& cell = row.at(column);
        hasOne = hasOne || cell.value.isDouble();
        if (!cell.value.isDouble() && !cell.text.isEmpty() && cell.text != QLatin1String("-"))
            return false;
    }
    return hasOne;
}

std::vector<Row> Table::texts() const
{
    std::vector<Row> result(m_rows.size() + 1);
    for (std::size_t column = 0; column < m_columns.size(); ++column) {
        const Column& shown = m_columns[column];
        if (shown.heading.isEmpty())
            continue;
        const QString unit = shown.unit.isEmpty() ? QString() : QLatin1Char(' ') + shown.unit;
        result.front().push_back(shown.heading);
        for (std::size_t row = 0; row < m_rows.size(); ++row)
            result[row + 1].push_back(m_rows[row].at(column).text + unit);
    }
    return result;
}

QString Table::toText() const
{
    const auto rows = texts();
    const auto widths = widthsOf(rows);
    Row rules;
    for (const int width : widths)
        rules.push_back(QString(width, QLatin1Char('-')));
    QString text = lineOf(rows.front(), widths) + lineOf(rules, widths);
    for (std::size_t row = 1; row < rows.size(); ++row)
        text += lineOf(rows[row], widths);
    return text;
}

QJsonArray Table::toJson() const
{
    QJsonArray array;
    for (const auto& row : m_rows) {
        QJsonObject object;
        for (std::size_t column = 0; column < m_columns.size(); ++column) {
            if (!m_columns[column].key.isEmpty() && !row.at(column).value.isUndefined())
                object.insert(m_columns[column].key, row.at(column).value);
        }
        array.append(object);
    }
    return array;
}

QString Table::toHtml() const
{
    const auto rows = texts();
    std::vector<bool> areNumbers;
    for (std::size_t column = 0; column < m_columns.size(); ++column) {
        if (!m_columns[column].heading.isEmpty())
            areNumbers.push_back(holdsNumbers(column));
    }
    QString html = QStringLiteral("<table>\n<thead>\n") +
                   htmlRow(rows.front(), areNumbers, QStringLiteral("th scope=\"col\"")) +
                   QStringLiteral("</thead>\n<tbody>\n");
    for (std::size_t row = 1; row < rows.size(); ++row)
        html += htmlRow(rows[row], areNumbers, QStringLiteral("td"));
    return html + QStringLiteral("</tbody>\n</table>\n");
}

} // namespace Reports
