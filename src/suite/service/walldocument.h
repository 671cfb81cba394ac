#pragma once

#include <suite/common/result.h>
#include <suite/service/modelservice.h>

#include <QJsonObject>
#include <QString>

#include <optional>

namespace Service {

/// One device of a wall document.
struct WallDevice
{
    DeviceEntry entry; ///< as setDevices() takes it
    /// The member "simulation" as it stands, empty when absent: for a simulator to read, nothing to the registry.
    QJsonObject simulation;
};

/// Devices in the document's order.
using Wall = std::vector<WallDevice>;

/// The largest wall document.
inline constexpr qint64 maxWallBytes = qint64{32} * 1024 * 1024;

/// Reads a wall document that has been loaded; `name` is what messages call it. Fault: bad data, with the place.
SUITE_SERVICE_EXPORT Common::Result<Wall> parseWall(const QByteArray& text, const QString& name);

/// Reads a wall document (JSON of at most maxWallBytes, see docs/wall-document.md). On failure gives nothing and writes
/// to `error` the file, the place (line and column, or a path such as devices[2].cabinets[0].cid) and what was expected
/// and found; `error` stays as it was otherwise. Blocks for the file work; any thread.
SUITE_SERVICE_EXPORT std::optional<Wall> readWall(const QString& filePath, QString& error);

/// Reads a wall document as readWall() does and, only if all of it is good, makes it the registry's content. Returns
/// whether it did.
SUITE_SERVICE_EXPORT bool loadWall(const QString& filePath, QString& error);

} // namespace Service
