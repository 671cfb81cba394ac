#pragma once

#include <qualityutility/tool/sender4th/cabinetsenderbase.h>

namespace CabinetSenderSpace {

/// Sends to fourth-generation cabinets: each request becomes one named device action per device, answered through
/// callbacks. Callbacks that come late, twice or from another thread change nothing that they should not. When the
/// application is told to quit in the middle of a wait, devices that have not answered count as skipped.
///
/// A device has 4 s per cabinet to answer gray tables and gamuts, 100 s for a binary and 30 s for all else;
/// docs/device-actions.md has the actions. What the local model knows is read from there, without blocking.
class QUALITYUTILITY_EXPORT CabinetSender4th : public CabinetSenderBase
{
    Q_OBJECT

public:
    /// A child of `parent`, which deletes it; with null it is its maker's.
    explicit CabinetSender4th(QObject* parent);

    int getFineGrayConfig(const std::string& deviceId, unsigned long long cid, int& grayScaleSeries,
                          int& chipEffectFlag) override;
    int getCorrectEffectMode(const std::string& deviceId, unsigned long long cid, int& mode) override;
    int setCorrectEffectMode(const CabinetTargetMap& targets, int mode, bool enable) override;
    int gamutCorrectEffectMode(const CabinetTargetMap& targets, bool gamutOn, bool enable) override;
    int setGrayScaleTable(const CabinetTargetMap& targets, const QList<unsigned char>& rGrayCoeffs,
                          const QList<unsigned char>& gGrayCoeffs, const QList<unsigned char>& bGrayCoeffs,
                          const QList<unsigned char>& magnitude, int freq) override;
    int uploadNiccData(const CabinetTargetMap& targets, const Model::ColorGamutInfo& info) override;
    int setColorManageMode(const CabinetTargetMap& targets, const Model::ColorGamutInfo& info) override;
    int uploadNiccMeasure(const CabinetTargetMap& targets, const Model::ColorGamutInfo& info) override;
    int sendRvcardBin(const CabinetTargetMap& targets, const QString& filePath) override;

    /// As sendRvcardBin, for a binary that has been read already: at most 1,500,000,000 bytes.
    int sendRvcardContent(const CabinetTargetMap& targets, const QByteArray& content);

private:
    int timeoutFor(const std::vector<unsigned long long>& cids) const;

    int m_timeoutPerCabinet; ///< seconds of a request's timeout per cabinet
};

} // namespace CabinetSenderSpace
