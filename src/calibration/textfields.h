#pragma once

#include <calibration/input.h>

#include <QTextStream>

#include <vector>

namespace Calibration {

/// What stands between the fields of a line, and around them.
struct FieldStyle
{
    QString separators;         ///< each of these characters parts two fields
    bool areRunsOne = false;    ///< several in a row part two fields only, as blanks do
    bool areQuotesRead = false; ///< "a field" may hold separators, and a quote as ""
};

/// A field of a line, without quotes and the blanks around it.
struct Field
{
    QString text;
    int column = 0; ///< of its first character, from 1
};

/// Reads text as lines of fields: tables of measurements and gray tables alike. The text is UTF-8; empty lines and
/// lines that begin with # are passed over.
class FieldReader
{
public:
    /// `input` must outlive the reader. A line of more than `maxLineLength` characters is refused.
    FieldReader(const Input& input, int maxLineLength);

    /// Goes to the next line that holds something; false at the end. Fault: bad data for a line that is too long.
    Result<bool> next();

    /// The line without the blanks around it.
    QString text() const { return m_line.trimmed(); }
    /// The line's fields. Fault: bad data for a quote that is not closed in its line, or that is followed by more.
    Result<std::vector<Field>> fields(const FieldStyle& style) const;

    /// The line's number, from 1; behind the end that of the last.
    int number() const { return m_number; }
    /// "gray table x.csv, line 3", for messages.
    QString place() const;
    /// "measurement x.ti3, line 3, column 12".
    QString place(const Field& field) const;
    /// The begin of the line, or of an empty text.
    QString begin() const { return place(Field{{}, 1}); }

private:
    const Input& m_input;
    QTextStream m_stream;
    QString m_line;
    int m_maxLineLength;
    int m_number = 0;
};

} // namespace Calibration
