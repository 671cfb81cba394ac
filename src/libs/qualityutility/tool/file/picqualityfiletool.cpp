#include "picqualityfiletool.h"

#include "documentfile_p.h"
#include "filefailurerecorder_p.h"
#include "jsonfields_p.h"

#include <suite/model/finegray.h>
#include <suite/model/graydetailpara.h>
#include <suite/model/grayeffectpara.h>
#include <suite/model/magicgraycoeffs.h>
#include <suite/model/magicgrayparam.h>

#include <QDebug>
#include <QFile>
#include <qualityutility/support/latin1_p.h>
#include <qualityutility/support/wholefile_p.h>

#include <algorithm>
#include <array>
#include <limits>

namespace {

using JsonFields::BoolField;
using JsonFields::IntField;
using JsonFields::IntMember;
using JsonFields::ListField;
using JsonFields::ListMember;
using Model::FineGrayAdvanceParam;
using Model::FineGrayCoeffs;
using Model::GrayDetailPara;
using Model::GrayEffectPara;
using Model::LXY;
using Model::MagicGrayCoeffs;
using Support::latin1;
using Bytes = std::vector<unsigned char>;
using Doubles = std::vector<double>;

constexpr QLatin1String lumKey = latin1("lum");
constexpr QLatin1String xKey = latin1("x");
constexpr QLatin1String yKey = latin1("y");
constexpr QLatin1String measureKey = latin1("measure");

constexpr QLatin1String rMeasureKey = latin1("rMeasure");
constexpr QLatin1String gMeasureKey = latin1("gMeasure");
constexpr QLatin1String bMeasureKey = latin1("bMeasure");
constexpr QLatin1String grayEffectKey = latin1("grayEffectPara");
constexpr QLatin1String grayDetailKey = latin1("grayDetailPara");
constexpr QLatin1String magicGrayKey = latin1("mgData");
constexpr QLatin1String grayAdvanceKey = latin1("grayAdvance");
constexpr QLatin1String wMeasureKey = latin1("wMeasure");
constexpr int keptWhiteMeasures = 9;

constexpr std::array<BoolField<GrayEffectPara>, 4> effectFields{{
    {latin1("supGraySwitch"), &GrayEffectPara::getSupGraySwitch, &GrayEffectPara::setSupGraySwitch},
    {latin1("fineGraySwitch"), &GrayEffectPara::getFineGraySwitch, &GrayEffectPara::setFineGraySwitch},
    {latin1("switch22bit"), &GrayEffectPara::get22bitSwitch, &GrayEffectPara::set22bitSwitch},
    {latin1("switchMG"), &GrayEffectPara::getMGSwitch, &GrayEffectPara::setMGSwitch},
}};

constexpr std::array<BoolField<GrayDetailPara>, 4> detailSwitches{{
    {latin1("qualityAdvance"), &GrayDetailPara::getQualityAdvance, &GrayDetailPara::setQualityAdvance},
    {latin1("detailAdvance"), &GrayDetailPara::getDetailAdvance, &GrayDetailPara::setDetailAdvance},
    {latin1("switchABL"), &GrayDetailPara::getABLSwitch, &GrayDetailPara::setABLSwitch},
    {latin1("switchINVTMO"), &GrayDetailPara::getINVTMOSwitch, &GrayDetailPara::setINVTMOSwitch},
}};

constexpr std::array<IntField<GrayDetailPara>, 1> detailLevel{{
    {latin1("detailLevel"), &GrayDetailPara::getDetailLevel, &GrayDetailPara::setDetailLevel},
}};

// True means valid, against its name: earlier files depend on both.
constexpr QLatin1String peakValidKey = latin1("peakInvalid");

constexpr std::array<IntField<GrayDetailPara>, 3> peakValues{{
    {latin1("peakMeasure"), &GrayDetailPara::getPeakMeasure, &GrayDetailPara::setPeakMeasure},
    {latin1("peakLum"), &GrayDetailPara::getPeakLum, &GrayDetailPara::setPeakLum},
    {latin1("maxLum"), &GrayDetailPara::getMaxLum, &GrayDetailPara::setMaxLum},
}};

using MagicPoints = ListField<MagicGrayCoeffs, MagicGrayCoeffs::Points>;
using MagicSeries = ListField<MagicGrayCoeffs, MagicGrayCoeffs::PointSeries>;
using MagicTable = ListField<MagicGrayCoeffs, MagicGrayCoeffs::Table>;

constexpr std::array<MagicPoints, 9> magicPoints{{
    {latin1("rMG0Measure"), &MagicGrayCoeffs::getR0Measures, &MagicGrayCoeffs::getR0Measures},
    {latin1("gMG0Measure"), &MagicGrayCoeffs::getG0Measures, &MagicGrayCoeffs::getG0Measures},
    {latin1("bMG0Measure"), &MagicGrayCoeffs::getB0Measures, &MagicGrayCoeffs::getB0Measures},
    {latin1("rMG1Measure"), &MagicGrayCoeffs::getR1Measures, &MagicGrayCoeffs::getR1Measures},
    {latin1("gMG1Measure"), &MagicGrayCoeffs::getG1Measures, &MagicGrayCoeffs::getG1Measures},
    {latin1("bMG1Measure"), &MagicGrayCoeffs::getB1Measures, &MagicGrayCoeffs::getB1Measures},
    {latin1("rMGFirstMeasure"), &MagicGrayCoeffs::getFirstRMeasures, &MagicGrayCoeffs::getFirstRMeasures},
    {latin1("gMGFirstMeasure"), &MagicGrayCoeffs::getFirstGMeasures, &MagicGrayCoeffs::getFirstGMeasures},
    {latin1("bMGFirstMeasure"), &MagicGrayCoeffs::getFirstBMeasures, &MagicGrayCoeffs::getFirstBMeasures},
}};

constexpr std::array<MagicSeries, 4> magicSeries{{
    {latin1("rMGMeasure"), &MagicGrayCoeffs::getACRMeasures, &MagicGrayCoeffs::getACRMeasures},
    {latin1("gMGMeasure"), &MagicGrayCoeffs::getACGMeasures, &MagicGrayCoeffs::getACGMeasures},
    {latin1("bMGMeasure"), &MagicGrayCoeffs::getACBMeasures, &MagicGrayCoeffs::getACBMeasures},
    {latin1("wMGMeasure"), &MagicGrayCoeffs::getWhiteMeasures, &MagicGrayCoeffs::getWhiteMeasures},
}};

constexpr std::array<MagicTable, 3> magicTables{{
    {latin1("mgCurrentLUTs"), &MagicGrayCoeffs::getCurrentLUTs, &MagicGrayCoeffs::getCurrentLUTs},
    {latin1("mgComGainLUTOdd"), &MagicGrayCoeffs::getComGainLUTOdd, &MagicGrayCoeffs::getComGainLUTOdd},
    {latin1("mgComGainLUTEven"), &MagicGrayCoeffs::getComGainLUTEven, &MagicGrayCoeffs::getComGainLUTEven},
}};

constexpr std::array<ListMember<FineGrayCoeffs, Bytes>, 4> coeffTables{{
    {latin1("rGrayCoeffs"), &FineGrayCoeffs::rGrayCoeffs},
    {latin1("gGrayCoeffs"), &FineGrayCoeffs::gGrayCoeffs},
    {latin1("bGrayCoeffs"), &FineGrayCoeffs::bGrayCoeffs},
    {latin1("magnitudes"), &FineGrayCoeffs::magnitudes},
}};

constexpr std::array<IntMember<FineGrayAdvanceParam>, 3> advanceNumbers{{
    {latin1("maxNum"), &FineGrayAdvanceParam::maxNum},
    {latin1("caliNum"), &FineGrayAdvanceParam::caliNum},
    {latin1("caliLength"), &FineGrayAdvanceParam::caliLength},
}};

constexpr ListMember<FineGrayAdvanceParam, std::vector<LXY>> advanceWhite{wMeasureKey, &FineGrayAdvanceParam::wMeasure};
constexpr ListMember<FineGrayAdvanceParam, Bytes> advanceMagnitudes{latin1("magBits"), &FineGrayAdvanceParam::magBits};

constexpr QLatin1String advanceCoeffsKey = latin1("coeffs");
constexpr std::array<ListMember<FineGrayAdvanceParam, Bytes>, 3> advanceCoeffs{{
    {latin1("rGrayCoeffs"), &FineGrayAdvanceParam::rGrayCoeffs},
    {latin1("gGrayCoeffs"), &FineGrayAdvanceParam::gGrayCoeffs},
    {latin1("bGrayCoeffs"), &FineGrayAdvanceParam::bGrayCoeffs},
}};

constexpr QLatin1String advanceTargetsKey = latin1("targetLum");
constexpr std::array<ListMember<FineGrayAdvanceParam, Doubles>, 3> advanceTargets{{
    {latin1("rLumTarget"), &FineGrayAdvanceParam::rLumTarget},
    {latin1("gLumTarget"), &FineGrayAdvanceParam::gLumTarget},
    {latin1("bLumTarget"), &FineGrayAdvanceParam::bLumTarget},
}};

/// As QVariant::toDouble converts: text with a number in it counts, what is neither is 0.
double toDouble(const QJsonValue& value)
{
    return value.isDouble() ? value.toDouble() : value.toVariant().toDouble();
}

QJsonValue toElement(const LXY& point)
{
    return PicQualityFileTool::lxyToJson(point);
}

QJsonValue toElement(unsigned char value)
{
    return static_cast<int>(value);
}

QJsonValue toElement(int value)
{
    return value;
}

QJsonValue toElement(unsigned int value)
{
    return static_cast<int>(value); // the bits are kept: 2^31 and more are written as negative numbers
}

QJsonValue toElement(double value)
{
    return value;
}

template <typename List>
void toArray(const List& list, QJsonArray& out)
{
    out = QJsonArray();
    for (const auto& entry : list)
        out.append(toElement(entry));
}

template <typename List>
void makeRoom(List& list, int size)
{
    list.clear();
    list.reserve(static_cast<decltype(list.size())>(size));
}

template <typename List>
void toPoints(const QJsonArray& array, List& out)
{
    makeRoom(out, array.size());
    for (const QJsonValue value : array) {
        if (!value.isObject())
            continue;
        // Read directly: a variant map per point would cost more than parsing the document.
        const QJsonObject object = value.toObject();
        out.push_back({toDouble(object.value(lumKey)), toDouble(object.value(xKey)), toDouble(object.value(yKey)), {}});
    }
}

template <typename List>
void toIntegers(const QJsonArray& array, List& out)
{
    makeRoom(out, array.size());
    for (const QJsonValue value : array)
        out.push_back(static_cast<typename List::value_type>(value.toInt(0)));
}

template <typename List>
void toDoubles(const QJsonArray& array, List& out)
{
    makeRoom(out, array.size());
    for (const QJsonValue value : array)
        out.push_back(value.toDouble(0));
}

void writeMeasures(const QList<LXY>& red, const QList<LXY>& green, const QList<LXY>& blue, QJsonObject& root)
{
    JsonFields::writeList(red, rMeasureKey, root);
    JsonFields::writeList(green, gMeasureKey, root);
    JsonFields::writeList(blue, bMeasureKey, root);
}

void readMeasures(const QJsonObject& root, QList<LXY>& red, QList<LXY>& green, QList<LXY>& blue)
{
    JsonFields::readList(root, rMeasureKey, red);
    JsonFields::readList(root, gMeasureKey, green);
    JsonFields::readList(root, bMeasureKey, blue);
}

QJsonObject configObject(const QList<LXY>& red, const QList<LXY>& green, const QList<LXY>& blue,
                         const FineGrayCoeffs& coeffs)
{
    QJsonObject root;
    writeMeasures(red, green, blue, root);
    JsonFields::write(coeffTables, coeffs, root);
    return root;
}

bool updateDocument(const QString& path, const std::function<void(QJsonObject& root)>& change)
{
    return DocumentFile::update(path, configObject({}, {}, {}, {}), change);
}

/// Replaces `out` when the member is a bool.
void readBool(const QJsonObject& object, QLatin1String key, bool& out)
{
    const QJsonValue value = object.value(key);
    if (value.isBool())
        out = value.toBool();
}

/// Calls `set` with the value when the member is a number.
void readInt(const QJsonObject& object, QLatin1String key, const std::function<void(int)>& set)
{
    const QJsonValue value = object.value(key);
    if (value.isDouble())
        set(value.toInt(0));
}

/// Calls `take` with the member when it is an object.
template <typename Take>
void readSection(const QJsonObject& root, QLatin1String key, const Take& take)
{
    const QJsonValue value = root.value(key);
    if (value.isObject())
        take(value.toObject());
}

} // namespace

