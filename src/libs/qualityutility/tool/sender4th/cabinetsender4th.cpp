#include "cabinetsender4th.h"

#include "sendloop_p.h"
#include <qualityutility/support/gamutpoints_p.h>
#include <suite/logging/spdlogapplication.h>
#include <suite/service/modelservice.h>

#include <QDebug>
#include <QFile>

#include <functional>
#include <optional>

namespace CabinetSenderSpace {

namespace {

constexpr int gamutCorrectionBit = 8;
constexpr int switchModeCorrection = 5;
constexpr int fullScaleG4 = 1023;
constexpr int fullScaleOther = 255;
constexpr int rvcardBinTimeout = 100;
/// In bytes. Base64 makes four of three, and QByteArray counts them in an int: 2,000,000,000 of at most 2,147,483,647.
constexpr qint64 largestBinary = 1'500'000'000;

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
    for (const Support::GamutPoint& entry : Support::gamutPoints)
        insertPoint(parameters, prefix + entry.key, info.*entry.point);
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

Operation rvcardBinOperation()
{
    Operation operation{"sendRvcardBin error:{}"};
    operation.logsPutError = false;
    return operation;
}

QString tooLarge(const QString& subject, qint64 bytes)
{
    return QStringLiteral("%1 has %2 bytes, expected at most %3")
        .arg(subject, QString::number(bytes), QString::number(largestBinary));
}

/// Encodes a binary once and sends it to every device. May throw where memory is short.
int sendRvcardText(const CabinetTargetMap& targets, const QByteArray& content)
{
    Operation operation = rvcardBinOperation();
    operation.buildAction = [text = content.toBase64().toStdString()](
                                const std::string&, const CabinetList& cids) -> std::optional<DeviceAction> {
        DeviceAction action{"Device_M_RvCardBin", {}};
        action.parameters.insert("idList", cids);
        action.parameters.insert("bin", text);
        action.parameters.options().insert("timeout", rvcardBinTimeout);
        return action;
    };
    return sendToEachDevice(targets, operation);
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
    // The static function: the member says true for a symbolic link to nothing.
    if (!QFile::exists(filePath)) {
        qCritical() << "file" << filePath << "not find!!!";
        return reportError(rvcardBinOperation(), {});
    }
    QFile file(filePath);
    if (file.size() > largestBinary)
        return reportError(rvcardBinOperation(), tooLarge(QStringLiteral("file ") + filePath, file.size()));
    try {
        // A file that cannot be opened reads as empty and is sent so.
        return sendRvcardText(targets, file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray());
    } catch (...) { // out of memory
        return reportError(rvcardBinOperation(), thrownText());
    }
}

int CabinetSender4th::sendRvcardContent(const CabinetTargetMap& targets, const QByteArray& content)
{
    traceEntry({__FILE__, __LINE__, "sendRvcardBin"}); // one operation, whatever brings the content
    if (content.size() > largestBinary)
        return reportError(rvcardBinOperation(), tooLarge(QStringLiteral("content"), content.size()));
    try {
        return sendRvcardText(targets, content);
    } catch (...) { // out of memory
        return reportError(rvcardBinOperation(), thrownText());
    }
}

} // namespace CabinetSenderSpace
