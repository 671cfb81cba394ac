#pragma once

#include <QByteArray>
#include <QList>

/// Appends the numbers of a gray table's text, one per line, as QByteArray::toUShort (toInt for the wider list)
/// converts each line: blanks around a number are passed over, and a line that does not convert is 0.
void appendGrayNumbers(const QByteArray& text, QList<unsigned short>& list);
void appendGrayNumbers(const QByteArray& text, QList<unsigned int>& list);