// Conversions

void PicQualityFileTool::listToJsonArray(const QList<LXY>& list, QJsonArray& out)
{
    toArray(list, out);
}

void PicQualityFileTool::listToJsonArray(const std::vector<LXY>& list, QJsonArray& out)
{
    toArray(list, out);
}

void PicQualityFileTool::listToJsonArray(const std::vector<unsigned char>& list, QJsonArray& out)
{
    toArray(list, out);
}

void PicQualityFileTool::listToJsonArray(const QList<unsigned char>& list, QJsonArray& out)
{
    toArray(list, out);
}

void PicQualityFileTool::listToJsonArray(const std::vector<int>& list, QJsonArray& out)
{
    toArray(list, out);
}

void PicQualityFileTool::listToJsonArray(const std::vector<unsigned int>& list, QJsonArray& out)
{
    toArray(list, out);
}

void PicQualityFileTool::listToJsonArray(const QList<unsigned int>& list, QJsonArray& out)
{
    toArray(list, out);
}

void PicQualityFileTool::listToJsonArray(const std::vector<double>& list, QJsonArray& out)
{
    toArray(list, out);
}

void PicQualityFileTool::listToJsonArray(const QList<double>& list, QJsonArray& out)
{
    toArray(list, out);
}

void PicQualityFileTool::jsonArrayToList(const QJsonArray& array, QList<LXY>& out)
{
    toPoints(array, out);
}

