#include "measuredgroups.h"

#include <calibration/gamutrequest.h>
#include <calibration/selection.h>

#include <QFileInfo>

#include <map>

namespace Calibration {

namespace {

using CabinetSenderSpace::CabinetTargetMap;

/// "left" and "1-4" of "left:1-4".
Result<CabinetSet> cabinetSet(const QString& device, const QString& ranges, const QString& subject)
{
    CabinetSet set{device.trimmed().toStdString(), {}};
    QStringList texts;
    for (const QString& text : ranges.split(QLatin1Char(','), Qt::SkipEmptyParts))
        texts << text.trimmed();
    auto cids = parseCabinets(texts);
    if (!cids || set.device.empty())
        return Fault{Fault::Kind::Usage, subject, QStringLiteral("DEVICE or DEVICE:RANGE, as left:1-4"),
                     QStringLiteral("\"%1:%2\"").arg(device, ranges)};
    set.cids = *std::move(cids);
    return set;
}

/// The cabinets in front of "=".
Result<std::vector<CabinetSet>> cabinetSets(const QString& text)
{
    std::vector<CabinetSet> sets;
    for (const QString& part : text.split(QLatin1Char(','))) {
        const QString device = part.section(QLatin1Char(':'), 0, 0);
        auto set = cabinetSet(device, part.mid(device.size() + 1), QStringLiteral("group %1").arg(text));
        if (!set)
            return set.fault();
        sets.push_back(*std::move(set));
    }
    return sets;
}

Result<std::vector<MeasuredGroup>> groupsOf(const std::vector<Measurement>& measurements)
{
    std::vector<MeasuredGroup> groups;
    for (const Measurement& measurement : measurements) {
        auto sets = cabinetSets(measurement.group.cabinets.join(QLatin1Char(',')));
        if (!sets)
            return Fault{Fault::Kind::BadData, measurement.subject, sets.fault().expected, sets.fault().found};
        groups.push_back({measurement.group.name, *std::move(sets), measurement});
        groups.back().measurement.gamut.name = measurement.group.name.toStdString();
    }
    return groups;
}

/// What was given alone: a gamut, or a file with several.
Result<std::vector<MeasuredGroup>> readAlone(const QString& text)
{
    const auto request = parseGamutRequest(text);
    if (request && request->isFile && request->primaries == text) { // no luminance behind it
        const auto input = readInput(text, QStringLiteral("gamut"));
        if (!input)
            return input.fault();
        const auto measurements = parseMeasurements(*input);
        if (!measurements)
            return measurements.fault();
        if (measurements->size() > 1)
            return groupsOf(*measurements);
        return std::vector<MeasuredGroup>{{{}, {}, measurements->front()}};
    }
    const auto measurement = readMeasured(text);
    if (!measurement)
        return measurement.fault();
    return std::vector<MeasuredGroup>{{{}, {}, *measurement}};
}

Result<MeasuredGroup> readGroup(const QString& text)
{
    const QString cabinets = text.section(QLatin1Char('='), 0, 0);
    if (cabinets.size() == text.size() || QFileInfo::exists(text))
        return Fault{Fault::Kind::Usage, QStringLiteral("group %1").arg(text),
                     QStringLiteral("CABINETS=GAMUT beside other groups, as left:1-4=a.ti3"),
                     QStringLiteral("no cabinets")};
    auto sets = cabinetSets(cabinets);
    if (!sets)
        return sets.fault();
    auto measurement = readMeasured(text.mid(cabinets.size() + 1));
    if (!measurement)
        return measurement.fault();
    measurement->gamut.name = cabinets.toStdString();
    return MeasuredGroup{cabinets, *std::move(sets), *std::move(measurement)};
}

/// Gives each cabinet of a wall to its group.
class Assignment
{
public:
    Assignment(const std::vector<MeasuredGroup>& groups, const CabinetTargetMap& wall) : m_groups(groups)
    {
        for (const auto& [device, cids] : wall) {
            for (const unsigned long long cid : cids)
                m_owners[device].emplace(cid, nobody);
        }
    }

    Result<void> giveAll()
    {
        for (std::size_t group = 0; group < m_groups.size(); ++group) {
            for (const CabinetSet& set : m_groups[group].cabinets) {
                const auto given = give(group, set);
                if (!given)
                    return given;
            }
        }
        return {};
    }

