#pragma once

#include <calibration/devicerecord.h>

#include <QMap>

namespace Calibration {

/// The record of a calibration under way: a file of JSON lines, the inputs first, then a line for every device that was
/// served. Lines are only ever appended, so whatever ends the process leaves all lines but perhaps the last whole.
class Journal
{
public:
    /// Begins a journal, replacing one that is there. Faults: cannot create; input/output.
    static Common::Result<Journal> begin(const QString& path, const QJsonObject& inputs);
    /// Reads a journal. Faults: no input; bad data for what is none.
    static Common::Result<Journal> read(const QString& path);

    const QJsonObject& inputs() const { return m_inputs; }
    /// The last record of every device.
    const QMap<QString, DeviceRecord>& records() const { return m_records; }

    /// Adds a record. Fault: input/output.
    Common::Result<void> append(const DeviceRecord& record);

private:
    Common::Result<void> addLine(const QJsonObject& object);

    QString m_path;
    QJsonObject m_inputs;
    QMap<QString, DeviceRecord> m_records;
    qint64 m_wholeBytes = 0; ///< up to the end of the last whole line
};

/// A gamut as the journal keeps it, with its coefficients left out, and back.
QJsonObject gamutToJson(const Model::ColorGamutInfo& gamut);
Model::ColorGamutInfo gamutFromJson(const QJsonObject& object);

} // namespace Calibration