void PicQualityFileTool::jsonArrayToList(const QJsonArray& array, std::vector<LXY>& out)
{
    toPoints(array, out);
}

void PicQualityFileTool::jsonArrayToList(const QJsonArray& array, std::vector<unsigned char>& out)
{
    toIntegers(array, out);
}

void PicQualityFileTool::jsonArrayToList(const QJsonArray& array, QList<unsigned char>& out)
{
    toIntegers(array, out);
}

void PicQualityFileTool::jsonArrayToList(const QJsonArray& array, std::vector<int>& out)
{
    toIntegers(array, out);
}

void PicQualityFileTool::jsonArrayToList(const QJsonArray& array, std::vector<unsigned int>& out)
{
    toIntegers(array, out);
}

void PicQualityFileTool::jsonArrayToList(const QJsonArray& array, QList<unsigned int>& out)
{
    toIntegers(array, out);
}

void PicQualityFileTool::jsonArrayToList(const QJsonArray& array, std::vector<double>& out)
{
    toDoubles(array, out);
}

void PicQualityFileTool::jsonArrayToList(const QJsonArray& array, QList<double>& out)
{
    toDoubles(array, out);
}

QJsonObject PicQualityFileTool::lxyToJson(const LXY& point)
{
    // Filling in a copy spares the growing that building an object key by key costs; documents have thousands of
    // points.
    static const QJsonObject blank{{lumKey, 0.0}, {xKey, 0.0}, {yKey, 0.0}};
    QJsonObject object = blank;
    object.insert(lumKey, point.lum);
    object.insert(xKey, point.x);
    object.insert(yKey, point.y);
    return object;
}

