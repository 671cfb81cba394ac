#pragma once

#include <string>
#include <tuple>

/// Records that the suite's programs share: devices, cabinets and their picture quality. Plain values compare by all
/// their members, doubles exactly, and are kept as given: nothing here checks a range. They may be used by any thread,
/// each by one at a time.
namespace Model {

/// One colour point, measured or wanted: luminance in cd/m2 and CIE 1931 chromaticity.
struct LXY
{
    double lum = 0.0; ///< cd/m2; 0 where nothing was measured
    double x = 0.0;   ///< 0..1; 0 where nothing was measured
    double y = 0.0;   ///< as x; colour maths has no answer for 0
    std::string name; ///< UTF-8; may be empty

    /// The name counts too; NaN equals nothing. @{
    friend bool operator==(const LXY& a, const LXY& b)
    {
        return std::tie(a.lum, a.x, a.y, a.name) == std::tie(b.lum, b.x, b.y, b.name);
    }
    friend bool operator!=(const LXY& a, const LXY& b) { return !(a == b); }
    /// @}
};

} // namespace Model
