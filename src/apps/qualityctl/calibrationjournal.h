#pragma once

#include "gamutfigures.h"
#include "sendstep.h"

#include <QMap>

/// What cabinets of a device held when it had been served; those that hold the same stand together.
struct HeldCorrection
{
    int cabinets = 0;
    Colour::Coefficients coefficients{};
    bool isOn = false; ///< whether the correction is switched on
};

/// What became of one device.
struct DeviceRecord
{
    QString device;
    std::vector<SendOutcome> outcomes;
    QList<HeldCorrection> held;

    /// Whether every cabinet holds everything.
    bool isDone() const;
};

/// The record of a calibration under way: a file of JSON lines, the inputs first, then a line for every device that was
/// served. Lines are only ever appended, so whatever ends the process leaves all lines but perhaps the last whole.
class CalibrationJournal
{
public:
    /// Begins a journal, replacing one that is there. Throws CommandError: cannot create, input/output.
    static CalibrationJournal begin(const QString& path, const QJsonObject& inputs);
    /// Reads a journal. Throws CommandError: no input; bad data for what is none.
    static CalibrationJournal read(const QString& path);

    const QJsonObject& inputs() const { return m_inputs; }
    /// The last record of every device.
    const QMap<QString, DeviceRecord>& records() const { return m_records; }

    /// Adds a record. Throws CommandError: input/output.
    void append(const DeviceRecord& record);

private:
    QString m_path;
    QJsonObject m_inputs;
    QMap<QString, DeviceRecord> m_records;
    qint64 m_wholeBytes = 0; ///< up to the end of the last whole line
};

/// A gamut as the journal keeps it, with its coefficients left out, and back.
QJsonObject gamutToJson(const Model::ColorGamutInfo& gamut);
Model::ColorGamutInfo gamutFromJson(const QJsonObject& object);
