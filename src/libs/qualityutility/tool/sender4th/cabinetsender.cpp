#include "cabinetsender.h"

#include "cabinetsender4th.h"

namespace CabinetSenderSpace {

namespace {

// Made at the first call rather than when the library is loaded: a facade call from another unit's static initialiser
// finds it ready, and loading from a worker thread does not make that thread Qt's main thread. Never deleted.
CabinetSender4th& sender()
{
    static auto* const s_pSender = new CabinetSender4th(nullptr);
    return *s_pSender;
}

QList<unsigned char> toList(const std::vector<unsigned char>& bytes)
{
    QList<unsigned char> list;
    list.reserve(static_cast<int>(bytes.size()));
    for (const unsigned char byte : bytes)
        list.append(byte);
    return list;
}

} // namespace

int CabinetSender::getFineGrayConfig(const std::string& deviceId, unsigned long long cid, int& grayScaleSeries,
                                     int& chipEffectFlag)
{
    return sender().getFineGrayConfig(deviceId, cid, grayScaleSeries, chipEffectFlag);
}

int CabinetSender::setGrayScaleTable(const CabinetTargetMap& targets, const QList<unsigned char>& rGrayCoeffs,
                                     const QList<unsigned char>& gGrayCoeffs, const QList<unsigned char>& bGrayCoeffs,
                                     const QList<unsigned char>& magnitude, int freq)
{
    return sender().setGrayScaleTable(targets, rGrayCoeffs, gGrayCoeffs, bGrayCoeffs, magnitude, freq);
}

int CabinetSender::setGrayScaleTable(const CabinetTargetMap& targets, const std::vector<unsigned char>& rGrayCoeffs,
                                     const std::vector<unsigned char>& gGrayCoeffs,
                                     const std::vector<unsigned char>& bGrayCoeffs,
                                     const std::vector<unsigned char>& magnitude, int freq)
{
    return sender().setGrayScaleTable(targets, toList(rGrayCoeffs), toList(gGrayCoeffs), toList(bGrayCoeffs),
                                      toList(magnitude), freq);
}

int CabinetSender::uploadNiccData(const CabinetTargetMap& targets, const Model::ColorGamutInfo& info)
{
    return sender().uploadNiccData(targets, info);
}

int CabinetSender::setColorManageMode(const CabinetTargetMap& targets, const Model::ColorGamutInfo& info)
{
    return sender().setColorManageMode(targets, info);
}

int CabinetSender::uploadNiccMeasure(const CabinetTargetMap& targets, const Model::ColorGamutInfo& info)
{
    return sender().uploadNiccMeasure(targets, info);
}

int CabinetSender::gamutCorrectEffectMode(const CabinetTargetMap& targets, bool gamutOn, bool enable)
{
    return sender().gamutCorrectEffectMode(targets, gamutOn, enable);
}

int CabinetSender::sendRvcardBin(const CabinetTargetMap& targets, const QString& filePath)
{
    return sender().sendRvcardBin(targets, filePath);
}

int CabinetSender::sendRvcardContent(const CabinetTargetMap& targets, const QByteArray& content)
{
    return sender().sendRvcardContent(targets, content);
}

} // namespace CabinetSenderSpace
