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

    QString kind;                  ///< of the file, for people: "CGATS readings"
    Model::ColorGamutInfo gamut;   ///< the means; called as the file is where that gives no name
    PatchTable patches;            ///< a document's points count as one reading each
    QString instrument;            ///< empty where the file does not say
    QString observer;              ///< "1931_2"; empty where the file does not say
    QString date;                  ///< as the file writes it; empty where it does not
    std::vector<Keyword> keywords; ///< of a CGATS file, all of them
    QStringList notes;             ///< how figures were understood, a sentence each
};

/// Reads a measured gamut: the readings of a CGATS file (.ti3) or of a CSV file, a gamut in JSON, or the measured gamut
/// of a NICC document. The content tells which, not the name. Readings of one patch are averaged in XYZ; black is
/// reported and not subtracted. docs/measurements.md has the formats. Fault: bad data, with line and column; in JSON
/// with the path.
Result<Measurement> parseMeasurement(const Input& input);

} // namespace Calibration
