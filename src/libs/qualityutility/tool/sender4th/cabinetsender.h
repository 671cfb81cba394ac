#pragma once

#include <qualityutility/tool/sender4th/cabinetsenderbase.h>

namespace CabinetSenderSpace {

/// The door to the current sender, a CabinetSender4th that is made at the first call and lives until the process ends.
/// Every function returns the sender's own result; what CabinetSenderBase says of blocking and threads holds here:
/// several threads may call it at once, for different devices.
///
///     Model::ColorGamutInfo gamut = ...;
///     const CabinetSenderSpace::CabinetTargetMap targets{{"left", {1, 2, 3}}};
///     if (CabinetSenderSpace::CabinetSender::uploadNiccData(targets, gamut) != CabinetSenderSpace::ResultSuccess)
///         ...; // the log says why
class QUALITYUTILITY_EXPORT CabinetSender
{
public:
    CabinetSender() = delete;

    /// \copydoc CabinetSenderBase::getFineGrayConfig
    static int getFineGrayConfig(const std::string& deviceId, unsigned long long cid, int& grayScaleSeries,
                                 int& chipEffectFlag);
    /// \copydoc CabinetSenderBase::setGrayScaleTable
    static int setGrayScaleTable(const CabinetTargetMap& targets, const QList<unsigned char>& rGrayCoeffs,
                                 const QList<unsigned char>& gGrayCoeffs, const QList<unsigned char>& bGrayCoeffs,
                                 const QList<unsigned char>& magnitude, int freq);
    /// The same from vectors, in which hosts keep Model::FineGrayCoeffs.
    static int setGrayScaleTable(const CabinetTargetMap& targets, const std::vector<unsigned char>& rGrayCoeffs,
                                 const std::vector<unsigned char>& gGrayCoeffs,
                                 const std::vector<unsigned char>& bGrayCoeffs,
                                 const std::vector<unsigned char>& magnitude, int freq);
    /// \copydoc CabinetSenderBase::uploadNiccData
    static int uploadNiccData(const CabinetTargetMap& targets, const Model::ColorGamutInfo& info);
    /// \copydoc CabinetSenderBase::setColorManageMode
    static int setColorManageMode(const CabinetTargetMap& targets, const Model::ColorGamutInfo& info);
    /// \copydoc CabinetSenderBase::uploadNiccMeasure
    static int uploadNiccMeasure(const CabinetTargetMap& targets, const Model::ColorGamutInfo& info);
    /// \copydoc CabinetSenderBase::gamutCorrectEffectMode
    static int gamutCorrectEffectMode(const CabinetTargetMap& targets, bool gamutOn, bool enable);
    /// \copydoc CabinetSenderBase::sendRvcardBin
    static int sendRvcardBin(const CabinetTargetMap& targets, const QString& filePath);
    /// As sendRvcardBin, for a binary that has been read already: at most 1,500,000,000 bytes.
    static int sendRvcardContent(const CabinetTargetMap& targets, const QByteArray& content);
};

} // namespace CabinetSenderSpace
