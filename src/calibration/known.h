#pragma once

#include <QString>

#include <array>

namespace Calibration {

/// How a figure of a wall is known, each way better than the one before it.
enum class Known {
    Computed,     ///< from a measurement and the integers
    Acknowledged, ///< the device said that it took what was sent
    ReadBack,     ///< the cabinets said what they hold
    Measured,     ///< with an instrument, afterwards
};

/// The words for it, in reports and in the journal; in the order of Known.
inline constexpr std::array knownWords{"computed", "acknowledged", "read back", "measured"};

inline QString wordOf(Known known)
{
    return QLatin1String(knownWords[static_cast<std::size_t>(known)]);
}

} // namespace Calibration
