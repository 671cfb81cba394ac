#include "picqualitydata.h"

#include <qualityutility/data/rvcardconfigdatamodel.h>
#include <qualityutility/resource/picqualityresource.h>
#include <qualityutility/support/infolog_p.h>
#include <qualityutility/support/publishedinstance_p.h>
#include <qualityutility/tool/file/picqualityfiletool.h>

namespace RxCardPicQuality {

namespace {

QMutex m_sPicqualityDataMutex;

Model::ColorGamutInfo gamutOf(const ReceivingCard::ColorTemperturePara& para)
{
    Model::ColorGamutInfo gamut;
    gamut.rLxy = {para.rBrightness, para.rCx, para.rCy, {}};
    gamut.gLxy = {para.gBrightness, para.gCx, para.gCy, {}};
    gamut.bLxy = {para.bBrightness, para.bCx, para.bCy, {}};
    gamut.wLxy = {para.wBrightness, para.wCx, para.wCy, {}};
    return gamut;
}

/// Null after a host deleted it; defaults serve then.
Model::ColorGamutInfo gamutOf(const ReceivingCard::ConfigData& config)
{
    const auto* brightness = config.brightness();
    return gamutOf(brightness ? brightness->colorTemperturePara() : ReceivingCard::ColorTemperturePara());
}

} // namespace

std::atomic<PicqualityData*> PicqualityData::m_instance{nullptr};

PicqualityData* PicqualityData::getInstance()
{
    // The tables load in a local event loop, in which a handler may ask for this instance too, or release the resource:
    // not under the mutex, and with nothing of the resource kept.
    if (!m_instance.load(std::memory_order_acquire))
        PicQualityResource::getInstance()->initResourceFile();
    return Support::publishedInstance(m_instance, m_sPicqualityDataMutex, [] { return new PicqualityData; });
}

void PicqualityData::releaseInstance()
{
    Support::releasePublishedInstance(m_instance);
}

PicqualityData::PicqualityData()
{
    PicQualityResource& resource = *PicQualityResource::getInstance(); // asked for its tables by getInstance()
    m_orgColorGamut = gamutOf(*ReceivingCard::RvCardConfigDataModel::getInstance());

    m_advanceParam.caliNum = 1;
    m_advanceParam.wMeasure.clear();
    m_advanceParam.caliLength = 1021;
    m_advanceParam.maxNum = resource.getGrayMaxWCom();
    bool isCustom = false;
    int kelvin = 0;
    resource.getCusColorT(isCustom, kelvin);
    m_fineGrayCoeffs.colorTem.setCustomColorTemperature(isCustom);
    m_fineGrayCoeffs.colorTem.setColorTemperature(kelvin);
    m_fineGrayCoeffs.colorTem.setNColorxCom(resource.getNColorXCom());
    m_fineGrayCoeffs.colorTem.setNColoryCom(resource.getNColorYCom());

    QList<Model::LXY> red;
    QList<Model::LXY> green;
    QList<Model::LXY> blue;
    m_isFineGrayCacheLoaded = PicQualityFileTool::readFineGrayCache(resource.getFineGrayCacheFile(), red, green, blue,
                                                                    m_advanceParam, m_magicGrayCoeffs);
    if (m_isFineGrayCacheLoaded)
        setGrayMeasure(red, green, blue);
}

void PicqualityData::setGrayMeasure(const QList<Model::LXY>& red, const QList<Model::LXY>& green,
                                    const QList<Model::LXY>& blue)
{
    Support::logInfo("155----------------------------", red.size(), green.size(), blue.size());
}

void PicqualityData::setLastOpenPath(const QString& path)
{
    PicQualityResource::getInstance()->setLastOpenPath(path);
}

} // namespace RxCardPicQuality
