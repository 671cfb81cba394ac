#include "picqualitysettings.h"

#include <qualityutility/support/latin1_p.h>

#include <QSettings>
#include <QStandardPaths>

#include <variant>

namespace {

using Model::MagicGrayParam;
using Support::latin1;
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

// The gain range is set whole: its minimum is held until the maximum is read.
struct GainMinimum
{};
struct GainMaximum
{};

/// What is read into, and what is held.
struct Reading
{
    Settings& settings;
    int minGain = 0;
};

using Target = std::variant<int Settings::*, bool Settings::*, double Settings::*, float Settings::*,
                            QString Settings::*, QStringList Settings::*, MagicValue<int>, MagicValue<bool>,
                            MagicValue<double>, GainMinimum, GainMaximum>;

/// One key. Its default is the value that the target holds, unless it has one of its own.
struct Row
{
    QLatin1String group;
    QLatin1String key;
    Target target;
    QVariant (*ownDefault)() = nullptr;
};

constexpr QLatin1String colorimeterGroup = latin1("Colorimeter410");

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
    {latin1("NetWorkTimeOut"), latin1("CustomTimeout"), &Settings::customTimeout, defaultTimeout},
    {latin1("LastOpenPath"), latin1("OpenPath"), &Settings::lastOpenPath, defaultOpenPath},
    {latin1("FineGray"), latin1("GrayAdvanceState"), &Settings::grayAdvanceState, defaultGrayAdvance},
    {latin1("MaxWCom"), latin1("GrayMaxWCom"), &Settings::grayMaxWCom},
    {latin1("MaxWCom"), latin1("CustomColorCoordinate"), &Settings::customColorCoordinate},
    {latin1("MaxWCom"), latin1("ColorTemp"), &Settings::colorTemp},
    {latin1("MaxWCom"), latin1("xCom"), &Settings::xCom},
    {latin1("MaxWCom"), latin1("yCom"), &Settings::yCom},
    {colorimeterGroup, latin1("FreqMode"), &Settings::freqMode},
    {colorimeterGroup, latin1("Freq"), &Settings::freq},
    {colorimeterGroup, latin1("Speed"), &Settings::speed},
    {colorimeterGroup, latin1("LvMode"), &Settings::lvMode},
    {colorimeterGroup, latin1("DisplayMode"), &Settings::displayMode},
    {colorimeterGroup, latin1("ChannelNO"), &Settings::channelNo},
    {colorimeterGroup, latin1("FreqList"), &Settings::freqList},
    {latin1("MagicGray"), latin1("MagicGrayState"), &Settings::magicGrayState},
    {latin1("MagicGray"), latin1("MinGain"), GainMinimum()},
    {latin1("MagicGray"), latin1("MaxGain"), GainMaximum()},
    {latin1("MagicGray"), latin1("GainConfigUse"),
     magic<&MagicGrayParam::getGainConfigUse, &MagicGrayParam::setGainConfigUse>()},
    // Read before and after the PWM range: a record whose range limits its layers takes the number in the second time.
    {latin1("MagicGray"), latin1("LCCPWMComGainLUTLayerNum"),
     magic<&MagicGrayParam::getPWMLutLayerNum, &MagicGrayParam::setPWMLutLayerNum>()},
    {latin1("MagicGray"), latin1("CurrentControlPWMRangeBit"),
     magic<&MagicGrayParam::getPWMRangeBit, &MagicGrayParam::setPWMRangeBit>()},
    {latin1("MagicGray"), latin1("LCCPWMComGainLUTLayerNum"),
     magic<&MagicGrayParam::getPWMLutLayerNum, &MagicGrayParam::setPWMLutLayerNum>()},
    {latin1("MagicGray"), latin1("DataOutputlength"),
     magic<&MagicGrayParam::getDataLen, &MagicGrayParam::setDataLen>()},
    {latin1("MagicGray"), latin1("LimitMinRatio"),
     magic<&MagicGrayParam::getLimitMinRatio, &MagicGrayParam::setLimitMinRatio>()},
    {latin1("MagicGray"), latin1("MinPos"), magic<&MagicGrayParam::getMinPos, &MagicGrayParam::setMinPos>()},
    {latin1("MagicGray"), latin1("PowerPara"), magic<&MagicGrayParam::getPowerPara, &MagicGrayParam::setPowerPara>()},
    {latin1("MagicGray"), latin1("KPara"), magic<&MagicGrayParam::getKPara, &MagicGrayParam::setKPara>()},
    {latin1("MagicGray"), latin1("ColorCorrentEn"),
     magic<&MagicGrayParam::getColorCorrentEn, &MagicGrayParam::setColorCorrentEn>()},
    {latin1("MagicGray"), latin1("ColorCorr_Mode"),
     magic<&MagicGrayParam::getColorCorrMode, &MagicGrayParam::setColorCorrMode>()},
    {latin1("MagicGray"), latin1("BaseScaleBit"),
     magic<&MagicGrayParam::getBaseScaleBit, &MagicGrayParam::setBaseScaleBit>()},
    {latin1("MagicGray"), latin1("CompenCoefBit"),
     magic<&MagicGrayParam::getCompenCoefBit, &MagicGrayParam::setCompenCoefBit>()},
    {latin1("MagicGray"), latin1("WCompLUTLimitLength"),
     magic<&MagicGrayParam::getWCompLUTLimitLength, &MagicGrayParam::setWCompLUTLimitLength>()},
    {latin1("MagicGray"), latin1("CurrentLimitLength"),
     magic<&MagicGrayParam::getCurrentLimitLength, &MagicGrayParam::setCurrentLimitLength>()},
    {latin1("MagicGray"), latin1("RGBCompLUTLimitLength"),
     magic<&MagicGrayParam::getRGBCompLUTLimitLength, &MagicGrayParam::setRGBCompLUTLimitLength>()},
    {latin1("MagicGray"), latin1("MeasureWaitTime"), &Settings::measureWaitTime},
    {latin1("MagicGray"), latin1("WhiteCTCEN"),
     magic<&MagicGrayParam::getWhiteCTCEN, &MagicGrayParam::setWhiteCTCEN>()},
    {latin1("MagicGray"), latin1("CTCnums"), magic<&MagicGrayParam::getCTCnums, &MagicGrayParam::setCTCnums>()},
    {latin1("MagicGray"), latin1("CTCstepWei"),
     magic<&MagicGrayParam::getCTCstepWei, &MagicGrayParam::setCTCstepWei>()},
    {latin1("MagicGray"), latin1("MinLayerSet"),
     magic<&MagicGrayParam::getMinLayerSet, &MagicGrayParam::setMinLayerSet>()},
    {latin1("ABLParam"), latin1("DefaultMAXLum"), &Settings::defaultMaxLum},
    {latin1("ABLParam"), latin1("PeakBrightnessScale"), &Settings::peakBrightnessScale},
    {latin1("ColourGamut"), latin1("DefaultCoeff"), &Settings::defaultCoeff},
};

