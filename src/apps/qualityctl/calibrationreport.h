#pragma once

#include "calibrationjournal.h"

/// What a calibration comes to, in the order of its devices.
struct CalibrationReport
{
    QString target; ///< the wall or hub
    GamutFigures figures;
    std::vector<DeviceRecord> records;
    QStringList resumed; ///< devices that an earlier run had served
    QStringList files;   ///< written, with their paths

    /// Those of all devices.
    std::vector<SendOutcome> outcomes() const;
};

QString toText(const CalibrationReport& report);
QJsonObject toJson(const CalibrationReport& report);
/// A self-contained HTML document; `charts` are SVG documents.
QByteArray toHtml(const CalibrationReport& report, const QList<QByteArray>& charts);
