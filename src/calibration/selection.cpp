#include "selection.h"

#include <algorithm>
#include <unordered_set>

namespace Calibration {

namespace {

using Common::Fault;
using Common::Result;
using CabinetList = std::vector<unsigned long long>;

constexpr unsigned long long maxRange = 1000000;

Fault usage(const QString& subject, const QString& found, const QString& hint = {})
{
    return {Fault::Kind::Usage, subject, {}, found, hint};
}

/// Adds what one text names.
Result<void> addRange(const QString& text, CabinetList& cids)
{
    const QString subject = QStringLiteral("cabinets");
    const int dash = text.indexOf(QLatin1Char('-'));
    bool hasFirst = false;
    bool hasLast = false;
    const unsigned long long first = text.left(dash).toULongLong(&hasFirst, 10);
    const unsigned long long last = text.mid(dash + 1).toULongLong(&hasLast, 10);
    if (!hasFirst || !hasLast)
        return Fault{Fault::Kind::Usage, subject, QStringLiteral("an identifier or a range such as 5-9"),
                     QStringLiteral("\"%1\"").arg(text)};
    if (last < first || last - first >= maxRange)
        return usage(subject,
                     QStringLiteral("\"%1\" is not a range that goes up by less than %2").arg(text).arg(maxRange));
    for (unsigned long long cid = first; cid != last; ++cid)
        cids.push_back(cid);
    cids.push_back(last);
    return {};
}

CabinetList cidsOf(const Service::WallDevice& device, const std::unordered_set<unsigned long long>& wanted)
{
    CabinetList cids;
    for (const auto& cabinet : device.entry.cabinets) {
        if (wanted.empty() || wanted.count(cabinet->getCid()) != 0)
            cids.push_back(cabinet->getCid());
    }
    return cids;
}

QString namesOf(const Service::Wall& wall)
{
    QStringList names;
    for (const Service::WallDevice& device : wall)
        names << QString::fromStdString(device.entry.device->getBase().getId());
    return names.join(QStringLiteral(", "));
}

} // namespace

Result<CabinetList> parseCabinets(const QStringList& texts)
{
    CabinetList cids;
    for (const QString& text : texts) {
        const auto added = addRange(text, cids);
        if (!added)
            return added.fault();
    }
    return cids;
}

QString cabinetRanges(CabinetList cids)
{
    std::sort(cids.begin(), cids.end());
    QStringList parts;
    for (std::size_t first = 0; first < cids.size();) {
        std::size_t last = first;
        while (last + 1 < cids.size() && cids[last + 1] == cids[last] + 1)
            ++last;
        parts << (last == first ? QString::number(cids[first])
                                : QStringLiteral("%1-%2").arg(cids[first]).arg(cids[last]));
        first = last + 1;
    }
    return parts.isEmpty() ? QStringLiteral("none") : parts.join(QStringLiteral(", "));
}

Result<CabinetSenderSpace::CabinetTargetMap> selectTargets(const Service::Wall& wall, const Selection& selection)
{
    if (wall.empty())
        return Fault{Fault::Kind::BadData, {}, {}, QStringLiteral("the wall has no devices")};
    const std::unordered_set<unsigned long long> wanted(selection.cabinets.begin(), selection.cabinets.end());
    std::unordered_set<std::string> missingDevices(selection.devices.begin(), selection.devices.end());
    auto missingCabinets = wanted;
    CabinetSenderSpace::CabinetTargetMap targets;
    for (const Service::WallDevice& device : wall) {
        const std::string& id = device.entry.device->getBase().getId();
        if (!selection.devices.empty() && missingDevices.erase(id) == 0)
            continue;
        auto cids = cidsOf(device, wanted);
        for (const unsigned long long cid : cids)
            missingCabinets.erase(cid);
        if (!cids.empty() || wanted.empty())
            targets.emplace(id, std::move(cids));
    }
    if (!missingDevices.empty())
        return usage(QStringLiteral("device %1").arg(QString::fromStdString(*missingDevices.begin())),
                     QStringLiteral("the wall has no such device"), QStringLiteral("it has: %1").arg(namesOf(wall)));
    if (!missingCabinets.empty())
        return usage(
            QStringLiteral("cabinet %1").arg(*std::min_element(missingCabinets.begin(), missingCabinets.end())),
            QStringLiteral("no selected device has such a cabinet"));
    return targets;
}

} // namespace Calibration