LXY getLxy(QMap<QString, QVariant> map)
{
    const auto number = [&](QLatin1String key) { return map[key].toDouble(); };
    return {number(lumKey), number(xKey), number(yKey), {}};
}

void PicQualityFileTool::mapToJsonArray(const MeasureSeries& series, QJsonArray& out)
{
    out = QJsonArray();
    for (const auto& [index, points] : series) {
        QJsonObject entry;
        JsonFields::writeList(points, measureKey, entry);
        out.append(entry);
    }
}

void PicQualityFileTool::jsonArrayToMap(const QJsonArray& array, MeasureSeries& out)
{
    out.clear();
    int index = 0;
    for (const QJsonValue value : array) {
        const QJsonValue points = value.toObject().value(measureKey);
        if (points.isArray())
            jsonArrayToList(points.toArray(), out[index++]);
    }
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
    return updateDocument(path, [&](QJsonObject& root) {
        root.insert(grayEffectKey, grayParaToJson(effect));
        root.insert(grayDetailKey, detailParaToJson(detail));
    });
}

QJsonObject PicQualityFileTool::grayParaToJson(const GrayEffectPara& effect)
{
    QJsonObject object;
    JsonFields::write(effectFields, effect, object);
    return object;
}

QJsonObject PicQualityFileTool::detailParaToJson(const GrayDetailPara& detail)
{
    QJsonObject object;
    JsonFields::write(detailSwitches, detail, object);
    JsonFields::write(detailLevel, detail, object);
    object.insert(peakValidKey, detail.getPeakValid());
    JsonFields::write(peakValues, detail, object);
    return object;
}

