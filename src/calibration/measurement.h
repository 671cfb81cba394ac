#pragma once

#include <calibration/readings.h>
#include <suite/model/colorgamutinfo.h>

#include <QStringList>

namespace Calibration {

/// A measured gamut with what its file says of the measuring.
struct Measurement
{
    /// A keyword of a file, with its value.
    struct Keyword
    {
        QString name;
        QString value;
    };

    ReadingGroup group; ///< of a file that says where it was read; empty for another
    QString kind;       ///< of the file, for people: "CGATS readings"
    /// The means; called as the file is where that gives no name. Luminances are 0 where they are not known in cd/m2.
    Model::ColorGamutInfo gamut;
    /// As they were read, luminances too where they are relative to white's. A document's points count as one reading
    /// each; what was typed has none.
    PatchTable patches;
    QString instrument;              ///< empty where the file does not say
    QString observer;                ///< "1931_2"; empty where the file does not say
    QString date;                    ///< as the file writes it; empty where it does not
    std::vector<Keyword> keywords;   ///< of a CGATS file, all of them
    QStringList notes;               ///< how figures were understood, a sentence each
    QString subject;                 ///< how messages about it begin
    std::optional<InputDigest> file; ///< none: the gamut was typed or named

    /// How its colours are known: "measured", or "given" where there is no file.
    QString known() const;
};

/// Reads a measured gamut: the readings of a CGATS file (.ti3) or of a CSV file, a gamut in JSON, or the measured gamut
/// of a NICC document. The content tells which, not the name. Readings of one patch are averaged in XYZ; black is
/// reported and not subtracted. docs/measurements.md has the formats. Fault: bad data, with line and column; in JSON
/// with the path; a file with several gamuts.
Result<Measurement> parseMeasurement(const Input& input);

/// Reads the measured gamuts of a file that may hold several: readings with columns for device, cabinets and group, or
/// groups in JSON. Fault: as parseMeasurement().
Result<std::vector<Measurement>> parseMeasurements(const Input& input);

/// Reads a measured gamut as a user gives it, PRIMARIES[:WHITE][:CD_M2] (parseGamutRequest()): a file, a standard
/// gamut, or rx,ry:gx,gy:bx,by:wx,wy. The luminance is white's: of a file it gives the one that is missing there, else
/// red, green and blue get those that add up to it. Faults: no input for a name or file that does not exist; bad data
/// for what makes no gamut, or a luminance that contradicts the file's.
Result<Measurement> readMeasured(const QString& text);

/// The gamut that a file gives a target: of a NICC document its target, else as parseMeasurement().
Result<Model::ColorGamutInfo> parseTargetGamut(const Input& input);

} // namespace Calibration
