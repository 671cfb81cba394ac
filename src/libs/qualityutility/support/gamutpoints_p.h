#pragma once

#include <suite/model/colorgamutinfo.h>

#include <array>

namespace Support {

struct GamutPoint
{
    const char* key; ///< as devices and hubs know it
    Model::LXY Model::ColorGamutInfo::*point;
};

/// The four points of a gamut. They stand here and not beside the record: a host may bring its own model library, which
/// has the record alone.
constexpr std::array<GamutPoint, 4> gamutPoints{{
    {"rLxy", &Model::ColorGamutInfo::rLxy},
    {"gLxy", &Model::ColorGamutInfo::gLxy},
    {"bLxy", &Model::ColorGamutInfo::bLxy},
    {"wLxy", &Model::ColorGamutInfo::wLxy},
}};

} // namespace Support
