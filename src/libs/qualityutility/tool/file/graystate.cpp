#include "graystate_p.h"
#include "jsonfields_p.h"
#include <suite/model/graydetailpara.h>
#include <suite/model/grayeffectpara.h>

#include <array>

namespace GrayState {

namespace {

using Model::GrayDetailPara;
using Model::GrayEffectPara;
using Support::latin1;
using EffectSwitch = JsonFields::Field<GrayEffectPara, bool>;
using DetailSwitch = JsonFields::Field<GrayDetailPara, bool>;
using DetailNumber = JsonFields::Field<GrayDetailPara, int>;

constexpr std::array<EffectSwitch, 4> effectFields{{
    {latin1("supGraySwitch"), &GrayEffectPara::getSupGraySwitch, &GrayEffectPara::setSupGraySwitch},
    {latin1("fineGraySwitch"), &GrayEffectPara::getFineGraySwitch, &GrayEffectPara::setFineGraySwitch},
    {latin1("switch22bit"), &GrayEffectPara::get22bitSwitch, &GrayEffectPara::set22bitSwitch},
    {latin1("switchMG"), &GrayEffectPara::getMGSwitch, &GrayEffectPara::setMGSwitch},
}};

constexpr auto detailFields = std::make_tuple(
    DetailSwitch{latin1("qualityAdvance"), &GrayDetailPara::getQualityAdvance, &GrayDetailPara::setQualityAdvance},
    DetailSwitch{latin1("detailAdvance"), &GrayDetailPara::getDetailAdvance, &GrayDetailPara::setDetailAdvance},
    DetailNumber{latin1("detailLevel"), &GrayDetailPara::getDetailLevel, &GrayDetailPara::setDetailLevel},
    DetailSwitch{latin1("switchABL"), &GrayDetailPara::getABLSwitch, &GrayDetailPara::setABLSwitch});

// True means valid, against its name: earlier files depend on both.
constexpr DetailSwitch peakValid{latin1("peakInvalid"), &GrayDetailPara::getPeakValid, &GrayDetailPara::setPeakValid};

constexpr std::array<DetailNumber, 3> peakFields{{
    {latin1("peakMeasure"), &GrayDetailPara::getPeakMeasure, &GrayDetailPara::setPeakMeasure},
    {latin1("peakLum"), &GrayDetailPara::getPeakLum, &GrayDetailPara::setPeakLum},
    {latin1("maxLum"), &GrayDetailPara::getMaxLum, &GrayDetailPara::setMaxLum},
}};

constexpr DetailSwitch toneMapping{latin1("switchINVTMO"), &GrayDetailPara::getINVTMOSwitch,
                                   &GrayDetailPara::setINVTMOSwitch};

} // namespace

std::vector<JsonMember> effectMembers()
{
    return JsonFields::membersOf(effectFields);
}

std::vector<JsonMember> detailMembers()
{
    return JsonFields::membersOf(detailFields, std::tie(peakValid), peakFields, std::tie(toneMapping));
}

QJsonObject toJson(const GrayEffectPara& effect)
{
    QJsonObject object;
    JsonFields::write(effectFields, effect, object);
    return object;
}

QJsonObject toJson(const GrayDetailPara& detail)
{
    QJsonObject object;
    JsonFields::write(detailFields, detail, object);
    peakValid.write(detail, object);
    JsonFields::write(peakFields, detail, object);
    toneMapping.write(detail, object);
    return object;
}

void read(const QJsonObject& object, GrayEffectPara& effect)
{
    JsonFields::read(effectFields, object, effect);
}

void read(const QJsonObject& object, GrayDetailPara& detail)
{
    JsonFields::read(detailFields, object, detail);
    toneMapping.read(object, detail);
    readPeak(object, detail);
}

void readPeak(const QJsonObject& object, GrayDetailPara& detail)
{
    if (!object.value(peakValid.key).toBool(false))
        return;
    peakValid.read(object, detail);
    JsonFields::read(peakFields, object, detail);
}

} // namespace GrayState
