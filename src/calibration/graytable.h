#pragma once

#include <calibration/input.h>
#include <suite/action/cabinetreader.h>

namespace Calibration {

/// The largest file of a gray table.
inline constexpr qint64 maxTableBytes = qint64{16} * 1024 * 1024;

/// Reads a gray table as text or CSV: red, green, blue and magnitude, 0..255 each, separated by comma, semicolon or
/// blanks, a line per gray level; empty lines, lines that begin with # and a heading in the first line are passed over.
/// At most 65,536 levels and 1,024 characters a line. The frequency is `frequency`, in Hz. Fault: bad data, with the
/// line.
Result<Action::GrayTable> parseGrayTable(const Input& input, int frequency);

/// A gray table with the file that it was read from.
struct GrayTableFile
{
    Input file;
    Action::GrayTable table;
};

/// Reads and parses a gray table's file. Faults: as readInput() and parseGrayTable().
Result<GrayTableFile> readGrayTable(const QString& name, int frequency);

} // namespace Calibration
