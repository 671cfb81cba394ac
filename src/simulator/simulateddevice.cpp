#include "simulateddevice.h"

#include <array>

namespace Simulator {

namespace {

using CabinetList = std::vector<unsigned long long>;
using Bytes = std::vector<unsigned char>;
using Method = Action::Request::Method;
using Store = std::function<void(CabinetState&)>;

template <typename T>
constexpr const char* typeName = nullptr;
template <>
constexpr const char* typeName<int> = "an int";
template <>
constexpr const char* typeName<bool> = "a bool";
template <>
constexpr const char* typeName<double> = "a double";
template <>
constexpr const char* typeName<std::string> = "a string";
template <>
constexpr const char* typeName<CabinetList> = "a list of cabinet identifiers";
template <>
constexpr const char* typeName<Bytes> = "a list of bytes";
template <>
constexpr const char* typeName<std::vector<unsigned short>> = "a list of 16-bit numbers";
template <>
constexpr const char* typeName<std::vector<Parameters>> = "a list of parameters";

/// Reads required arguments and remembers the first refusal.
class RequestReader
{
public:
    explicit RequestReader(const ParameterMap& arguments) : m_arguments(arguments) {}

    template <typename T>
    T require(const char* key)
    {
        const T* value = m_arguments.find<T>(key);
        if (value)
            return *value;
        refuse(m_arguments.contains(key)
                   ? QStringLiteral("key \"%1\" is not %2").arg(QLatin1String(key), QLatin1String(typeName<T>))
                   : QStringLiteral("missing key \"%1\"").arg(QLatin1String(key)));
        return T();
    }

