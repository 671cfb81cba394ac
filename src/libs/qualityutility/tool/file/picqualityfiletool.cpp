#include "picqualityfiletool.h"

#include "filefailurerecorder_p.h"
#include "finegraycache_p.h"
#include "finegrayconfig_p.h"
#include "graystate_p.h"
#include "jsonlists_p.h"
#include "magicgray_p.h"
#include <qualityutility/support/wholefile_p.h>
#include <suite/model/finegray.h>
#include <suite/model/magicgrayparam.h>

#include <QDebug>
#include <QFile>

using FineGrayConfig::Measures;
using Model::FineGrayAdvanceParam;
using Model::FineGrayCoeffs;
using Model::GrayDetailPara;
using Model::GrayEffectPara;
using Model::LXY;
using Model::MagicGrayCoeffs;

namespace {

/// Lets `read` work on three lists as one record.
template <typename Read>
bool readMeasures(QList<LXY>& red, QList<LXY>& green, QList<LXY>& blue, const Read& read)
{
    Measures measures{red, green, blue};
    const bool isRead = read(measures);
    red = measures.red;
    green = measures.green;
    blue = measures.blue;
    return isRead;
}

} // namespace

// Conversions

void PicQualityFileTool::listToJsonArray(const QList<LXY>& list, QJsonArray& out)
{
    out = JsonLists::toArray(list);
}

void PicQualityFileTool::listToJsonArray(const std::vector<LXY>& list, QJsonArray& out)
{
    out = JsonLists::toArray(list);
}

void PicQualityFileTool::listToJsonArray(const std::vector<unsigned char>& list, QJsonArray& out)
{
    out = JsonLists::toArray(list);
}

void PicQualityFileTool::listToJsonArray(const QList<unsigned char>& list, QJsonArray& out)
{
    out = JsonLists::toArray(list);
}

void PicQualityFileTool::listToJsonArray(const std::vector<int>& list, QJsonArray& out)
{
    out = JsonLists::toArray(list);
}

void PicQualityFileTool::listToJsonArray(const std::vector<unsigned int>& list, QJsonArray& out)
{
    out = JsonLists::toArray(list);
}

void PicQualityFileTool::listToJsonArray(const QList<unsigned int>& list, QJsonArray& out)
{
    out = JsonLists::toArray(list);
}

void PicQualityFileTool::listToJsonArray(const std::vector<double>& list, QJsonArray& out)
{
    out = JsonLists::toArray(list);
}

void PicQualityFileTool::listToJsonArray(const QList<double>& list, QJsonArray& out)
{
    out = JsonLists::toArray(list);
}

void PicQualityFileTool::jsonArrayToList(const QJsonArray& array, QList<LXY>& out)
{
    out = JsonLists::toList<QList<LXY>>(array);
}

void PicQualityFileTool::jsonArrayToList(const QJsonArray& array, std::vector<LXY>& out)
{
    out = JsonLists::toList<std::vector<LXY>>(array);
}

void PicQualityFileTool::jsonArrayToList(const QJsonArray& array, std::vector<unsigned char>& out)
{
    out = JsonLists::toList<std::vector<unsigned char>>(array);
}

void PicQualityFileTool::jsonArrayToList(const QJsonArray& array, QList<unsigned char>& out)
{
    out = JsonLists::toList<QList<unsigned char>>(array);
}

void PicQualityFileTool::jsonArrayToList(const QJsonArray& array, std::vector<int>& out)
{
    out = JsonLists::toList<std::vector<int>>(array);
}

void PicQualityFileTool::jsonArrayToList(const QJsonArray& array, std::vector<unsigned int>& out)
{
    out = JsonLists::toList<std::vector<unsigned int>>(array);
}

void PicQualityFileTool::jsonArrayToList(const QJsonArray& array, QList<unsigned int>& out)
{
    out = JsonLists::toList<QList<unsigned int>>(array);
}

void PicQualityFileTool::jsonArrayToList(const QJsonArray& array, std::vector<double>& out)
{
    out = JsonLists::toList<std::vector<double>>(array);
}

void PicQualityFileTool::jsonArrayToList(const QJsonArray& array, QList<double>& out)
{
    out = JsonLists::toList<QList<double>>(array);
}

QJsonObject PicQualityFileTool::lxyToJson(const LXY& point)
{
    return JsonLists::toObject(point);
}

LXY getLxy(QMap<QString, QVariant> map)
{
    const auto number = [&](QLatin1String key) { return map[key].toDouble(); };
    return {number(JsonLists::lumColumn.key), number(JsonLists::xColumn.key), number(JsonLists::yColumn.key), {}};
}

void PicQualityFileTool::mapToJsonArray(const MeasureSeries& series, QJsonArray& out)
{
    out = JsonLists::toArray(series);
}

void PicQualityFileTool::jsonArrayToMap(const QJsonArray& array, MeasureSeries& out)
{
    out = JsonLists::toList<MeasureSeries>(array);
}

bool PicQualityFileTool::copyFile(const QString& source, const QString& destination)
{
    if (!QFile::exists(source)) {
        qCritical() << "file" << source << "not find";
        recordFileFailure({FileFailure::Kind::Missing, source});
        return false;
    }
    const bool isCopied = Support::copyWholeFile(source, destination);
    if (!isCopied) // without a log line
        recordFileFailure({FileFailure::Kind::WriteFailed, destination});
    return isCopied;
}

int PicQualityFileTool::test()
{
    return 0;
}

bool PicQualityFileTool::sendGrayFileData(const QList<double>&, const QList<double>&, const QList<double>&,
                                          const FineGrayCoeffs&)
{
    return true;
}

