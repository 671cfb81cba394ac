#include "walldocument.h"

#include <suite/common/jsonreader.h>

#include <QFile>

#include <algorithm>
#include <cmath>
#include <limits>
#include <unordered_set>

namespace Service {

namespace {

using Common::JsonReader;

constexpr double maxExactInteger = 9007199254740991.0; // 2^53 - 1: above it a JSON number may name two integers
constexpr int maxInt = std::numeric_limits<int>::max();

unsigned long long readIdentifier(const JsonReader& place)
{
    const QJsonValue& value = place.value();
    if (value.isDouble()) {
        const double number = value.toDouble();
        if (number >= 0.0 && number <= maxExactInteger && std::floor(number) == number)
            return static_cast<unsigned long long>(number);
    } else if (value.isString()) {
        bool converted = false;
        const unsigned long long number = value.toString().toULongLong(&converted, 10);
        if (converted)
            return number;
    }
    place.expect(QStringLiteral("an identifier: an integer from 0 to 9007199254740991, or a string of decimal digits "
                                "up to 18446744073709551615"));
    return 0;
}

std::shared_ptr<Model::Cabinet> readCabinet(const JsonReader& place)
{
    auto cabinet = std::make_shared<Model::Cabinet>(readIdentifier(place.object().member("cid")));
    Model::CabinetBase& base = cabinet->getBase();
    base.setGrayScaleSeries(place.member("grayScaleSeries").integer(1, maxInt, base.getGrayScaleSeries()));
    base.setChipEffectFlag(place.member("chipEffectFlag").integer(0, maxInt, base.getChipEffectFlag()));
    const int mode = place.member("effectMode").integer(0, maxInt, 0);
    cabinet->getDisplayEffectPara().setEffectMode(static_cast<unsigned int>(mode));
    return cabinet;
}

void checkDistinct(const JsonReader& array, const std::vector<std::shared_ptr<Model::Cabinet>>& cabinets)
{
    std::vector<std::pair<unsigned long long, int>> places;
    places.reserve(cabinets.size());
    for (const auto& cabinet : cabinets)
        places.emplace_back(cabinet->getCid(), static_cast<int>(places.size()));
    std::sort(places.begin(), places.end());
    const auto twice = std::adjacent_find(places.begin(), places.end(),
                                          [](const auto& a, const auto& b) { return a.first == b.first; });
    if (twice == places.end())
        return;
    const JsonReader second = array.element(std::next(twice)->second);
    second.member("cid").refuse(QStringLiteral("cabinet %1 is listed twice").arg(twice->first));
}

void readCabinets(const JsonReader& array, DeviceEntry& entry)
{
    const int count = array.count();
    entry.cabinets.reserve(static_cast<size_t>(count));
    for (int i = 0; i < count && !array.hasFault(); ++i)
        entry.cabinets.push_back(readCabinet(array.element(i)));
    if (!array.hasFault())
        checkDistinct(array, entry.cabinets);
}

WallDevice readDevice(const JsonReader& place, std::unordered_set<std::string>& identities)
{
    WallDevice result;
    result.entry.device = std::make_shared<Model::Device>();
    Model::Device& device = *result.entry.device;
    const JsonReader identity = place.object().member("id");
    const std::string id = identity.text().toStdString();
    if (id.empty())
        identity.refuse(QStringLiteral("an identity must not be empty"));
    if (!identities.insert(id).second)
        identity.refuse(QStringLiteral("device \"%1\" is listed twice").arg(QString::fromStdString(id)));
    device.getBase().setId(id);
    device.getBase().setType(place.member("type").text().toStdString());
    device.getConfiguration().getCapacity().setIsSupportBatchCorrectionSwitch(
        place.member("batchCorrectionSwitch").flag(false));
    const JsonReader simulation = place.member("simulation");
    if (!simulation.isMissing())
        result.simulation = simulation.object().value().toObject();
    readCabinets(place.member("cabinets"), result.entry);
    return result;
}

} // namespace

Common::Result<Wall> parseWall(const QByteArray& text, const QString& name)
{
    const QString subject = QStringLiteral("wall document %1").arg(name);
    const auto object = Common::parseJsonObject(text, subject);
    if (!object)
        return object.fault();
    std::optional<Common::Fault> fault;
    const JsonReader root(*object, fault);
    const JsonReader devices = root.member("devices");
    const int count = devices.count();
    std::unordered_set<std::string> identities;
    Wall wall;
    wall.reserve(static_cast<size_t>(count));
    for (int i = 0; i < count && !fault; ++i)
        wall.push_back(readDevice(devices.element(i), identities));
    if (fault)
        return Common::Fault{Common::Fault::Kind::BadData, subject, {}, fault->message()};
    return wall;
}

std::optional<Wall> readWall(const QString& filePath, QString& error)
{
    QFile file(filePath);
    QByteArray text;
    if (file.open(QIODevice::ReadOnly))
        text = file.read(maxWallBytes + 1);
    if (file.error() != QFileDevice::NoError) {
        error = QStringLiteral("wall document %1: cannot be read: %2").arg(filePath, file.errorString());
        return std::nullopt;
    }
    if (text.size() > maxWallBytes) {
        error = QStringLiteral("wall document %1: larger than 32 MiB").arg(filePath);
        return std::nullopt;
    }
    auto wall = parseWall(text, filePath);
    if (wall)
        return std::move(*wall);
    error = wall.fault().message();
    return std::nullopt;
}

bool loadWall(const QString& filePath, QString& error)
{
    auto wall = readWall(filePath, error);
    if (!wall)
        return false;
    std::vector<DeviceEntry> entries;
    entries.reserve(wall->size());
    for (WallDevice& device : *wall)
        entries.push_back(std::move(device.entry));
    ModelService::setDevices(std::move(entries));
    return true;
}

} // namespace Service
