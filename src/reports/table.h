#pragma once

#include <QJsonArray>
#include <QJsonValue>
#include <QString>

#include <optional>
#include <vector>

namespace Reports {

/// A column of a table. One without a heading is in JSON only, one without a key in text and HTML only.
struct Column
{
    QString key;
    QString heading;
    QString unit = {}; ///< behind each cell's text, with a blank: "s"
};

/// One cell in both forms.
struct Cell
{
    Cell(const QString& both) : text(both), value(both) {}
    Cell(int number) : text(QString::number(number)), value(number) {}
    Cell(const QString& shown, const QJsonValue& kept) : text(shown), value(kept) {}

    QString text;
    QJsonValue value; ///< undefined: no member in JSON
};

/// A number with so many decimals in text, and whole in JSON.
Cell decimal(double number, int decimals);
/// The same of what may not be known: then "-", and no member in JSON.
Cell decimal(const std::optional<double>& number, int decimals);
/// A fraction as "95.37 %", and as it is in JSON.
Cell percent(double fraction);
/// A truth, with the words for both.
Cell flag(bool value, const QString& whenTrue, const QString& whenFalse);
/// An identifier as a number, or as a string where a JSON number would not be exact.
Cell identifier(unsigned long long number);

/// Rows that are shown as text, as JSON and as HTML.
class Table
{
public:
    explicit Table(std::vector<Column> columns) : m_columns(std::move(columns)) {}

    /// A cell for each column, in their order.
    void add(std::vector<Cell> row) { m_rows.push_back(std::move(row)); }
    bool isEmpty() const { return m_rows.empty(); }

    /// Each column as wide as its widest cell, two blanks between them, the headings underlined.
    QString toText() const;
    /// An object per row.
    QJsonArray toJson() const;
    /// A <table>, its texts escaped. Cells have the class "number" in a column of numbers, else "long" where a text
    /// may need more than one line.
    QString toHtml() const;

private:
    /// Whether each cell is a number in JSON, but for empty ones and dashes.
    bool holdsNumbers(std::size_t column) const;
    /// Headings, then rows, of the columns that have a heading.
    std::vector<std::vector<QString>> texts() const;

    std::vector<Column> m_columns;
    std::vector<std::vector<Cell>> m_rows;
};

} // namespace Reports
