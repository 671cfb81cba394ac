#include "csvreadings.h"

#include <algorithm>

namespace Calibration {

namespace {

constexpr int maxLineLength = 16384;

using Column = ReadingColumn;
using Names = std::initializer_list<const char*>;

/// The heading of a table: finds columns by name.
class Heading
{
public:
    explicit Heading(const std::vector<Field>& fields)
    {
        for (const Field& field : fields) // "Y (cd/m2)" is Y
            m_names << field.text.section(QLatin1Char('('), 0, 0).trimmed();
    }

    const QStringList& names() const { return m_names; }

    /// The first column that is called so.
    std::optional<Column> find(Names names, Qt::CaseSensitivity sensitivity = Qt::CaseInsensitive) const
    {
        for (const char* name : names) {
            for (int i = 0; i < m_names.size(); ++i) {
                if (m_names.at(i).compare(QLatin1String(name), sensitivity) == 0)
                    return Column{static_cast<std::size_t>(i), m_names.at(i)};
            }
        }
        return std::nullopt;
    }

private:
    QStringList m_names;
};

std::optional<ThreeColumns> together(const std::optional<Column>& first, const std::optional<Column>& second,
                                     const std::optional<Column>& third)
{
    if (first && second && third)
        return ThreeColumns{*first, *second, *third};
    return std::nullopt;
}

/// The columns of colour. x and y beside X, Y and Z differ by case only, which decides wherever both can be meant.
bool findValues(const Heading& heading, ReadingColumns& columns)
{
    const auto exact = [&](const char* name) { return heading.find({name}, Qt::CaseSensitive); };
    const auto any = [&](const char* name) { return heading.find({name}); };
    const auto luminance = heading.find({"lum", "luminance", "cd_m2", "cd/m2"});
    auto values = together(exact("X"), exact("Y"), exact("Z"));
    if (!values && luminance)
        values = together(any("x"), exact("y") ? exact("y") : any("y"), luminance);
    else if (!values && !(values = together(any("x"), exact("y"), exact("Y"))))
        values = together(any("x"), any("y"), any("z"));
    if (!values)
        return false;
    columns.values = *values;
    columns.areTristimulus = values->at(2).name.compare(QLatin1String("z"), Qt::CaseInsensitive) == 0;
    return true;
}

bool findPatch(const Heading& heading, ReadingColumns& columns)
{
    columns.drive = together(heading.find({"r", "red", "rgb_r"}), heading.find({"g", "green", "rgb_g"}),
                             heading.find({"b", "blue", "rgb_b"}));
    columns.maxDrive = 255.0;
    columns.isDriveKnown = false;
    columns.label = heading.find({"label", "patch", "name", "color", "colour"});
    columns.device = heading.find({"device"});
    columns.cabinets = heading.find({"cabinet", "cabinets", "cid"});
    columns.group = heading.find({"group", "batch"});
    return columns.drive || columns.label;
}

Result<ReadingColumns> columnsOf(const FieldReader& reader, const std::vector<Field>& fields)
{
    const Heading heading(fields);
    QStringList names = heading.names();
    names.removeAll(QString());
    if (names.removeDuplicates() > 0)
        return Fault{
            Fault::Kind::BadData, reader.place(fields.front()), {}, QStringLiteral("two columns have the same name")};
    ReadingColumns columns;
    columns.count = fields.size();
    const QString found = QStringLiteral("\"%1\"").arg(reader.text().left(80));
    if (!findValues(heading, columns))
        return Fault{Fault::Kind::BadData, reader.place(fields.front()),
                     QStringLiteral("a heading with x, y, Y or X, Y, Z, or a CGATS or JSON text"), found};
    if (!findPatch(heading, columns))
        return Fault{Fault::Kind::BadData, reader.place(fields.front()),
                     QStringLiteral("a heading with a label or with r, g, b for the patch"), found};
    return columns;
}

/// The measurement of each group.
Result<std::vector<Measurement>> measurementsOf(const ReadingTable& table, const ReadingColumns& columns,
                                                const QString& end)
{
    std::vector<Measurement> measurements;
    for (const ReadingGroup& group : table.groups()) {
        const auto patches = table.byPatch(group, end);
        if (!patches)
            return patches.fault();
        Measurement& measurement = measurements.emplace_back();
        measurement.group = group;
        measurement.kind = QStringLiteral("CSV readings");
        measurement.patches = *patches;
        measurement.notes << QStringLiteral("colours from the columns %1, %2, %3")
                                 .arg(columns.values[0].name, columns.values[1].name, columns.values[2].name);
        if (columns.drive)
            measurement.notes << QStringLiteral("RGB drive from 0 to %1").arg(patches->fullDrive);
    }
    return measurements;
}

/// The style that a heading shows.
FieldStyle styleOf(const QString& heading)
{
    FieldStyle style{QStringLiteral(","), false, true};
    for (const char separator : {';', '\t'}) {
        if (heading.contains(QLatin1Char(separator)))
            style.separators = QLatin1Char(separator);
    }
    return style;
}

/// Takes the lines below the heading.
Result<void> addRows(FieldReader& reader, const FieldStyle& style, ReadingTable& table)
{
    for (;;) {
        const auto hasLine = reader.next();
        if (!hasLine)
            return hasLine.fault();
        if (!*hasLine)
            return {};
        const auto fields = reader.fields(style);
        if (!fields)
            return fields.fault();
        const auto added = table.add(reader, *fields);
        if (!added)
            return added;
    }
}

} // namespace

Result<std::vector<Measurement>> parseCsvReadings(const Input& input)
{
    FieldReader reader(input, maxLineLength);
    const auto hasLine = reader.next();
    if (hasLine && !*hasLine)
        return Fault{Fault::Kind::BadData, reader.begin(), {}, QStringLiteral("no data")};
    if (!hasLine)
        return hasLine.fault();
    const FieldStyle style = styleOf(reader.text());
    const auto fields = reader.fields(style);
    if (!fields)
        return fields.fault();
    const auto columns = columnsOf(reader, *fields);
    if (!columns)
        return columns.fault();
    ReadingTable table(input, *columns);
    const auto added = addRows(reader, style, table);
    if (!added)
        return added.fault();
    return measurementsOf(table, *columns, reader.begin());
}

} // namespace Calibration
