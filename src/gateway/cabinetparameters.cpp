#include "cabinetparameters.h"

namespace Gateway {

namespace {

using Action::CabinetState;
using Action::GrayTable;
using Bytes = std::vector<unsigned char>;
using Model::ColorGamutInfo;

struct PointKey
{
    const char* name;
    Model::LXY ColorGamutInfo::*point;
};
constexpr PointKey pointKeys[] = {{"rLxy", &ColorGamutInfo::rLxy},
                                  {"gLxy", &ColorGamutInfo::gLxy},
                                  {"bLxy", &ColorGamutInfo::bLxy},
                                  {"wLxy", &ColorGamutInfo::wLxy}};

struct TableKey
{
    const char* name;
    Bytes GrayTable::*table;
};
constexpr TableKey tableKeys[] = {{"rGrayCoeffs", &GrayTable::red},
                                  {"gGrayCoeffs", &GrayTable::green},
                                  {"bGrayCoeffs", &GrayTable::blue},
                                  {"magnitude", &GrayTable::magnitude}};

/// The value under a key, or the default of its type.
template <typename T>
T valueOf(const ParameterMap& map, const std::string& key)
{
    const T* value = map.find<T>(key);
    return value ? *value : T();
}

void insertGamut(Parameters& target, const std::string& prefix, const ColorGamutInfo& gamut)
{
    target.insert(prefix + "name", gamut.name);
    for (const PointKey& key : pointKeys) {
        const Model::LXY& point = gamut.*key.point;
        target.insert(prefix + key.name + ".lum", point.lum);
        target.insert(prefix + key.name + ".cx", point.x);
        target.insert(prefix + key.name + ".cy", point.y);
    }
}

std::shared_ptr<const ColorGamutInfo> gamutOf(const ParameterMap& map, const std::string& prefix)
{
    if (!map.contains(prefix + "name"))
        return nullptr;
    auto gamut = std::make_shared<ColorGamutInfo>();
    gamut->name = valueOf<std::string>(map, prefix + "name");
    for (const PointKey& key : pointKeys) {
        Model::LXY& point = (*gamut).*key.point;
        point.lum = valueOf<double>(map, prefix + key.name + ".lum");
        point.x = valueOf<double>(map, prefix + key.name + ".cx");
        point.y = valueOf<double>(map, prefix + key.name + ".cy");
    }
    return gamut;
}

std::shared_ptr<const GrayTable> grayTableOf(const ParameterMap& map)
{
    if (!map.contains("freq"))
        return nullptr;
    auto table = std::make_shared<GrayTable>();
    table->freq = valueOf<int>(map, "freq");
    for (const TableKey& key : tableKeys)
        (*table).*key.table = valueOf<Bytes>(map, key.name);
    return table;
}

std::shared_ptr<const QByteArray> binaryOf(const ParameterMap& map)
{
    const Bytes* bytes = map.find<Bytes>("bin");
    if (!bytes)
        return nullptr;
    return std::make_shared<const QByteArray>(reinterpret_cast<const char*>(bytes->data()),
                                              static_cast<int>(bytes->size()));
}

/// The earlier one where the two are equal, so that a wall's cabinets share what they hold alike.
template <typename T>
std::shared_ptr<const T> shared(std::shared_ptr<const T> read, const std::shared_ptr<const T>& like)
{
    return read && like && *read == *like ? like : read;
}

} // namespace

Parameters toParameters(const CabinetState& state)
{
    Parameters result;
    result.insert("mode", state.mode);
    if (state.grayTable) {
        result.insert("freq", state.grayTable->freq);
        for (const TableKey& key : tableKeys)
            result.insert(key.name, (*state.grayTable).*key.table);
    }
    if (state.targetGamut)
        insertGamut(result, "target.", *state.targetGamut);
    if (state.measuredGamut)
        insertGamut(result, "measured.", *state.measuredGamut);
    if (state.fullScale != 0) {
        result.insert("coeffs", state.coefficients);
        result.insert("fullScale", state.fullScale);
    }
    if (state.binary)
        result.insert("bin", Bytes(state.binary->begin(), state.binary->end()));
    return result;
}

std::optional<CabinetState> toCabinet(const Parameters& parameters, const CabinetState& like)
{
    const ParameterMap& map = parameters.arguments();
    if (!map.contains("mode"))
        return std::nullopt;
    CabinetState state;
    state.mode = valueOf<int>(map, "mode");
    state.grayTable = shared(grayTableOf(map), like.grayTable);
    state.targetGamut = shared(gamutOf(map, "target."), like.targetGamut);
    state.measuredGamut = shared(gamutOf(map, "measured."), like.measuredGamut);
    state.coefficients = valueOf<std::vector<unsigned short>>(map, "coeffs");
    state.fullScale = valueOf<int>(map, "fullScale");
    state.binary = shared(binaryOf(map), like.binary);
    return state;
}

std::optional<Action::CabinetState> onlyCabinet(const Parameters& reply, const Action::CabinetState& like)
{
    const auto* cabinets = reply.arguments().find<std::vector<Parameters>>("cabinets");
    return cabinets && !cabinets->empty() ? toCabinet(cabinets->front(), like) : std::nullopt;
}

} // namespace Gateway
