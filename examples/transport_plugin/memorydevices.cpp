// Devices in a plug-in: with --transport plugin:libmemorydevices.so=WALL.json, qualityctl works on cabinets that keep
// in memory what they are sent, and give it back, until the process ends. A plug-in for real devices talks to them in
// send(). docs/transport-plugins.md says what it may do there.

#include <suite/action/transportplugin.h>
#include <suite/service/walldocument.h>

#include <QFile>
#include <QObject>

#include <map>
#include <mutex>
#include <stdexcept>

namespace {

using Bytes = std::vector<unsigned char>;
using Cids = std::vector<unsigned long long>;
using State = Action::CabinetState;
using Store = std::function<void(State&)>;

/// An argument of a request. What send() throws ends the request with an error.
template <typename T>
const T& require(const ParameterMap& arguments, const std::string& key)
{
    if (const T* value = arguments.find<T>(key))
        return *value;
    throw std::runtime_error("no \"" + key + "\", or of another type");
}

std::shared_ptr<Model::ColorGamutInfo> gamutOf(const ParameterMap& arguments, const std::string& prefix)
{
    const auto point = [&](const std::string& name) {
        Model::LXY lxy;
        lxy.lum = require<double>(arguments, prefix + name + ".lum");
        lxy.x = require<double>(arguments, prefix + name + ".cx");
        lxy.y = require<double>(arguments, prefix + name + ".cy");
        return lxy;
    };
    auto gamut = std::make_shared<Model::ColorGamutInfo>();
    gamut->rLxy = point("rLxy");
    gamut->gLxy = point("gLxy");
    gamut->bLxy = point("bLxy");
    gamut->wLxy = point("wLxy");
    return gamut;
}

/// Reads a request, once for all its cabinets, which share what is large; docs/device-actions.md lists the actions.
Store storeOf(const std::string& action, const ParameterMap& arguments)
{
    if (action == "Device_CabinetsCorrectionChildSwitchV2" || action == "Device_CabinetsCorrect")
        return [mode = require<int>(arguments, "mode")](State& cabinet) { cabinet.mode = mode; };
    if (action == "Device_CorrectionGrayCoeff") {
        const auto table = std::make_shared<Action::GrayTable>(
            Action::GrayTable{require<Bytes>(arguments, "rGrayCoeffs"), require<Bytes>(arguments, "gGrayCoeffs"),
                              require<Bytes>(arguments, "bGrayCoeffs"), require<Bytes>(arguments, "magnitude"),
                              require<int>(arguments, "freq")});
        return [table](State& cabinet) { cabinet.grayTable = table; };
    }
    if (action == "Device_CabinetsColorSpaceNicc") {
        const auto gamut = gamutOf(arguments, {});
        gamut->name = require<std::string>(arguments, "name");
        return [gamut](State& cabinet) { cabinet.targetGamut = gamut; };
    }
    if (action == "Device_CabinetsColorSpaceMeasure")
        return [gamut = gamutOf(arguments, "niccMeasures.")](State& cabinet) { cabinet.measuredGamut = gamut; };
    if (action == "Device_CabinetsColorSpaceCoeff")
        return [coefficients = require<std::vector<unsigned short>>(arguments, "niccData.coeffs"),
                fullScale = require<int>(arguments, "niccData.r")](State& cabinet) {
            cabinet.coefficients = coefficients;
            cabinet.fullScale = fullScale;
        };
    if (action == "Device_M_RvCardBin") {
        const auto text = QByteArray::fromStdString(require<std::string>(arguments, "bin"));
        return [binary = std::make_shared<QByteArray>(QByteArray::fromBase64(text))](State& cabinet) {
            cabinet.binary = binary;
        };
    }
    throw std::runtime_error("unknown action " + action);
}

/// A wall's cabinets. Requests come from several threads.
class MemoryDevices : public Action::Transport, public Action::CabinetReader
{
public:
    explicit MemoryDevices(const Service::Wall& wall)
    {
        for (const Service::WallDevice& device : wall) {
            for (const auto& cabinet : device.entry.cabinets)
                m_cabinets[{device.entry.device->getBase().getId(), cabinet->getCid()}].mode =
                    static_cast<int>(cabinet->getDisplayEffectPara().getEffectMode());
        }
    }

    /// Answers without the lock: who is answered may ask again at once.
    void send(const Action::Request& request, const Action::Responder& responder) override
    {
        const ParameterMap& arguments = request.parameters.arguments();
        const auto& cids = require<Cids>(arguments, request.action == "Device_M_RvCardBin" ? "idList" : "cids");
        keep(request.deviceId, cids, storeOf(request.action, arguments));
        Parameters reply;
        reply.insert("cids", cids);
        if (const int* mode = arguments.find<int>("mode"))
            reply.insert("mode", *mode);
        responder.reply(reply);
    }

    std::optional<State> cabinet(const std::string& deviceId, unsigned long long cid) const override
    {
        const std::lock_guard lock(m_mutex);
        const auto found = m_cabinets.find({deviceId, cid});
        return found == m_cabinets.end() ? std::nullopt : std::optional(found->second);
    }

private:
    /// In all of the cabinets, or in none.
    void keep(const std::string& deviceId, const Cids& cids, const Store& store)
    {
        const std::lock_guard lock(m_mutex);
        for (const unsigned long long cid : cids) {
            if (m_cabinets.count({deviceId, cid}) == 0)
                throw std::runtime_error("no cabinet " + std::to_string(cid) + " here");
        }
        for (const unsigned long long cid : cids)
            store(m_cabinets[{deviceId, cid}]);
    }

    mutable std::mutex m_mutex;
    std::map<std::pair<std::string, unsigned long long>, State> m_cabinets; ///< guarded
};

} // namespace

class MemoryDevicesPlugin : public QObject, public Action::TransportPlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID SUITE_TRANSPORT_PLUGIN_IID)
    Q_INTERFACES(Action::TransportPlugin)

public:
    /// The argument is the wall document's file.
    std::variant<Action::Devices, QString> open(const QString& argument) override
    {
        if (argument.isEmpty())
            return QStringLiteral("expected plugin:FILE=WALL.json, found no wall document");
        QFile file(argument);
        if (!file.open(QIODevice::ReadOnly))
            return QStringLiteral("wall document \"%1\": %2").arg(argument, file.errorString());
        const QByteArray document = file.readAll();
        const auto wall = Service::parseWall(document, argument);
        if (!wall)
            return wall.fault().message();
        const auto devices = std::make_shared<MemoryDevices>(*wall);
        return Action::Devices{devices, devices, [document] { return document; }, true};
    }
};

#include "memorydevices.moc"
