#pragma once

#include <QList>
#include <QString>

/// A gray-scale table as text: four columns, each 0..255, one line per gray level.
struct GrayTableFile
{
    QList<unsigned char> red;
    QList<unsigned char> green;
    QList<unsigned char> blue;
    QList<unsigned char> magnitude;
};

/// Reads a table of text or CSV: red, green, blue and magnitude, separated by comma, semicolon or blanks; empty lines,
/// lines that begin with # and a heading in the first line are passed over. At most 65,536 levels, 1,024 characters a
/// line and 16 MiB. Throws CommandError: no input, or bad data with the line.
GrayTableFile readGrayTable(const QString& path);
