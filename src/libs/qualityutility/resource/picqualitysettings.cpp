#include "picqualitysettings.h"

#include <QSettings>
#include <QStandardPaths>

#include <variant>

namespace {

using Model::MagicGrayParam;
using Settings = PicQualitySettings;

template <typename T>
struct MagicValue
{
    T (MagicGrayParam::*get)() const;
    void (*set)(MagicGrayParam&, T);
};

template <typename T, void (MagicGrayParam::*setter)(T)>
void assign(MagicGrayParam& param, T value)
{
    (param.*setter)(value);
}

template <auto getter, auto setter>
constexpr auto magic()
{
    using T = decltype((MagicGrayParam().*getter)());
    return MagicValue<T>{getter, assign<T, setter>};
}

void setMinGain(MagicGrayParam& param, int min)
{
    param.setGainRange(min, param.getMaxGain());
}

void setMaxGain(MagicGrayParam& param, int max)
{
    param.setGainRange(param.getMinGain(), max);
}

using Target =
    std::variant<int Settings::*, bool Settings::*, double Settings::*, float Settings::*, QString Settings::*,
                 QStringList Settings::*, MagicValue<int>, MagicValue<bool>, MagicValue<double>>;

/// One key. Its default is the value that the target holds, unless it has one of its own.
struct Row
{
    QLatin1String group;
    QLatin1String key;
    Target target;
    QVariant (*ownDefault)() = nullptr;
};

constexpr QLatin1String colorimeterGroup("Colorimeter410");

QVariant defaultTimeout()
{
    return 1;
}

QVariant defaultGrayAdvance()
{
    return true;
}

QVariant defaultOpenPath()
{
    return QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
}

/// In reading order. Group and key names are kept as files have them.
const Row rows[] = {
    {QLatin1String("NetWorkTimeOut"), QLatin1String("CustomTimeout"), &Settings::customTimeout, defaultTimeout},
    {QLatin1String("LastOpenPath"), QLatin1String("OpenPath"), &Settings::lastOpenPath, defaultOpenPath},
    {QLatin1String("FineGray"), QLatin1String("GrayAdvanceState"), &Settings::grayAdvanceState, defaultGrayAdvance},
    {QLatin1String("MaxWCom"), QLatin1String("GrayMaxWCom"), &Settings::grayMaxWCom},
    {QLatin1String("MaxWCom"), QLatin1String("CustomColorCoordinate"), &Settings::customColorCoordinate},
    {QLatin1String("MaxWCom"), QLatin1String("ColorTemp"), &Settings::colorTemp},
    {QLatin1String("MaxWCom"), QLatin1String("xCom"), &Settings::xCom},
    {QLatin1String("MaxWCom"), QLatin1String("yCom"), &Settings::yCom},
    {colorimeterGroup, QLatin1String("FreqMode"), &Settings::freqMode},
    {colorimeterGroup, QLatin1String("Freq"), &Settings::freq},
    {colorimeterGroup, QLatin1String("Speed"), &Settings::speed},
    {colorimeterGroup, QLatin1String("LvMode"), &Settings::lvMode},
    {colorimeterGroup, QLatin1String("DisplayMode"), &Settings::displayMode},
    {colorimeterGroup, QLatin1String("ChannelNO"), &Settings::channelNo},
    {colorimeterGroup, QLatin1String("FreqList"), &Settings::freqList},
    {QLatin1String("MagicGray"), QLatin1String("MagicGrayState"), &Settings::magicGrayState},
    {QLatin1String("MagicGray"), QLatin1String("MinGain"), MagicValue<int>{&MagicGrayParam::getMinGain, setMinGain}},
    {QLatin1String("MagicGray"), QLatin1String("MaxGain"), MagicValue<int>{&MagicGrayParam::getMaxGain, setMaxGain}},
    {QLatin1String("MagicGray"), QLatin1String("GainConfigUse"),
     magic<&MagicGrayParam::getGainConfigUse, &MagicGrayParam::setGainConfigUse>()},
    // Read before and after the PWM range: a record whose range limits its layers takes the number in the second time.
    {QLatin1String("MagicGray"), QLatin1String("LCCPWMComGainLUTLayerNum"),
     magic<&MagicGrayParam::getPWMLutLayerNum, &MagicGrayParam::setPWMLutLayerNum>()},
    {QLatin1String("MagicGray"), QLatin1String("CurrentControlPWMRangeBit"),
     magic<&MagicGrayParam::getPWMRangeBit, &MagicGrayParam::setPWMRangeBit>()},
    {QLatin1String("MagicGray"), QLatin1String("LCCPWMComGainLUTLayerNum"),
     magic<&MagicGrayParam::getPWMLutLayerNum, &MagicGrayParam::setPWMLutLayerNum>()},
    {QLatin1String("MagicGray"), QLatin1String("DataOutputlength"),
     magic<&MagicGrayParam::getDataLen, &MagicGrayParam::setDataLen>()},
    {QLatin1String("MagicGray"), QLatin1String("LimitMinRatio"),
     magic<&MagicGrayParam::getLimitMinRatio, &MagicGrayParam::setLimitMinRatio>()},
    {QLatin1String("MagicGray"), QLatin1String("MinPos"),
     magic<&MagicGrayParam::getMinPos, &MagicGrayParam::setMinPos>()},
    {QLatin1String("MagicGray"), QLatin1String("PowerPara"),
     magic<&MagicGrayParam::getPowerPara, &MagicGrayParam::setPowerPara>()},
    {QLatin1String("MagicGray"), QLatin1String("KPara"), magic<&MagicGrayParam::getKPara, &MagicGrayParam::setKPara>()},
    {QLatin1String("MagicGray"), QLatin1String("ColorCorrentEn"),
     magic<&MagicGrayParam::getColorCorrentEn, &MagicGrayParam::setColorCorrentEn>()},
    {QLatin1String("MagicGray"), QLatin1String("ColorCorr_Mode"),
     magic<&MagicGrayParam::getColorCorrMode, &MagicGrayParam::setColorCorrMode>()},
    {QLatin1String("MagicGray"), QLatin1String("BaseScaleBit"),
     magic<&MagicGrayParam::getBaseScaleBit, &MagicGrayParam::setBaseScaleBit>()},
    {QLatin1String("MagicGray"), QLatin1String("CompenCoefBit"),
     magic<&MagicGrayParam::getCompenCoefBit, &MagicGrayParam::setCompenCoefBit>()},
    {QLatin1String("MagicGray"), QLatin1String("WCompLUTLimitLength"),
     magic<&MagicGrayParam::getWCompLUTLimitLength, &MagicGrayParam::setWCompLUTLimitLength>()},
    {QLatin1String("MagicGray"), QLatin1String("CurrentLimitLength"),
     magic<&MagicGrayParam::getCurrentLimitLength, &MagicGrayParam::setCurrentLimitLength>()},
    {QLatin1String("MagicGray"), QLatin1String("RGBCompLUTLimitLength"),
     magic<&MagicGrayParam::getRGBCompLUTLimitLength, &MagicGrayParam::setRGBCompLUTLimitLength>()},
    {QLatin1String("MagicGray"), QLatin1String("MeasureWaitTime"), &Settings::measureWaitTime},
    {QLatin1String("MagicGray"), QLatin1String("WhiteCTCEN"),
     magic<&MagicGrayParam::getWhiteCTCEN, &MagicGrayParam::setWhiteCTCEN>()},
    {QLatin1String("MagicGray"), QLatin1String("CTCnums"),
     magic<&MagicGrayParam::getCTCnums, &MagicGrayParam::setCTCnums>()},
    {QLatin1String("MagicGray"), QLatin1String("CTCstepWei"),
     magic<&MagicGrayParam::getCTCstepWei, &MagicGrayParam::setCTCstepWei>()},
    {QLatin1String("MagicGray"), QLatin1String("MinLayerSet"),
     magic<&MagicGrayParam::getMinLayerSet, &MagicGrayParam::setMinLayerSet>()},
    {QLatin1String("ABLParam"), QLatin1String("DefaultMAXLum"), &Settings::defaultMaxLum},
    {QLatin1String("ABLParam"), QLatin1String("PeakBrightnessScale"), &Settings::peakBrightnessScale},
    {QLatin1String("ColourGamut"), QLatin1String("DefaultCoeff"), &Settings::defaultCoeff},
};

/// The conversions of QVariant: what does not convert becomes 0, false or empty.
template <typename T>
T convert(const QVariant& value)
{
    return value.value<T>();
}

template <typename T>
QVariant current(const Settings& settings, T Settings::*member)
{
    return settings.*member;
}

template <typename T>
QVariant current(const Settings& settings, const MagicValue<T>& value)
{
    return (settings.magicGray.*value.get)();
}

template <typename T>
void store(Settings& settings, T Settings::*member, const QVariant& value)
{
    settings.*member = convert<T>(value);
}

template <typename T>
void store(Settings& settings, const MagicValue<T>& target, const QVariant& value)
{
    target.set(settings.magicGray, convert<T>(value));
}

void readRow(QSettings& file, const Row& row, Settings& settings)
{
    const QString path = row.group + QLatin1Char('/') + row.key;
    std::visit(
        [&](const auto& target) {
            const QVariant fallback = row.ownDefault ? row.ownDefault() : current(settings, target);
            store(settings, target, file.value(path, fallback));
        },
        row.target);
}

void finishColorimeter(Settings& settings)
{
    for (QString& frequency : settings.freqList)
        frequency += QStringLiteral(" HZ");
    constexpr int minKelvin = 1500;
    constexpr int maxKelvin = 100000;
    if (settings.colorTemp < minKelvin || settings.colorTemp > maxKelvin)
        settings.colorTemp = 6500;
}

} // namespace

void PicQualitySettings::read(QSettings& file)
{
    const Row* before = nullptr;
    for (const Row& row : rows) {
        if (before && before->group == colorimeterGroup && row.group != colorimeterGroup)
            finishColorimeter(*this);
        readRow(file, row, *this);
        before = &row;
    }
}