void PicQualityFileTool::JsonTograyPara(const QJsonObject& object, GrayEffectPara& effect)
{
    JsonFields::read(effectFields, object, effect);
}

void PicQualityFileTool::JsonTodetailPara(const QJsonObject& object, GrayDetailPara& detail)
{
    JsonFields::read(detailSwitches, object, detail);
    JsonFields::read(detailLevel, object, detail);
    JsonToLumPara(object, detail);
}

void PicQualityFileTool::JsonToLumPara(const QJsonObject& object, GrayDetailPara& detail)
{
    if (!object.value(peakValidKey).toBool(false))
        return;
    detail.setPeakValid(true);
    JsonFields::read(peakValues, object, detail);
}

// Magic gray

bool PicQualityFileTool::updateMGGrayConfig(const QString& path, const MagicGrayCoeffs& coeffs,
                                            const Model::MagicGrayParam&)
{
    return updateDocument(path, [&](QJsonObject& root) {
        QJsonObject section;
        MGMeasuresToJson(coeffs, section);
        JsonFields::write(magicTables, coeffs, section);
        root.insert(magicGrayKey, section);
    });
}

void PicQualityFileTool::MGMeasuresToJson(const MagicGrayCoeffs& coeffs, QJsonObject& object)
{
    JsonFields::write(magicPoints, coeffs, object);
    JsonFields::write(magicSeries, coeffs, object);
}

void PicQualityFileTool::JsonToMGCoeffs(const QJsonObject& object, MagicGrayCoeffs& coeffs,
                                        Model::MagicGrayParam& param)
{
    constexpr int pwmRangeOffset = 8; // the section counts the bits above the first eight
    JsonFields::read(magicPoints, object, coeffs);
    JsonFields::read(magicSeries, object, coeffs);
    JsonFields::read(magicTables, object, coeffs);
    // These two come from other producers; this library never writes them.
    readInt(object, latin1("compBase"), [&](int bits) { param.setBaseScaleBit(bits); });
    readInt(object, latin1("maxDataShiftBase"), [&](int bits) {
        param.setPWMRangeBit(std::min(bits, std::numeric_limits<int>::max() - pwmRangeOffset) + pwmRangeOffset);
    });
}

// Fine-gray configuration

bool PicQualityFileTool::writeFineGrayConfig(const QString& path, const QList<LXY>& red, const QList<LXY>& green,
                                             const QList<LXY>& blue, const FineGrayCoeffs& coeffs)
{
    return DocumentFile::write(path, configObject(red, green, blue, coeffs));
}

bool PicQualityFileTool::readFineGrayConfig(const QString& path, QList<LXY>& red, QList<LXY>& green, QList<LXY>& blue,
                                            FineGrayCoeffs& coeffs, bool& openGray, bool& openXbit, int& xbitType,
                                            bool& open18bit)
{
    openGray = openXbit = open18bit = false;
    xbitType = 0;
    return DocumentFile::read(path, [&](const QJsonObject& root) {
        readMeasures(root, red, green, blue);
        JsonFields::read(coeffTables, root, coeffs);
        // These four come from other producers; this library never writes them.
        readBool(root, latin1("openGray"), openGray);
        readBool(root, latin1("openXbit"), openXbit);
        readBool(root, latin1("open18bit"), open18bit);
        xbitType = root.value(latin1("xbitType")).toInt(0);
    });
}

bool PicQualityFileTool::readFineGrayConfig(const QString& path, QList<LXY>& red, QList<LXY>& green, QList<LXY>& blue,
                                            FineGrayCoeffs& coeffs)
{
    bool openGray = false;
    bool openXbit = false;
    int xbitType = 0;
    bool open18bit = false;
    return readFineGrayConfig(path, red, green, blue, coeffs, openGray, openXbit, xbitType, open18bit);
}

