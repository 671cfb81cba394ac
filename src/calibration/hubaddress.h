#pragma once

#include <suite/common/result.h>

namespace Calibration {

/// Where a message hub is.
struct HubAddress
{
    QString host;          ///< a name, or an IPv4 or IPv6 address without brackets
    quint16 port = 0;      ///< 1..65535
    double timeout = 10.0; ///< longest wait for a reply, seconds

    /// "127.0.0.1:9000", "[::1]:9000"
    QString text() const;
    /// The hub's name as a device: "hub 127.0.0.1:9000".
    QString name() const;
};

/// Reads HOST:PORT, an IPv6 address in brackets. Two texts of one address give one host. Fault: usage.
Common::Result<HubAddress> parseHubAddress(const QString& text);

} // namespace Calibration