    /// The cabinets of a run, by group.
    Result<std::vector<CabinetTargetMap>> targets(const CabinetTargetMap& run) const
    {
        std::vector<CabinetTargetMap> targets(m_groups.size());
        CabinetTargetMap left;
        for (const auto& [device, cids] : run) {
            for (const unsigned long long cid : cids) {
                const std::size_t owner = m_owners.at(device).at(cid);
                (owner == nobody ? left : targets[owner])[device].push_back(cid);
            }
        }
        if (left.empty())
            return targets;
        return Fault{Fault::Kind::BadData, QStringLiteral("measured groups"),
                     QStringLiteral("every cabinet in one of them"),
                     QStringLiteral("%1 in none").arg(cabinetsText(left))};
    }

private:
    static constexpr std::size_t nobody = static_cast<std::size_t>(-1);

    Result<void> give(std::size_t group, const CabinetSet& set)
    {
        const auto device = m_owners.find(set.device);
        if (device == m_owners.end())
            return missing(group, QStringLiteral("device %1").arg(QString::fromStdString(set.device)));
        if (set.cids.empty()) {
            for (auto& [cid, owner] : device->second)
                take(group, {set.device, cid}, owner);
        }
        for (const unsigned long long cid : set.cids) {
            const auto cabinet = device->second.find(cid);
            if (cabinet == device->second.end())
                return missing(group, QStringLiteral("cabinet %1:%2").arg(QString::fromStdString(set.device)).arg(cid));
            take(group, {set.device, cid}, cabinet->second);
        }
        return doubled();
    }

    void take(std::size_t group, const std::pair<std::string, unsigned long long>& cabinet, std::size_t& owner)
    {
        if (owner == nobody) {
            owner = group;
        } else {
            m_doubled[cabinet.first].push_back(cabinet.second);
            m_owning = {owner, group};
        }
    }

    Result<void> doubled() const
    {
        if (m_doubled.empty())
            return {};
        const QString first = m_groups[m_owning.first].name;
        const QString second = m_groups[m_owning.second].name;
        return Fault{Fault::Kind::BadData, QStringLiteral("measured groups"),
                     QStringLiteral("every cabinet in one of them"),
                     QStringLiteral("%1 in %2 and in %3").arg(cabinetsText(m_doubled), first, second)};
    }

    Fault missing(std::size_t group, const QString& what) const
    {
        return {Fault::Kind::Usage,
                QStringLiteral("group %1").arg(m_groups[group].name),
                {},
                QStringLiteral("the wall has no %1").arg(what)};
    }

    const std::vector<MeasuredGroup>& m_groups;
    std::map<std::string, std::map<unsigned long long, std::size_t>> m_owners;
    CabinetTargetMap m_doubled; ///< of the set that is given
    std::pair<std::size_t, std::size_t> m_owning{nobody, nobody};
};

} // namespace

Result<std::vector<MeasuredGroup>> readMeasuredGroups(const QStringList& texts)
{
    const bool isNamed =
        texts.size() > 1 || (texts.front().contains(QLatin1Char('=')) && !QFileInfo::exists(texts.front()));
    if (!isNamed)
        return readAlone(texts.front());
    std::vector<MeasuredGroup> groups;
    for (const QString& text : texts) {
        auto group = readGroup(text);
        if (!group)
            return group.fault();
        groups.push_back(*std::move(group));
    }
    return groups;
}

Result<std::vector<CabinetTargetMap>> assignCabinets(const std::vector<MeasuredGroup>& groups,
                                                     const CabinetTargetMap& wall, const CabinetTargetMap& run)
{
    if (groups.size() == 1 && groups.front().cabinets.empty())
        return std::vector<CabinetTargetMap>{run};
    Assignment assignment(groups, wall);
    const auto given = assignment.giveAll();
    if (!given)
        return given.fault();
    return assignment.targets(run);
}

QString cabinetsText(const CabinetTargetMap& cabinets)
{
    QStringList devices;
    for (const auto& [device, cids] : cabinets)
        devices << QStringLiteral("%1:%2").arg(QString::fromStdString(device),
                                               cabinetRanges(cids).remove(QLatin1Char(' ')));
    return devices.join(QStringLiteral(", "));
}

} // namespace Calibration
