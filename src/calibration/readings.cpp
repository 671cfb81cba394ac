#include "readings.h"

#include <calibration/gamut.h>

#include <algorithm>
#include <cmath>

namespace Calibration {

namespace {

constexpr std::size_t maxReadings = 65536;
constexpr std::size_t black = 4; ///< behind the four points of a gamut
constexpr std::size_t other = 5;

/// The patch that a label names.
std::size_t labelledPatch(const QString& label)
{
    for (std::size_t point = 0; point < black; ++point) {
        const QString name = pointName(point);
        if (label.compare(name, Qt::CaseInsensitive) == 0 || label.compare(name.left(1), Qt::CaseInsensitive) == 0)
            return point;
    }
    const bool isBlack = label.compare(QLatin1String("black"), Qt::CaseInsensitive) == 0 ||
                         label.compare(QLatin1String("k"), Qt::CaseInsensitive) == 0;
    return isBlack ? black : other;
}

Fault numberRefusal(const FieldReader& reader, const Field& field, const QString& name, const QString& expected)
{
    return {Fault::Kind::BadData, QStringLiteral("%1, %2").arg(reader.place(field), name), expected,
            QStringLiteral("\"%1\"").arg(field.text)};
}

/// The finite numbers in three columns of a line; with a `max` those from 0 to it.
Result<std::array<double, 3>> numbers(const FieldReader& reader, const std::vector<Field>& fields,
                                      const ThreeColumns& columns, std::optional<double> max = {})
{
    std::array<double, 3> result{};
    for (std::size_t i = 0; i < result.size(); ++i) {
        const Field& field = fields[columns[i].index];
        bool isNumber = false;
        result[i] = field.text.toDouble(&isNumber);
        if (!isNumber || !std::isfinite(result[i]))
            return numberRefusal(reader, field, columns[i].name, QStringLiteral("a number"));
        if (max && (result[i] < 0.0 || result[i] > *max))
            return numberRefusal(reader, field, columns[i].name, QStringLiteral("a number from 0 to %1").arg(*max));
    }
    return result;
}

Model::LXY pointOf(const Colour::Vector3& xyz)
{
    const double sum = Colour::rowSum(xyz);
    return sum > 0.0 ? Model::LXY{xyz[1], xyz[0] / sum, xyz[1] / sum, {}} : Model::LXY{};
}

PatchReadings averaged(const std::vector<Colour::Vector3>& readings)
{
    Colour::Vector3 mean{};
    for (const Colour::Vector3& xyz : readings) {
        for (std::size_t i = 0; i < mean.size(); ++i)
            mean[i] += xyz[i] / static_cast<double>(readings.size());
    }
    PatchReadings patch{static_cast<int>(readings.size()), pointOf(mean)};
    for (const Colour::Vector3& xyz : readings) {
        const Model::LXY point = pointOf(xyz);
        patch.spreadXy = std::max(patch.spreadXy, std::hypot(point.x - patch.mean.x, point.y - patch.mean.y));
        if (patch.mean.lum > 0.0)
            patch.spreadLuminance =
                std::max(patch.spreadLuminance, std::abs(point.lum - patch.mean.lum) / patch.mean.lum);
    }
    return patch;
}

} // namespace

Result<void> ReadingTable::add(const FieldReader& reader, const std::vector<Field>& fields)
{
    if (fields.size() != m_columns.count)
        return Fault{Fault::Kind::BadData, reader.place(fields.back()),
                     QStringLiteral("%1 fields").arg(m_columns.count), QString::number(fields.size())};
    if (m_count == maxReadings)
        return Fault{
            Fault::Kind::BadData, reader.place(), {}, QStringLiteral("more than %1 readings").arg(maxReadings)};
    const auto values = numbers(reader, fields, m_columns.values);
    if (!values)
        return values.fault();
    Reading reading{reader.number(), *values};
    for (std::size_t i = 0; i < reading.columns.size(); ++i)
        reading.columns[i] = fields[m_columns.values[i].index].column;
    if (m_columns.drive) {
        const auto drive = numbers(reader, fields, *m_columns.drive, m_columns.maxDrive);
        if (!drive)
            return drive.fault();
        reading.drive = *drive;
    } else {
        reading.patch = labelledPatch(fields[m_columns.label->index].text);
    }
    const auto group = groupOf(reader, fields);
    if (!group)
        return group.fault();
    m_readings[*group].push_back(reading);
    ++m_count;
    return {};
}

Result<QString> ReadingTable::groupOf(const FieldReader& reader, const std::vector<Field>& fields)
{
    const auto text = [&fields](const std::optional<ReadingColumn>& column) {
        return column ? fields[column->index].text : QString();
    };
    const QString device = text(m_columns.device);
    if (m_columns.device && device.isEmpty())
        return Fault{
            Fault::Kind::BadData,
            QStringLiteral("%1, %2").arg(reader.place(fields[m_columns.device->index]), m_columns.device->name),
            QStringLiteral("a device"), QStringLiteral("nothing")};
    const QStringList ranges = text(m_columns.cabinets).split(QLatin1Char(','), Qt::SkipEmptyParts);
    QStringList cabinets;
    for (const QString& range : ranges)
        cabinets << QStringLiteral("%1:%2").arg(device, range.trimmed());
    if (cabinets.isEmpty() && m_columns.device)
        cabinets << device;
    const QString word = text(m_columns.group);
    const QString name = word.isEmpty() ? cabinets.join(QLatin1Char(',')) : word;
    auto group = std::find_if(m_groups.begin(), m_groups.end(), [&](const auto& known) { return known.name == name; });
    if (group == m_groups.end())
        group = m_groups.insert(m_groups.end(), {name, {}});
    for (const QString& cabinet : qAsConst(cabinets)) {
        if (!group->cabinets.contains(cabinet))
            group->cabinets << cabinet;
    }
    return name;
}

double ReadingTable::fullDrive() const
{
    if (!m_columns.drive || m_columns.isDriveKnown)
        return m_columns.drive ? m_columns.maxDrive : 0.0;
    double largest = 0.0;
    for (const auto& [group, readings] : m_readings) {
        for (const Reading& reading : readings)
            largest = std::max(largest, *std::max_element(reading.drive.begin(), reading.drive.end()));
    }
    for (const double full : {1.0, 100.0}) {
        if (largest <= full)
            return full;
    }
    return m_columns.maxDrive;
}

std::size_t ReadingTable::patchOf(const Reading& reading, double full) const
{
    constexpr double tolerance = 1e-4; // of full drive, for what was printed with few decimals
    constexpr std::array<std::size_t, 8> patches{black, 0, 1, other, 2, other, other, 3};
    if (!m_columns.drive)
        return reading.patch;
    std::size_t channels = 0; // a bit for each at full drive
    for (std::size_t i = 0; i < reading.drive.size(); ++i) {
        const double share = reading.drive[i] / full;
        if (share >= 1.0 - tolerance)
            channels |= std::size_t{1} << i;
        else if (share > tolerance)
            return other;
    }
    return patches[channels];
}

Fault ReadingTable::refusal(const Reading& reading, std::size_t value, const QString& expected) const
{
    return {Fault::Kind::BadData,
            QStringLiteral("%1, line %2, column %3, %4")
                .arg(m_input.subject(), QString::number(reading.line), QString::number(reading.columns[value]),
                     m_columns.values[value].name),
            expected, QString::number(reading.values[value])};
}

Result<Colour::Vector3> ReadingTable::tristimulus(const Reading& reading, bool isBlack) const
{
    const QString notNegative = QStringLiteral("a number of at least 0");
    const QString positive = QStringLiteral("a number above 0");
    const auto& v = reading.values;
    const std::size_t luminance = m_columns.areTristimulus ? 1 : 2;
    if (v[luminance] < 0.0 || (v[luminance] == 0.0 && !isBlack))
        return refusal(reading, luminance, isBlack ? notNegative : positive);
    if (m_columns.areTristimulus) {
        for (const std::size_t i : {std::size_t{0}, std::size_t{2}}) {
            if (v[i] < 0.0)
                return refusal(reading, i, notNegative);
        }
        return v;
    }
    if (v[2] == 0.0)
        return Colour::Vector3{};
    if (v[0] < 0.0)
        return refusal(reading, 0, notNegative);
    if (v[1] <= 0.0 || v[0] + v[1] > 1.0)
        return refusal(reading, 1, QStringLiteral("a number above 0 and up to 1 - x"));
    return Colour::Vector3{v[0] / v[1] * v[2], v[2], (1.0 - v[0] - v[1]) / v[1] * v[2]};
}

Result<PatchTable> ReadingTable::byPatch(const ReadingGroup& group, const QString& end) const
{
    PatchTable table;
    table.fullDrive = fullDrive();
    std::array<std::vector<Colour::Vector3>, other> readings;
    const auto found = m_readings.find(group.name);
    const std::vector<Reading> none;
    const std::vector<Reading>& all = found == m_readings.end() ? none : found->second;
    for (const Reading& reading : all) {
        const std::size_t patch = patchOf(reading, table.fullDrive);
        if (patch == other) {
            ++table.otherCount;
            continue;
        }
        const auto xyz = tristimulus(reading, patch == black);
        if (!xyz)
            return xyz.fault();
        readings[patch].push_back(*xyz);
    }
    for (std::size_t point = 0; point < table.points.size(); ++point) {
        if (readings[point].empty())
            return Fault{Fault::Kind::BadData,
                         group.name.isEmpty() ? end : QStringLiteral("%1, group %2").arg(end, group.name),
                         QStringLiteral("readings of full red, green, blue and white"),
                         QStringLiteral("none of %1 among %2").arg(pointName(point), QString::number(all.size()))};
        table.points[point] = averaged(readings[point]);
    }
    if (!readings[black].empty())
        table.black = averaged(readings[black]);
    return table;
}

} // namespace Calibration