bool PicQualityFileTool::readFineGrayConfig(const QString& path, QList<LXY>& red, QList<LXY>& green, QList<LXY>& blue,
                                            FineGrayCoeffs& coeffs, GrayEffectPara& effect, GrayDetailPara& detail,
                                            MagicGrayCoeffs& magicGray, Model::MagicGrayParam& magicGrayParam)
{
    return DocumentFile::read(path, [&](const QJsonObject& root) {
        readMeasures(root, red, green, blue);
        JsonFields::read(coeffTables, root, coeffs);
        readSection(root, grayEffectKey, [&](const QJsonObject& section) { JsonTograyPara(section, effect); });
        readSection(root, grayDetailKey, [&](const QJsonObject& section) { JsonTodetailPara(section, detail); });
        readSection(root, magicGrayKey,
                    [&](const QJsonObject& section) { JsonToMGCoeffs(section, magicGray, magicGrayParam); });
    });
}

// Fine-gray cache

bool PicQualityFileTool::writeFineGrayCache(const QString& path, const QList<LXY>& red, const QList<LXY>& green,
                                            const QList<LXY>& blue)
{
    QJsonObject root;
    writeMeasures(red, green, blue, root);
    return DocumentFile::write(path, root);
}

bool PicQualityFileTool::updateFineGrayCache(const QString& path, const FineGrayAdvanceParam& advance)
{
    return updateDocument(path, [&](QJsonObject& root) {
        QJsonObject section = GrayAdvaneToJson(advance);
        if (root.contains(grayAdvanceKey))
            judgeWUpdate(root, section);
        root.insert(grayAdvanceKey, section);
    });
}

bool PicQualityFileTool::updateFineGrayCache(const QString& path, const MagicGrayCoeffs& magicGray)
{
    return updateDocument(path, [&](QJsonObject& root) { MGMeasuresToJson(magicGray, root); });
}

bool PicQualityFileTool::readFineGrayCache(const QString& path, QList<LXY>& red, QList<LXY>& green, QList<LXY>& blue,
                                           FineGrayAdvanceParam& advance)
{
    return DocumentFile::read(path, [&](const QJsonObject& root) {
        readMeasures(root, red, green, blue);
        readSection(root, grayAdvanceKey, [&](const QJsonObject& section) { getGrayAdvane(section, advance); });
    });
}

bool PicQualityFileTool::readFineGrayCache(const QString& path, QList<LXY>& red, QList<LXY>& green, QList<LXY>& blue,
                                           FineGrayAdvanceParam& advance, MagicGrayCoeffs& magicGray)
{
    return DocumentFile::read(path, [&](const QJsonObject& root) {
        readMeasures(root, red, green, blue);
        readSection(root, grayAdvanceKey, [&](const QJsonObject& section) { getGrayAdvane(section, advance); });
        Model::MagicGrayParam unused; // the cache holds measurements only
        JsonToMGCoeffs(root, magicGray, unused);
    });
}

QJsonObject PicQualityFileTool::GrayAdvaneToJson(const FineGrayAdvanceParam& advance)
{
    QJsonObject coeffs;
    JsonFields::write(advanceCoeffs, advance, coeffs);
    QJsonObject targets;
    JsonFields::write(advanceTargets, advance, targets);
    QJsonObject object;
    JsonFields::write(advanceNumbers, advance, object);
    advanceWhite.write(advance, object);
    advanceMagnitudes.write(advance, object);
    object.insert(advanceCoeffsKey, coeffs);
    object.insert(advanceTargetsKey, targets);
    return object;
}

void PicQualityFileTool::getGrayAdvane(const QJsonObject& object, FineGrayAdvanceParam& advance)
{
    JsonFields::read(advanceNumbers, object, advance);
    advanceWhite.read(object, advance);
    advanceMagnitudes.read(object, advance);
    readSection(object, advanceCoeffsKey,
                [&](const QJsonObject& coeffs) { JsonFields::read(advanceCoeffs, coeffs, advance); });
    readSection(object, advanceTargetsKey,
                [&](const QJsonObject& targets) { JsonFields::read(advanceTargets, targets, advance); });
}

void PicQualityFileTool::judgeWUpdate(QJsonObject& root, QJsonObject& advance)
{
    const QJsonObject& fresh = advance;
    const QJsonObject stored = root.value(grayAdvanceKey).toObject();
    if (!stored.contains(wMeasureKey) || !fresh.contains(wMeasureKey))
        return;
    const QJsonArray old = stored.value(wMeasureKey).toArray();
    if (old.size() <= fresh.value(wMeasureKey).toArray().size())
        return;
    for (int n = 1; n <= keptWhiteMeasures; ++n) {
        const QString key = wMeasureKey + QString::number(n);
        if (!root.contains(key)) {
            root.insert(key, old);
            return;
        }
    }
}
