#pragma once

#include <qualityutility/qualityutility_export.h>
#include <suite/model/colorgamutinfo.h>
#include <suite/model/finegray.h>
#include <suite/model/magicgraycoeffs.h>

#include <QList>
#include <QObject>

#include <atomic>

/// What a host works with while it calibrates the cards of a wall.
namespace RxCardPicQuality {

/// The working picture-quality data of the receiving card, filled at its creation from the settings
/// (PicQualityResource), the receiving-card model (ReceivingCard::RvCardConfigDataModel) and the fine-gray cache.
/// getInstance() may be called by any thread; the members are used from one.
class QUALITYUTILITY_EXPORT PicqualityData : public QObject
{
    Q_OBJECT

public:
    /// The process's instance, made at the first call. That call reads files, and while the gray tables are loaded it
    /// keeps the caller's thread alive in a local event loop.
    static PicqualityData* getInstance();
    /// Deletes the instance; the next getInstance() reads settings, model and cache anew. Nobody may be using it.
    static void releaseInstance();

    /// Whether the fine-gray cache was read; true also for one that is not JSON, which fills nothing.
    bool isFineGrayCacheLoaded() const { return m_isFineGrayCacheLoaded; }
    /// The calibration that was interrupted, from the cache; without one the defaults, with the settings' maximum.
    const Model::FineGrayAdvanceParam& getFineGrayAdvanceParam() const { return m_advanceParam; }
    /// The settings' white; the tables are empty until a host reads a configuration into its own record.
    const Model::FineGrayCoeffs& getFineGrayCoeffs() const { return m_fineGrayCoeffs; }
    /// The measurements of the cache; the tables stay empty.
    const Model::MagicGrayCoeffs& getMagicGrayCoeffs() const { return m_magicGrayCoeffs; }

    /// The source gamut: what the wall shows uncorrected. The receiving-card model's, until a measured one comes. @{
    Model::ColorGamutInfo& getOrgColorGamut() { return m_orgColorGamut; }
    const Model::ColorGamutInfo& getOrgColorGamut() const { return m_orgColorGamut; }
    /// @}
    /// Replaces the source gamut by a measured one.
    void setColourGamutMeasure(const Model::ColorGamutInfo& measured) { m_orgColorGamut = measured; }

    /// Logs how many gray measurements there are; keeps nothing.
    void setGrayMeasure(const QList<Model::LXY>& red, const QList<Model::LXY>& green, const QList<Model::LXY>& blue);
    /// Hands the path to PicQualityResource::setLastOpenPath().
    void setLastOpenPath(const QString& path);

private:
    PicqualityData();

    static std::atomic<PicqualityData*> m_instance;

    bool m_isFineGrayCacheLoaded = false;
    Model::FineGrayAdvanceParam m_advanceParam;
    Model::FineGrayCoeffs m_fineGrayCoeffs;
    Model::MagicGrayCoeffs m_magicGrayCoeffs;
    Model::ColorGamutInfo m_orgColorGamut;
};

} // namespace RxCardPicQuality
