#pragma once

#include <calibration/textfields.h>
#include <suite/colour/matrix.h>
#include <suite/model/lxy.h>

#include <QStringList>

#include <array>
#include <map>
#include <optional>
#include <vector>

namespace Calibration {

/// The readings of one patch, averaged in XYZ.
struct PatchReadings
{
    int count = 0;
    Model::LXY mean;
    double spreadXy = 0.0;        ///< largest distance of a reading from the mean, CIE 1931 xy
    double spreadLuminance = 0.0; ///< the same of the luminance, as a fraction of the mean's
};

/// What a table of readings says of the patches that make a gamut.
struct PatchTable
{
    std::array<PatchReadings, 4> points; ///< red, green, blue, white at full drive; each was read
    std::optional<PatchReadings> black;  ///< no drive at all; its x and y are 0 where no light was measured
    int otherCount = 0;                  ///< readings of other patches
    double fullDrive = 0.0;              ///< the drive that counts as full; 0 where patches have labels instead
    bool isRelative = false;             ///< luminances are not cd/m2, only right beside each other
};

/// A field of a line by its index, and its name in messages.
struct ReadingColumn
{
    std::size_t index = 0;
    QString name;
};
using ThreeColumns = std::array<ReadingColumn, 3>;

/// Where the figures of a reading stand in a line.
struct ReadingColumns
{
    std::size_t count = 0;                 ///< of the fields in a line
    ThreeColumns values;                   ///< X, Y, Z, or x, y and luminance
    bool areTristimulus = true;            ///< whether `values` are X, Y, Z
    std::optional<ThreeColumns> drive;     ///< red, green, blue
    std::optional<ReadingColumn> label;    ///< names the patch where there is no drive
    std::optional<ReadingColumn> device;   ///< where it was read; without it all readings are of one group
    std::optional<ReadingColumn> cabinets; ///< "1-4" of the device; without it, or where it is empty, all of them
    std::optional<ReadingColumn> group;    ///< which readings belong together; without it those of equal cabinets
    double maxDrive = 100.0;               ///< the largest that may stand there
    bool isDriveKnown = true; ///< full drive is `maxDrive`; else the least of 1, 100 and 255 that none passes
};

/// Cabinets that readings are of together.
struct ReadingGroup
{
    QString name;         ///< the line's own word, or its cabinets; empty where lines name neither
    QStringList cabinets; ///< "left", "middle:1-8"
};

/// Collects readings line by line. Faults are bad data and name line, column and field.
class ReadingTable
{
public:
    /// `input`, which is read, must outlive the table.
    ReadingTable(const Input& input, ReadingColumns columns) : m_input(input), m_columns(std::move(columns)) {}

    /// Takes the reading in a line; `reader` stands on it. At most 65,536 are taken.
    Result<void> add(const FieldReader& reader, const std::vector<Field>& fields);

    /// The groups that were read, in the order of their first lines; at least one.
    std::vector<ReadingGroup> groups() const { return m_groups.empty() ? std::vector<ReadingGroup>(1) : m_groups; }
    /// The readings of a group by patch. Fault also for a patch that no reading is of, at `end`, where the readings
    /// end.
    Result<PatchTable> byPatch(const ReadingGroup& group, const QString& end) const;

private:
    struct Reading
    {
        int line = 0;
        std::array<double, 3> values{};
        std::array<int, 3> columns{}; ///< in the line, of the values
        std::array<double, 3> drive{};
        std::size_t patch = 0; ///< by its label
    };

    double fullDrive() const;
    /// The name of the group that a line belongs to, which now has the line's cabinets.
    Result<QString> groupOf(const FieldReader& reader, const std::vector<Field>& fields);
    std::size_t patchOf(const Reading& reading, double full) const;
    Result<Colour::Vector3> tristimulus(const Reading& reading, bool isBlack) const;
    Fault refusal(const Reading& reading, std::size_t value, const QString& expected) const;

    const Input& m_input;
    ReadingColumns m_columns;
    std::size_t m_count = 0;
    std::vector<ReadingGroup> m_groups;
    std::map<QString, std::vector<Reading>> m_readings; ///< by the group's name
};

} // namespace Calibration
