#include "cabinetsender4th.h"

#include "actionanswer_p.h"

#include <suite/action/action.h>
#include <suite/logging/spdlogapplication.h>
#include <suite/model/colorgamutinfo.h>
#include <suite/service/modelservice.h>

#include <QDebug>
#include <QFile>

#include <exception>
#include <functional>
#include <optional>

namespace CabinetSenderSpace {

namespace {

using CabinetList = std::vector<unsigned long long>;

constexpr int gamutCorrectionBit = 8;
constexpr int switchModeCorrection = 5;
constexpr int fullScaleG4 = 1023;
constexpr int fullScaleOther = 255;
constexpr int rvcardBinTimeout = 100;
/// In bytes. Base64 makes four of three, and QByteArray counts them in an int: 2,000,000,000 of at most 2,147,483,647.
constexpr qint64 largestBinary = 1'500'000'000;

/// One device action, ready to be sent.
struct DeviceAction
{
    enum class Method { Put, Post };

    const char* name;
    Parameters parameters;
    Method method = Method::Put;
};

/// What tells one operation from another.
struct Operation
{
    const char* errorFormat;
    /// Builds the action for one device; none skips the device.
    std::function<std::optional<DeviceAction>(const std::string& deviceId, const CabinetList& cids)> buildAction =
        nullptr;
    /// Records what the reply means for the local model; empty when it means nothing.
    std::function<void(const ActionAnswer::Reply& reply, const CabinetList& sentCids)> applyReply = nullptr;
    bool logsPutError = true;
};

spdlog::logger& logger()
{
    return *Xc::SpdlogApplication::instance().logger();
}

/// Writes the lines " ENTER " and " LEAVE " of an operation. The leave line comes at once, before any work: readers of
/// these logs count the pairs and rely on it.
void traceEntry(const spdlog::source_loc& operation)
{
    logger().log(operation, spdlog::level::trace, " ENTER ");
    // The line names the function object that writes it, "operator()", as it always has.
    const std::function<void(int*)> leave = [](int*) {
        constexpr const char* function = __func__; // NOLINT(bugprone-lambda-function-name)
        logger().log(spdlog::source_loc{__FILE__, __LINE__, function}, spdlog::level::trace, " LEAVE ");
    };
    leave(nullptr);
}

int reportError(const Operation& operation, const QString& text)
{
    if (operation.logsPutError)
        qCritical() << "put error!!!";
    logger().error(fmt::runtime(operation.errorFormat), text.toStdString());
    return ResultActionError;
}

void send(const DeviceAction& action, const std::string& deviceId, const std::shared_ptr<ActionAnswer>& answer)
{
    const auto onResult = [answer](Parameters values, std::string from) {
        answer->give(ActionAnswer::Reply{std::move(values), std::move(from)});
    };
    const auto onError = [answer](const QString& text) { answer->give(ActionAnswer::Error{text}); };
    constexpr bool acknowledged = true;
    constexpr auto priority = static_cast<PackagePriority>(0);
    if (action.method == DeviceAction::Method::Post)
        Action::post(action.name, deviceId, action.parameters, onResult, onError, {}, acknowledged, priority);
    else
        Action::put(action.name, deviceId, action.parameters, onResult, onError, acknowledged, priority);
}

/// What is being thrown, for a log line. In a catch block only.
QString thrownText()
{
    try {
        throw;
    } catch (const std::exception& fault) {
        return QString::fromUtf8(fault.what());
    } catch (...) {
        return QStringLiteral("unknown exception");
    }
}

/// Records an answer: in the local model, or in the logs. Gives the device's result.
int applyAnswer(const Operation& operation, const CabinetList& cids, const ActionAnswer::Content& content)
{
    if (const auto* error = std::get_if<ActionAnswer::Error>(&content))
        return reportError(operation, error->text);
    try {
        if (operation.applyReply)
            operation.applyReply(std::get<ActionAnswer::Reply>(content), cids);
    } catch (...) { // by an observer of the model
        return reportError(operation, thrownText());
    }
    return ResultSuccess;
}

int sendToDevice(const Operation& operation, const std::string& deviceId, const CabinetList& cids)
{
    int result = ResultSkipped;
    // Before the request: a thread that Qt did not start has no timers until its first loop, and no timeout ends.
    QEventLoop loop;
    const auto answer = std::make_shared<ActionAnswer>(
        [&](const ActionAnswer::Content& content) { result = applyAnswer(operation, cids, content); });
    std::optional<DeviceAction> action; // lives until the answer: an action library may refer to its parameters
    try {
        action = operation.buildAction(deviceId, cids);
        if (!action)
            return ResultSkipped;
        send(*action, deviceId, answer);
    } catch (...) {
        answer->give(ActionAnswer::Error{thrownText()});
    }
    answer->wait(loop);
    return result;
}

/// The one loop of all sending operations: serves the devices one after the other, whatever became of those before.
int sendToEachDevice(const CabinetTargetMap& targets, const Operation& operation)
{
    int result = ResultSkipped;
    // A copy: what runs during a wait may change the caller's map, and the model is told what was sent.
    for (const auto& [deviceId, cids] : CabinetTargetMap(targets))
        result = sendToDevice(operation, deviceId, cids);
    return result;
}

/// Calls `update` with the display-effect record of each of `cids` that the local model holds under `deviceId`.
template <typename Update>
void forEachKnownCabinet(const std::string& deviceId, const CabinetList& cids, const Update& update)
{
    for (const unsigned long long cid : cids) {
        if (const auto cabinet = Service::ModelService::getCabByCid(deviceId, cid, true))
            update(cabinet->getDisplayEffectPara());
    }
}

CabinetList cidsOf(const ActionAnswer::Reply& reply)
{
    return reply.values.get<CabinetList>("cids");
}

Parameters parametersFor(const CabinetList& cids)
{
    Parameters parameters;
    parameters.insert("cids", cids);
    return parameters;
}

void insertPoint(Parameters& parameters, const std::string& key, const Model::LXY& point)
{
    parameters.insert(key + ".lum", point.lum);
    parameters.insert(key + ".cx", point.x);
    parameters.insert(key + ".cy", point.y);
}

void insertPoints(Parameters& parameters, const std::string& prefix, const Model::ColorGamutInfo& info)
{
    insertPoint(parameters, prefix + "rLxy", info.rLxy);
    insertPoint(parameters, prefix + "gLxy", info.gLxy);
    insertPoint(parameters, prefix + "bLxy", info.bLxy);
    insertPoint(parameters, prefix + "wLxy", info.wLxy);
}

int effectModeToSend(int current, int mode, bool enable)
{
    if (mode > 0)
        return enable ? current | mode : mode;
    return mode < 0 && enable ? current & mode : 0; // a negative mode is the mask of the bits to keep
}

DeviceAction effectModeAction(const Model::Device& device, const CabinetList& cids, int mode, bool enable)
{
    Parameters correctionSwitch;
    correctionSwitch.insert("enable", enable);
    correctionSwitch.insert("switchMode", switchModeCorrection);
    Parameters parameters;
    parameters.insert("mode", mode);
    parameters.insert("cids", cids);
    parameters.insert("switches", std::vector<Parameters>{correctionSwitch});
    if (device.getConfiguration().getCapacity().getIsSupportBatchCorrectionSwitch())
        return {"Device_CabinetsCorrectionChildSwitchV2", std::move(parameters), DeviceAction::Method::Post};
    return {"Device_CabinetsCorrect", std::move(parameters)};
}

std::vector<unsigned char> toVector(const QList<unsigned char>& list)
{
    return {list.begin(), list.end()};
}

std::string base64Of(QFile& file)
{
    // A file that cannot be opened reads as empty and is sent so.
    const QByteArray content = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    return content.toBase64().toStdString();
}

} // namespace

CabinetSender4th::CabinetSender4th(QObject* parent) : CabinetSenderBase(parent), m_timeoutPerCabinet(4) {}

int CabinetSender4th::timeoutFor(const std::vector<unsigned long long>& cids) const
{
    return static_cast<int>(cids.size()) * m_timeoutPerCabinet;
}

int CabinetSender4th::getFineGrayConfig(const std::string& deviceId, unsigned long long cid, int& grayScaleSeries,
                                        int& chipEffectFlag)
{
    traceEntry({__FILE__, __LINE__, __func__});
    const auto cabinet = Service::ModelService::getCabByCid(deviceId, cid, true);
    if (!cabinet)
        return ResultInvalidParameter;
    grayScaleSeries = cabinet->getBase().getGrayScaleSeries();
    chipEffectFlag = cabinet->getBase().getChipEffectFlag();
    return ResultSuccess;
}

int CabinetSender4th::getCorrectEffectMode(const std::string& deviceId, unsigned long long cid, int& mode)
{
    traceEntry({__FILE__, __LINE__, __func__});
    const auto cabinet = Service::ModelService::getCabByCid(deviceId, cid, true);
    if (!cabinet)
        return ResultInvalidParameter;
    mode = static_cast<int>(cabinet->getDisplayEffectPara().getEffectMode());
    return ResultSuccess;
}

int CabinetSender4th::setCorrectEffectMode(const CabinetTargetMap& targets, int mode, bool enable)
{
    traceEntry({__FILE__, __LINE__, __func__});
    if (targets.empty()) {
        qCritical() << "param invalid!!!";
        return ResultInvalidParameter;
    }
    const auto& [firstDevice, firstCids] = *targets.begin();
    if (firstCids.empty())
        return ResultInvalidParameter;
    int current = 0;
    if (const int failed = getCorrectEffectMode(firstDevice, firstCids.front(), current))
        return failed;

    Operation operation{"setCorrectEffectMode error:{}"};
    const int modeToSend = effectModeToSend(current, mode, enable);
    operation.buildAction = [&](const std::string& deviceId, const CabinetList& cids) -> std::optional<DeviceAction> {
        const auto device = Service::ModelService::getDevice(deviceId);
        if (!device)
            return std::nullopt;
        return effectModeAction(*device, cids, modeToSend, enable);
    };
    operation.applyReply = [](const ActionAnswer::Reply& reply, const CabinetList&) {
        forEachKnownCabinet(reply.deviceId, cidsOf(reply), [&](Model::DisplayEffectPara& para) {
            para.setEffectMode(static_cast<unsigned int>(reply.values.get<int>("mode")));
        });
    };
    return sendToEachDevice(targets, operation);
}

int CabinetSender4th::gamutCorrectEffectMode(const CabinetTargetMap& targets, bool gamutOn, bool enable)
{
    traceEntry({__FILE__, __LINE__, __func__});
    return setCorrectEffectMode(targets, gamutOn ? gamutCorrectionBit : ~gamutCorrectionBit, enable);
}

int CabinetSender4th::setGrayScaleTable(const CabinetTargetMap& targets, const QList<unsigned char>& rGrayCoeffs,
                                        const QList<unsigned char>& gGrayCoeffs,
                                        const QList<unsigned char>& bGrayCoeffs, const QList<unsigned char>& magnitude,
                                        int freq)
{
    traceEntry({__FILE__, __LINE__, __func__});
    Operation operation{"setGrayScaleTable error:{}"};
    operation.buildAction =
        [&, red = toVector(rGrayCoeffs), green = toVector(gGrayCoeffs), blue = toVector(bGrayCoeffs),
         magnitudes = toVector(magnitude)](const std::string&, const CabinetList& cids) -> std::optional<DeviceAction> {
        DeviceAction action{"Device_CorrectionGrayCoeff", parametersFor(cids)};
        action.parameters.insert("freq", freq);
        action.parameters.insert("rGrayCoeffs", red);
        action.parameters.insert("gGrayCoeffs", green);
        action.parameters.insert("bGrayCoeffs", blue);
        action.parameters.insert("magnitude", magnitudes);
        action.parameters.options().insert("timeout", timeoutFor(cids));
        return action;
    };
    operation.applyReply = [](const ActionAnswer::Reply& reply, const CabinetList&) {
        forEachKnownCabinet(reply.deviceId, cidsOf(reply),
                            [](Model::DisplayEffectPara& para) { para.setFineGrayValid(true); });
    };
    return sendToEachDevice(targets, operation);
}

int CabinetSender4th::uploadNiccData(const CabinetTargetMap& targets, const Model::ColorGamutInfo& info)
{
    traceEntry({__FILE__, __LINE__, __func__});
    Operation operation{"uploadNiccData error:{}"};
    operation.buildAction = [&](const std::string&, const CabinetList& cids) -> std::optional<DeviceAction> {
        DeviceAction action{"Device_CabinetsColorSpaceNicc", parametersFor(cids)};
        action.parameters.insert("name", info.name);
        insertPoints(action.parameters, {}, info);
        action.parameters.options().insert("timeout", timeoutFor(cids));
        return action;
    };
    // The cabinets of the request, not those of the reply: devices confirm the target gamut as a whole.
    operation.applyReply = [&](const ActionAnswer::Reply& reply, const CabinetList& sentCids) {
        forEachKnownCabinet(reply.deviceId, sentCids,
                            [&](Model::DisplayEffectPara& para) { para.setTargetColorGamut(info); });
    };
    return sendToEachDevice(targets, operation);
}

int CabinetSender4th::setColorManageMode(const CabinetTargetMap& targets, const Model::ColorGamutInfo& info)
{
    traceEntry({__FILE__, __LINE__, __func__});
    Operation operation{"setColorManageMode error:{}"};
    operation.buildAction = [&](const std::string& deviceId, const CabinetList& cids) -> std::optional<DeviceAction> {
        const auto device = Service::ModelService::getDevice(deviceId);
        if (!device)
            return std::nullopt;
        const int fullScale = device->getBase().getType() == "G4" ? fullScaleG4 : fullScaleOther;
        DeviceAction action{"Device_CabinetsColorSpaceCoeff", parametersFor(cids)};
        action.parameters.insert("niccData.coeffs", info.coeff.getCoeffs());
        action.parameters.insert("niccData.r", fullScale);
        action.parameters.insert("niccData.g", fullScale);
        action.parameters.insert("niccData.b", fullScale);
        return action;
    };
    return sendToEachDevice(targets, operation);
}

int CabinetSender4th::uploadNiccMeasure(const CabinetTargetMap& targets, const Model::ColorGamutInfo& info)
{
    traceEntry({__FILE__, __LINE__, __func__});
    Operation operation{"uploadNiccMeasure error:{}"};
    operation.buildAction = [&](const std::string&, const CabinetList& cids) -> std::optional<DeviceAction> {
        DeviceAction action{"Device_CabinetsColorSpaceMeasure", parametersFor(cids)};
        insertPoints(action.parameters, "niccMeasures.", info);
        action.parameters.options().insert("timeout", timeoutFor(cids));
        return action;
    };
    operation.applyReply = [&](const ActionAnswer::Reply& reply, const CabinetList&) {
        forEachKnownCabinet(reply.deviceId, cidsOf(reply), [&](Model::DisplayEffectPara& para) {
            para.setColorGamutValid(true);
            para.setOrgColorGamut(info);
        });
    };
    return sendToEachDevice(targets, operation);
}

int CabinetSender4th::sendRvcardBin(const CabinetTargetMap& targets, const QString& filePath)
{
    traceEntry({__FILE__, __LINE__, __func__});
    Operation operation{"sendRvcardBin error:{}"};
    operation.logsPutError = false;
    // The static function: the member says true for a symbolic link to nothing.
    if (!QFile::exists(filePath)) {
        qCritical() << "file" << filePath << "not find!!!";
        return reportError(operation, {});
    }
    QFile file(filePath);
    if (file.size() > largestBinary)
        return reportError(operation, QStringLiteral("file %1 has %2 bytes, expected at most %3")
                                          .arg(filePath, QString::number(file.size()), QString::number(largestBinary)));
    std::string text;
    try {
        text = base64Of(file);
    } catch (...) { // out of memory
        return reportError(operation, thrownText());
    }
    operation.buildAction = [&](const std::string&, const CabinetList& cids) -> std::optional<DeviceAction> {
        DeviceAction action{"Device_M_RvCardBin", {}};
        action.parameters.insert("idList", cids);
        action.parameters.insert("bin", text);
        action.parameters.options().insert("timeout", rvcardBinTimeout);
        return action;
    };
    return sendToEachDevice(targets, operation);
}

} // namespace CabinetSenderSpace