    void refuse(const QString& reason)
    {
        if (m_refusal.isEmpty())
            m_refusal = reason;
    }
    const QString& refusal() const { return m_refusal; }

private:
    const ParameterMap& m_arguments;
    QString m_refusal;
};

Model::LXY readPoint(RequestReader& request, const std::string& key)
{
    Model::LXY point;
    point.lum = request.require<double>((key + ".lum").c_str());
    point.x = request.require<double>((key + ".cx").c_str());
    point.y = request.require<double>((key + ".cy").c_str());
    return point;
}

std::shared_ptr<Model::ColorGamutInfo> readPoints(RequestReader& request, const std::string& prefix)
{
    auto gamut = std::make_shared<Model::ColorGamutInfo>();
    gamut->rLxy = readPoint(request, prefix + "rLxy");
    gamut->gLxy = readPoint(request, prefix + "gLxy");
    gamut->bLxy = readPoint(request, prefix + "bLxy");
    gamut->wLxy = readPoint(request, prefix + "wLxy");
    return gamut;
}

Store readEffectMode(RequestReader& request)
{
    const int mode = request.require<int>("mode");
    const auto switches = request.require<std::vector<Parameters>>("switches");
    for (const Parameters& entry : switches) {
        RequestReader record(entry.arguments());
        record.require<bool>("enable");
        record.require<int>("switchMode");
        if (!record.refusal().isEmpty())
            request.refuse(QStringLiteral("in \"switches\": ") + record.refusal());
    }
    return [mode](CabinetState& cabinet) { cabinet.mode = mode; };
}

Store readGrayTable(RequestReader& request)
{
    auto table = std::make_shared<GrayTable>();
    table->freq = request.require<int>("freq");
    table->red = request.require<Bytes>("rGrayCoeffs");
    table->green = request.require<Bytes>("gGrayCoeffs");
    table->blue = request.require<Bytes>("bGrayCoeffs");
    table->magnitude = request.require<Bytes>("magnitude");
    const size_t size = table->red.size();
    if (table->green.size() != size || table->blue.size() != size || table->magnitude.size() != size) {
        request.refuse(QStringLiteral("gray tables differ in length: red %1, green %2, blue %3, magnitude %4")
                           .arg(size)
                           .arg(table->green.size())
                           .arg(table->blue.size())
                           .arg(table->magnitude.size()));
    }
    return [table](CabinetState& cabinet) { cabinet.grayTable = table; };
}

Store readTargetGamut(RequestReader& request)
{
    const auto gamut = readPoints(request, {});
    gamut->name = request.require<std::string>("name");
    return [gamut](CabinetState& cabinet) { cabinet.targetGamut = gamut; };
}

Store readMeasuredGamut(RequestReader& request)
{
    const auto gamut = readPoints(request, "niccMeasures.");
    return [gamut](CabinetState& cabinet) { cabinet.measuredGamut = gamut; };
}

Store readCoefficients(RequestReader& request)
{
    const auto coefficients = request.require<std::vector<unsigned short>>("niccData.coeffs");
    const int red = request.require<int>("niccData.r");
    const int green = request.require<int>("niccData.g");
    const int blue = request.require<int>("niccData.b");
    if (coefficients.size() != 9)
        request.refuse(QStringLiteral("expected 9 coefficients, found %1").arg(coefficients.size()));
    if (red <= 0 || red != green || red != blue)
        request.refuse(
            QStringLiteral("full-scale values differ or are not positive: %1, %2, %3").arg(red).arg(green).arg(blue));
    return [coefficients, red](CabinetState& cabinet) {
        cabinet.coefficients = coefficients;
        cabinet.fullScale = red;
    };
}

Store readBinary(RequestReader& request)
{
    const auto text = request.require<std::string>("bin");
    const auto decoded =
        QByteArray::fromBase64Encoding(QByteArray::fromStdString(text), QByteArray::AbortOnBase64DecodingErrors);
    if (decoded.decodingStatus != QByteArray::Base64DecodingStatus::Ok)
        request.refuse(QStringLiteral("key \"bin\" is not Base64"));
    const auto binary = std::make_shared<const QByteArray>(*decoded);
    return [binary](CabinetState& cabinet) { cabinet.binary = binary; };
}

struct KnownAction
{
    const char* name;
    Method method;
    const char* cabinetsKey;
    Store (*read)(RequestReader&);
};

constexpr std::array<KnownAction, 7> knownActions{{
    {"Device_CabinetsCorrectionChildSwitchV2", Method::Post, "cids", readEffectMode},
    {"Device_CabinetsCorrect", Method::Put, "cids", readEffectMode},
    {"Device_CorrectionGrayCoeff", Method::Put, "cids", readGrayTable},
    {"Device_CabinetsColorSpaceNicc", Method::Put, "cids", readTargetGamut},
    {"Device_CabinetsColorSpaceCoeff", Method::Put, "cids", readCoefficients},
    {"Device_CabinetsColorSpaceMeasure", Method::Put, "cids", readMeasuredGamut},
    {"Device_M_RvCardBin", Method::Put, "idList", readBinary},
}};

const KnownAction* findAction(const std::string& name)
{
    for (const KnownAction& action : knownActions) {
        if (name == action.name)
            return &action;
    }
    return nullptr;
}

} // namespace

SimulatedDevice::SimulatedDevice(const Service::DeviceEntry& entry)
{
    m_cabinets.reserve(entry.cabinets.size());
    for (const auto& cabinet : entry.cabinets) {
        CabinetState state;
        state.mode = static_cast<int>(cabinet->getDisplayEffectPara().getEffectMode());
        m_cabinets.emplace(cabinet->getCid(), std::move(state));
    }
}

Outcome SimulatedDevice::execute(Method method, const std::string& action, const Parameters& parameters,
                                 const CabinetFilter& takesPart)
{
    const KnownAction* known = findAction(action);
    if (!known)
        return QStringLiteral("unknown action \"%1\"").arg(QString::fromStdString(action));
    if (known->method != method)
        return QStringLiteral("action \"%1\" came by the wrong method").arg(QString::fromStdString(action));
    RequestReader request(parameters.arguments());
    const auto cids = request.require<CabinetList>(known->cabinetsKey);
    const Store store = known->read(request);
    for (const unsigned long long cid : cids) {
        if (m_cabinets.count(cid) == 0)
            request.refuse(QStringLiteral("no cabinet %1 here").arg(cid));
    }
    if (!request.refusal().isEmpty())
        return request.refusal();

    CabinetList served;
    Parameters reply;
    for (const unsigned long long cid : cids) {
        if (!takesPart(cid))
            continue;
        CabinetState& cabinet = m_cabinets.at(cid);
        store(cabinet);
        served.push_back(cid);
        reply.insert("mode", cabinet.mode); // what all served cabinets have now, when the request set it
    }
    reply.insert("cids", served);
    return reply;
}

std::optional<CabinetState> SimulatedDevice::cabinet(unsigned long long cid) const
{
    const auto found = m_cabinets.find(cid);
    return found == m_cabinets.end() ? std::nullopt : std::optional(found->second);
}

} // namespace Simulator