/// The conversions of QVariant: what does not convert becomes 0, false or empty.
template <typename T>
T convert(const QVariant& value)
{
    return value.value<T>();
}

template <typename T>
QVariant current(const Reading& reading, T Settings::*member)
{
    return reading.settings.*member;
}

template <typename T>
QVariant current(const Reading& reading, const MagicValue<T>& value)
{
    return (reading.settings.magicGray.*value.get)();
}

QVariant current(const Reading& reading, GainMinimum)
{
    return reading.settings.magicGray.getMinGain();
}

QVariant current(const Reading& reading, GainMaximum)
{
    return reading.settings.magicGray.getMaxGain();
}

template <typename T>
void store(Reading& reading, T Settings::*member, const QVariant& value)
{
    reading.settings.*member = convert<T>(value);
}

template <typename T>
void store(Reading& reading, const MagicValue<T>& target, const QVariant& value)
{
    target.set(reading.settings.magicGray, convert<T>(value));
}

void store(Reading& reading, GainMinimum, const QVariant& value)
{
    reading.minGain = value.toInt();
}

void store(Reading& reading, GainMaximum, const QVariant& value)
{
    reading.settings.magicGray.setGainRange(reading.minGain, value.toInt());
}

void readRow(QSettings& file, const Row& row, Reading& reading)
{
    const QString path = row.group + QLatin1Char('/') + row.key;
    std::visit(
        [&](const auto& target) {
            const QVariant fallback = row.ownDefault ? row.ownDefault() : current(reading, target);
            store(reading, target, file.value(path, fallback));
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
    Reading reading{*this};
    for (const Row& row : rows) {
        if (before && before->group == colorimeterGroup && row.group != colorimeterGroup)
            finishColorimeter(*this);
        readRow(file, row, reading);
        before = &row;
    }
}
