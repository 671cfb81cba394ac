// The NICC documents of PicQualityFileTool.

#include "documentfile_p.h"
#include "jsonfields_p.h"
#include "niccdocuments_p.h"
#include "picqualityfiletool.h"
#include <qualityutility/data/nicccoeffs.h>
#include <qualityutility/data/niccdata.h>
#include <suite/action/commonconfigaction.h>
#include <suite/common/colorgamuttype.h>
#include <suite/model/colorgamutinfo.h>

#include <QJsonDocument>

#include <array>

namespace {

using Model::ColorGamutInfo;
using Support::latin1;

// The odd spellings are the documents' own.
constexpr auto version = columnOf<QString>(latin1("vesion"));
constexpr auto day = columnOf<QString>(latin1("Time"));
constexpr JsonColumn ledGamut{latin1("LEDColorGamnut"), JsonColumn::Type::Object};
constexpr JsonColumn targetGamut{latin1("TargetColorGamnut"), JsonColumn::Type::Object};
constexpr auto openSwitch = columnOf<bool>(latin1("IsOpen"));
constexpr auto usedIndex = columnOf<int>(latin1("UsedIndex"));

constexpr auto gamutName = columnOf<QString>(latin1("name"));
constexpr auto cover = columnOf<double>(latin1("Cover"));
constexpr auto orgCover = columnOf<double>(latin1("OrgCover"));

constexpr auto newName = columnOf<QString>(latin1("GamutName"));
constexpr auto newTemperature = columnOf<int>(latin1("Temperature"));
constexpr JsonColumn newFromInput{latin1("FromInputStatus"), JsonColumn::Type::Int, smallestInt, largestInt};

struct GamutPoint
{
    QLatin1String key;
    Model::LXY ColorGamutInfo::*point;

    JsonMember member() const { return {columnOf<Model::LXY>(key)}; }
};

constexpr std::array<GamutPoint, 4> gamutPoints{{
    {latin1("RedPoint"), &ColorGamutInfo::rLxy},
    {latin1("GreenPoint"), &ColorGamutInfo::gLxy},
    {latin1("BluePoint"), &ColorGamutInfo::bLxy},
    {latin1("WhitePoint"), &ColorGamutInfo::wLxy},
}};

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

DocumentKind NiccDocuments::configuration()
{
    const auto gamut = JsonFields::membersOf(gamutPoints, std::tie(gamutName, cover, orgCover));
    return {QStringLiteral("NICC configuration"),
            {ledGamut.key, targetGamut.key},
            {{version}, {day}, {ledGamut, gamut}, {targetGamut, gamut}, {openSwitch}, {usedIndex}}};
}

DocumentKind NiccDocuments::newNicc()
{
    return {QStringLiteral("new-NICC document"),
            {newName.key, newFromInput.key},
            {{newName}, {newTemperature}, {newFromInput}}};
}

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
    out = QJsonDocument(QJsonObject{{version.key, data.getVersion()},
                                    {day.key, data.getManageDate().toString(Qt::ISODate)},
                                    {ledGamut.key, ColorGamutToJson(led, true)},
                                    {targetGamut.key, ColorGamutToJson(target, false)}})
              .toJson(QJsonDocument::Indented);
}

bool PicQualityFileTool::readNiccConfig(const QString& path, ColorGamutInfo& led, ColorGamutInfo& target, bool& isOpen,
                                        bool& versionChanged)
{
    return DocumentFile::readJson(path, [&](const QJsonObject& root) {
        const QVariantMap map = root.toVariantMap();
        NICCData& data = *NICCData::getInstance();
        data.setManageDate(QDate::fromString(map.value(day.key).toString(), Qt::ISODate));
        if (map.contains(ledGamut.key))
            led = getColorGamut(map.value(ledGamut.key).toMap());
        if (map.contains(targetGamut.key))
            target = getColorGamut(map.value(targetGamut.key).toMap());
        if (map.contains(openSwitch.key))
            isOpen = map.value(openSwitch.key).toBool();
        if (!map.contains(version.key))
            return;
        versionChanged = map.value(version.key).toString() != data.getVersion();
        if (versionChanged && map.contains(usedIndex.key))
            takeStandardGamut(map.value(usedIndex.key).toInt(), target, isOpen);
    });
}

bool PicQualityFileTool::updateNiccOpenConfig(const QString& path, bool isOpen)
{
    return DocumentFile::isPresent(path) &&
           DocumentFile::update(path, {}, [isOpen](QJsonObject& root) { root.insert(openSwitch.key, isOpen); });
}

QJsonObject PicQualityFileTool::ColorGamutToJson(const ColorGamutInfo& gamut, bool isLed)
{
    QJsonObject object;
    for (const GamutPoint& point : gamutPoints)
        object.insert(point.key, lxyToJson(gamut.*point.point));
    if (!isLed)
        object.insert(gamutName.key, QString::fromStdString(gamut.name));
    return object;
}

ColorGamutInfo PicQualityFileTool::getColorGamut(const QMap<QString, QVariant>& map)
{
    ColorGamutInfo gamut;
    for (const GamutPoint& point : gamutPoints)
        gamut.*point.point = getLxy(map.value(point.key).toMap());
    if (map.contains(cover.key))
        gamut.cover = map.value(cover.key).toDouble();
    if (map.contains(orgCover.key))
        gamut.orgCover = map.value(orgCover.key).toDouble();
    if (map.contains(gamutName.key))
        gamut.name = map.value(gamutName.key).toString().toStdString();
    return gamut;
}

// New-NICC document

void PicQualityFileTool::writeNewNicc(const std::string& name, int temperature, int fromInput, QByteArray& out)
{
    out = QJsonDocument(QJsonObject{{newName.key, QString::fromStdString(name)},
                                    {newTemperature.key, temperature},
                                    {newFromInput.key, fromInput}})
              .toJson(QJsonDocument::Indented);
}

bool PicQualityFileTool::readNewNicc(const QString& path, std::string& name, int& temperature, int& fromInput)
{
    return DocumentFile::readJson(path, [&](const QJsonObject& root) {
        const QVariantMap map = root.toVariantMap();
        if (map.contains(newName.key))
            name = map.value(newName.key).toString().toStdString();
        if (map.contains(newTemperature.key))
            temperature = map.value(newTemperature.key).toInt();
        if (map.contains(newFromInput.key))
            fromInput = map.value(newFromInput.key).toInt();
        if (fromInput != 0)
            name = "From input";
    });
}
