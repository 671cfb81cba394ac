#pragma once

#include <string>
#include <tuple>

namespace Model {

/// One colour point, measured or wanted: luminance in cd/m2 and CIE 1931 chromaticity.
struct LXY
{
    double lum = 0.0;
    double x = 0.0;
    double y = 0.0;
    std::string name; ///< UTF-8; may be empty

    friend bool operator==(const LXY& a, const LXY& b)
    {
        return std::tie(a.lum, a.x, a.y, a.name) == std::tie(b.lum, b.x, b.y, b.name);
    }
    friend bool operator!=(const LXY& a, const LXY& b) { return !(a == b); }
};

} // namespace Model