// Gray state

bool PicQualityFileTool::updateGrayStateConfig(const QString& path, const GrayEffectPara& effect,
                                               const GrayDetailPara& detail)
{
    return FineGrayConfig::updateGrayState(path, effect, detail);
}

QJsonObject PicQualityFileTool::grayParaToJson(const GrayEffectPara& effect)
{
    return GrayState::toJson(effect);
}

QJsonObject PicQualityFileTool::detailParaToJson(const GrayDetailPara& detail)
{
    return GrayState::toJson(detail);
}

void PicQualityFileTool::JsonTograyPara(const QJsonObject& object, GrayEffectPara& effect)
{
    GrayState::read(object, effect);
}

void PicQualityFileTool::JsonTodetailPara(const QJsonObject& object, GrayDetailPara& detail)
{
    GrayState::read(object, detail);
}

void PicQualityFileTool::JsonToLumPara(const QJsonObject& object, GrayDetailPara& detail)
{
    GrayState::readPeak(object, detail);
}

// Magic gray

bool PicQualityFileTool::updateMGGrayConfig(const QString& path, const MagicGrayCoeffs& coeffs,
                                            const Model::MagicGrayParam&)
{
    return FineGrayConfig::updateMagicGray(path, coeffs);
}

void PicQualityFileTool::MGMeasuresToJson(const MagicGrayCoeffs& coeffs, QJsonObject& object)
{
    MagicGray::writeMeasures(coeffs, object);
}

void PicQualityFileTool::JsonToMGCoeffs(const QJsonObject& object, MagicGrayCoeffs& coeffs,
                                        Model::MagicGrayParam& param)
{
    MagicGray::read(object, coeffs, param);
}

// Fine-gray configuration

bool PicQualityFileTool::writeFineGrayConfig(const QString& path, const QList<LXY>& red, const QList<LXY>& green,
                                             const QList<LXY>& blue, const FineGrayCoeffs& coeffs)
{
    return FineGrayConfig::write(path, {red, green, blue}, coeffs);
}

bool PicQualityFileTool::readFineGrayConfig(const QString& path, QList<LXY>& red, QList<LXY>& green, QList<LXY>& blue,
                                            FineGrayCoeffs& coeffs, bool& openGray, bool& openXbit, int& xbitType,
                                            bool& open18bit)
{
    FineGrayConfig::Switches switches;
    const bool isRead = readMeasures(
        red, green, blue, [&](Measures& measures) { return FineGrayConfig::read(path, measures, coeffs, switches); });
    openGray = switches.openGray;
    openXbit = switches.openXbit;
    xbitType = switches.xbitType;
    open18bit = switches.open18bit;
    return isRead;
}

bool PicQualityFileTool::readFineGrayConfig(const QString& path, QList<LXY>& red, QList<LXY>& green, QList<LXY>& blue,
                                            FineGrayCoeffs& coeffs)
{
    FineGrayConfig::Switches unused;
    return readMeasures(red, green, blue,
                        [&](Measures& measures) { return FineGrayConfig::read(path, measures, coeffs, unused); });
}

bool PicQualityFileTool::readFineGrayConfig(const QString& path, QList<LXY>& red, QList<LXY>& green, QList<LXY>& blue,
                                            FineGrayCoeffs& coeffs, GrayEffectPara& effect, GrayDetailPara& detail,
                                            MagicGrayCoeffs& magicGray, Model::MagicGrayParam& magicGrayParam)
{
    return readMeasures(red, green, blue, [&](Measures& measures) {
        return FineGrayConfig::read(path, measures, coeffs, effect, detail, magicGray, magicGrayParam);
    });
}

// Fine-gray cache

bool PicQualityFileTool::writeFineGrayCache(const QString& path, const QList<LXY>& red, const QList<LXY>& green,
                                            const QList<LXY>& blue)
{
    return FineGrayCache::write(path, {red, green, blue});
}

bool PicQualityFileTool::updateFineGrayCache(const QString& path, const FineGrayAdvanceParam& advance)
{
    return FineGrayCache::update(path, advance);
}

bool PicQualityFileTool::updateFineGrayCache(const QString& path, const MagicGrayCoeffs& magicGray)
{
    return FineGrayCache::update(path, magicGray);
}

bool PicQualityFileTool::readFineGrayCache(const QString& path, QList<LXY>& red, QList<LXY>& green, QList<LXY>& blue,
                                           FineGrayAdvanceParam& advance)
{
    return readMeasures(red, green, blue,
                        [&](Measures& measures) { return FineGrayCache::read(path, measures, advance, nullptr); });
}

bool PicQualityFileTool::readFineGrayCache(const QString& path, QList<LXY>& red, QList<LXY>& green, QList<LXY>& blue,
                                           FineGrayAdvanceParam& advance, MagicGrayCoeffs& magicGray)
{
    return readMeasures(red, green, blue,
                        [&](Measures& measures) { return FineGrayCache::read(path, measures, advance, &magicGray); });
}

QJsonObject PicQualityFileTool::GrayAdvaneToJson(const FineGrayAdvanceParam& advance)
{
    return FineGrayCache::toJson(advance);
}

void PicQualityFileTool::getGrayAdvane(const QJsonObject& object, FineGrayAdvanceParam& advance)
{
    FineGrayCache::read(object, advance);
}

void PicQualityFileTool::judgeWUpdate(QJsonObject& root, QJsonObject& advance)
{
    FineGrayCache::keepWhiteMeasures(root, advance);
}
