#include "wallargument.h"

#include "inputfile.h"

#include <QStringList>

#include <algorithm>
#include <unordered_set>

namespace {

const QString s_builtInWall = QStringLiteral(":/examples/wall.json");
constexpr unsigned long long maxRange = 1000000;

unsigned long long parseCabinet(const QString& text, const QString& whole)
{
    bool converted = false;
    const unsigned long long cid = text.toULongLong(&converted, 10);
    if (!converted)
        throw CommandError{
            ExitCode::Usage,
            QStringLiteral("--cabinet: expected an identifier or a range such as 5-9, found \"%1\"").arg(whole)};
    return cid;
}

} // namespace

OpenWall openWall(const WallArgument& argument)
{
    const bool isBuiltIn = argument.file.empty();
    const QString path = isBuiltIn ? s_builtInWall : QString::fromStdString(argument.file);
    requireReadableFile(path, QStringLiteral("wall document"));
    QString error;
    auto wall = Service::readWall(path, error);
    if (!wall)
        throw CommandError{ExitCode::BadData, error,
                           QStringLiteral("examples/wall.json shows what a wall document holds")};
    std::vector<Service::DeviceEntry> entries;
    for (const Service::WallDevice& device : *wall)
        entries.push_back(device.entry);
    Service::ModelService::setDevices(entries);
    return {isBuiltIn ? QStringLiteral("built-in example wall") : path, std::move(*wall)};
}

std::vector<unsigned long long> parseCabinets(const std::vector<std::string>& texts)
{
    std::vector<unsigned long long> cids;
    for (const std::string& entry : texts) {
        const QString text = QString::fromStdString(entry);
        const int dash = text.indexOf(QLatin1Char('-'));
        const unsigned long long first = parseCabinet(dash < 0 ? text : text.left(dash), text);
        const unsigned long long last = dash < 0 ? first : parseCabinet(text.mid(dash + 1), text);
        if (last < first || last - first >= maxRange)
            throw CommandError{ExitCode::Usage,
                               QStringLiteral("--cabinet: \"%1\" is not a range that goes up by less than %2")
                                   .arg(text, QString::number(maxRange))};
        for (unsigned long long cid = first;; ++cid) {
            cids.push_back(cid);
            if (cid == last)
                break;
        }
    }
    return cids;
}

QJsonValue cidToJson(unsigned long long cid)
{
    constexpr unsigned long long maxExact = 1ULL << 53;
    return cid <= maxExact ? QJsonValue(static_cast<double>(cid)) : QJsonValue(QString::number(cid));
}

CabinetSenderSpace::CabinetTargetMap selectTargets(const OpenWall& wall, const WallArgument& argument)
{
    const auto cids = parseCabinets(argument.cabinets);
    const std::unordered_set<unsigned long long> wanted(cids.begin(), cids.end());
    std::unordered_set<std::string> missingDevices(argument.devices.begin(), argument.devices.end());
    const bool allDevices = missingDevices.empty();
    auto missingCabinets = wanted;
    QStringList names;
    CabinetSenderSpace::CabinetTargetMap targets;
    for (const Service::WallDevice& device : wall.wall) {
        const std::string& id = device.entry.device->getBase().getId();
        names << QString::fromStdString(id);
        if (!allDevices && missingDevices.erase(id) == 0)
            continue;
        std::vector<unsigned long long> selected;
        for (const auto& cabinet : device.entry.cabinets) {
            if (wanted.empty() || wanted.count(cabinet->getCid()) != 0)
                selected.push_back(cabinet->getCid());
            missingCabinets.erase(cabinet->getCid());
        }
        if (!selected.empty() || wanted.empty())
            targets.emplace(id, std::move(selected));
    }
    if (!missingDevices.empty())
        throw CommandError{ExitCode::Usage,
                           QStringLiteral("--device %1: the wall has no such device")
                               .arg(QString::fromStdString(*missingDevices.begin())),
                           QStringLiteral("it has: %1").arg(names.join(QStringLiteral(", ")))};
    if (!missingCabinets.empty())
        throw CommandError{ExitCode::Usage,
                           QStringLiteral("--cabinet %1: no selected device has such a cabinet")
                               .arg(*std::min_element(missingCabinets.begin(), missingCabinets.end())),
                           QStringLiteral("qualityctl wall show lists them")};
    if (targets.empty())
        throw CommandError{ExitCode::BadData, QStringLiteral("%1: the wall has no devices").arg(wall.name)};
    return targets;
}
