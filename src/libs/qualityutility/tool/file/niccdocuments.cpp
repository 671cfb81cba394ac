// The NICC documents of PicQualityFileTool.

#include "documentfile_p.h"
#include "picqualityfiletool.h"

#include <suite/action/commonconfigaction.h>
#include <suite/common/colorgamuttype.h>
#include <suite/model/colorgamutinfo.h>

#include <QJsonDocument>
#include <qualityutility/data/nicccoeffs.h>
#include <qualityutility/data/niccdata.h>
#include <qualityutility/support/latin1_p.h>

namespace {

using Model::ColorGamutInfo;
using Support::latin1;

// The odd spellings are the documents' own.
constexpr QLatin1String versionKey = latin1("vesion");
constexpr QLatin1String timeKey = latin1("Time");
constexpr QLatin1String ledGamutKey = latin1("LEDColorGamnut");
constexpr QLatin1String targetGamutKey = latin1("TargetColorGamnut");
constexpr QLatin1String isOpenKey = latin1("IsOpen");
constexpr QLatin1String usedIndexKey = latin1("UsedIndex");

constexpr QLatin1String nameKey = latin1("name");
constexpr QLatin1String coverKey = latin1("Cover");
constexpr QLatin1String orgCoverKey = latin1("OrgCover");

constexpr QLatin1String gamutNameKey = latin1("GamutName");
constexpr QLatin1String temperatureKey = latin1("Temperature");
constexpr QLatin1String fromInputKey = latin1("FromInputStatus");

struct GamutPoint
{
    QLatin1String key;
    Model::LXY ColorGamutInfo::*member;
};

constexpr GamutPoint gamutPoints[] = {
    {latin1("RedPoint"), &ColorGamutInfo::rLxy},
    {latin1("GreenPoint"), &ColorGamutInfo::gLxy},
    {latin1("BluePoint"), &ColorGamutInfo::bLxy},
    {latin1("WhitePoint"), &ColorGamutInfo::wLxy},
};

/// The standard gamut of an index in a document of another version.
void takeStandardGamut(int index, ColorGamutInfo& target, bool& isOpen)
{
    constexpr int ownGamut = 2048;
    const int type = ReceivingCard::NiccCoeffs().getTypeByIndex(static_cast<unsigned char>(index));
    isOpen = type != ownGamut;
    if (!isOpen)
        return;
    const QString name = ColorGamutType2QString(type, true);
    const Action::ColorGamutConfigAction& gamuts = *Action::CommonConfigAction::getInstance()->getGamutConfigAC();
    target = gamuts.contains(name) ? gamuts.getByName(name) : gamuts.defaultCfg();
}

} // namespace

// NICC configuration

bool PicQualityFileTool::writeNiccConfig(const QString& path, const ColorGamutInfo& led, const ColorGamutInfo& target)
{
    QByteArray content;
    writeNicc(led, target, content);
    return DocumentFile::write(path, content);
}

void PicQualityFileTool::writeNicc(const ColorGamutInfo& led, const ColorGamutInfo& target, QByteArray& out)
{
    const NICCData& data = *NICCData::getInstance();
    out = QJsonDocument(QJsonObject{{versionKey, data.getVersion()},
                                    {timeKey, data.getManageDate().toString(Qt::ISODate)},
                                    {ledGamutKey, ColorGamutToJson(led, true)},
                                    {targetGamutKey, ColorGamutToJson(target, false)}})
              .toJson(QJsonDocument::Indented);
}

bool PicQualityFileTool::readNiccConfig(const QString& path, ColorGamutInfo& led, ColorGamutInfo& target, bool& isOpen,
                                        bool& versionChanged)
{
    return DocumentFile::readJson(path, [&](const QJsonObject& root) {
        const QVariantMap map = root.toVariantMap();
        NICCData& data = *NICCData::getInstance();
        data.setManageDate(QDate::fromString(map.value(timeKey).toString(), Qt::ISODate));
        if (map.contains(ledGamutKey))
            led = getColorGamut(map.value(ledGamutKey).toMap());
        if (map.contains(targetGamutKey))
            target = getColorGamut(map.value(targetGamutKey).toMap());
        if (map.contains(isOpenKey))
            isOpen = map.value(isOpenKey).toBool();
        if (!map.contains(versionKey))
            return;
        versionChanged = map.value(versionKey).toString() != data.getVersion();
        if (versionChanged && map.contains(usedIndexKey))
            takeStandardGamut(map.value(usedIndexKey).toInt(), target, isOpen);
    });
}

bool PicQualityFileTool::updateNiccOpenConfig(const QString& path, bool isOpen)
{
    return DocumentFile::isPresent(path) &&
           DocumentFile::update(path, {}, [isOpen](QJsonObject& root) { root.insert(isOpenKey, isOpen); });
}

QJsonObject PicQualityFileTool::ColorGamutToJson(const ColorGamutInfo& gamut, bool isLed)
{
    QJsonObject object;
    for (const GamutPoint& point : gamutPoints)
        object.insert(point.key, lxyToJson(gamut.*point.member));
    if (!isLed)
        object.insert(nameKey, QString::fromStdString(gamut.name));
    return object;
}

ColorGamutInfo PicQualityFileTool::getColorGamut(const QMap<QString, QVariant>& map)
{
    ColorGamutInfo gamut;
    for (const GamutPoint& point : gamutPoints)
        gamut.*point.member = getLxy(map.value(point.key).toMap());
    if (map.contains(coverKey))
        gamut.cover = map.value(coverKey).toDouble();
    if (map.contains(orgCoverKey))
        gamut.orgCover = map.value(orgCoverKey).toDouble();
    if (map.contains(nameKey))
        gamut.name = map.value(nameKey).toString().toStdString();
    return gamut;
}

// New-NICC document

void PicQualityFileTool::writeNewNicc(const std::string& name, int temperature, int fromInput, QByteArray& out)
{
    out = QJsonDocument(QJsonObject{{gamutNameKey, QString::fromStdString(name)},
                                    {temperatureKey, temperature},
                                    {fromInputKey, fromInput}})
              .toJson(QJsonDocument::Indented);
}

bool PicQualityFileTool::readNewNicc(const QString& path, std::string& name, int& temperature, int& fromInput)
{
    return DocumentFile::readJson(path, [&](const QJsonObject& root) {
        const QVariantMap map = root.toVariantMap();
        if (map.contains(gamutNameKey))
            name = map.value(gamutNameKey).toString().toStdString();
        if (map.contains(temperatureKey))
            temperature = map.value(temperatureKey).toInt();
        if (map.contains(fromInputKey))
            fromInput = map.value(fromInputKey).toInt();
        if (fromInput != 0)
            name = "From input";
    });
}
