#pragma once

#include <calibration/known.h>
#include <calibration/step.h>
#include <suite/colour/correction.h>

#include <QJsonObject>
#include <QList>

namespace Calibration {

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
    std::vector<Outcome> outcomes;
    QList<HeldCorrection> held;
    Known known = Known::Computed; ///< how `held` is; nothing better than computed while nothing was sent

    /// Whether every cabinet holds everything.
    bool isDone() const;
};

/// "1 cabinet", "36 cabinets"
QString cabinetsText(int count);

/// As the journal keeps a record, and back; what is missing there is 0 or empty, and acknowledged.
QJsonObject toJson(const DeviceRecord& record);
DeviceRecord recordFromJson(const QJsonObject& object);

} // namespace Calibration
