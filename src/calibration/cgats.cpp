#include "cgats.h"

#include <cmath>
#include <map>

namespace Calibration {

namespace {

constexpr int maxLineLength = 16384;
constexpr std::size_t maxKeywords = 1024;

/// A word of the text with the place where it stands.
struct Word
{
    QString text;
    QString place;
};

/// One table after the other: keywords, a data format, and the data.
class CgatsParser
{
public:
    explicit CgatsParser(const Input& input) : m_input(input), m_reader(input, maxLineLength) {}

    Result<std::vector<Measurement>> parse();

private:
    using Fields = std::vector<Field>;

    Fault refusal(const QString& place, const QString& expected, const QString& found) const
    {
        return {Fault::Kind::BadData, place, expected, found};
    }
    /// The next line's fields; none at the end of the text.
    Result<Fields> next();
    /// The same within a section, which `last` ends.
    Result<Fields> nextWithin(const QString& last);
    Result<void> keyword(const Fields& fields);
    Result<void> readFormat();
    /// Makes ready for data, where the format has the needed fields.
    void beginTable();
    /// Reads the data, or passes over those of a table without the needed fields.
    Result<void> readData();
    Result<void> endData(std::size_t count);
    Result<void> requireCount(const QString& key, std::size_t count, const QString& what) const;
    Result<std::vector<Measurement>> measurements() const;
    Result<Measurement> measurement(const ReadingGroup& group) const;
    /// What the values are multiplied with to be cd/m2; says where they stay relative.
    Result<double> luminanceFactor(Measurement& measurement) const;
    QString valueOf(std::initializer_list<const char*> keys) const;

    const Input& m_input;
    FieldReader m_reader;
    std::map<QString, Word> m_keywords; ///< of the table that is read
    std::optional<QStringList> m_format;
    std::optional<ReadingTable> m_table;
    QString m_missing; ///< the needed field that the first table without all of them lacks
    bool m_isDone = false;
};

Result<CgatsParser::Fields> CgatsParser::next()
{
    const auto hasLine = m_reader.next();
    if (!hasLine)
        return hasLine.fault();
    return *hasLine ? m_reader.fields({QStringLiteral(" \t\v\f\r"), true, true}) : Fields();
}

Result<CgatsParser::Fields> CgatsParser::nextWithin(const QString& last)
{
    auto fields = next();
    if (fields && fields->empty())
        return refusal(m_reader.place(), last, QStringLiteral("the end of the text"));
    return fields;
}

Result<std::vector<Measurement>> CgatsParser::parse()
{
    while (!m_isDone) {
        const auto fields = next();
        if (!fields)
            return fields.fault();
        if (fields->empty())
            break;
        const QString& first = fields->front().text;
        const auto read = first == QLatin1String("BEGIN_DATA_FORMAT") ? readFormat()
                          : first == QLatin1String("BEGIN_DATA")      ? readData()
                                                                      : keyword(*fields);
        if (!read)
            return read.fault();
    }
    if (m_isDone)
        return measurements();
    if (m_format || m_missing.isEmpty())
        return refusal(m_reader.place(), QStringLiteral("a table with BEGIN_DATA_FORMAT and BEGIN_DATA"),
                       QStringLiteral("the end of the text"));
    return refusal(m_input.subject(), QStringLiteral("a table with RGB_R, RGB_G, RGB_B, XYZ_X, XYZ_Y and XYZ_Z"),
                   QStringLiteral("none with %1").arg(m_missing));
}

Result<void> CgatsParser::keyword(const Fields& fields)
{
    if (fields.size() == 1 || fields.front().text == QLatin1String("KEYWORD")) // identifiers, and names of keywords
        return {};
    QStringList values;
    for (std::size_t i = 1; i < fields.size(); ++i)
        values << fields[i].text;
    m_keywords[fields.front().text] = {values.join(QLatin1Char(' ')), m_reader.place(fields[1])};
    if (m_keywords.size() > maxKeywords)
        return refusal(m_reader.place(), {}, QStringLiteral("more than %1 keywords").arg(maxKeywords));
    return {};
}

Result<void> CgatsParser::requireCount(const QString& key, std::size_t count, const QString& what) const
{
    const auto found = m_keywords.find(key);
    if (found == m_keywords.end() || found->second.text == QString::number(count))
        return {};
    return refusal(QStringLiteral("%1, %2").arg(found->second.place, key), QStringLiteral("%1 %2").arg(count).arg(what),
                   QStringLiteral("\"%1\"").arg(found->second.text));
}

Result<void> CgatsParser::readFormat()
{
    const QString last = QStringLiteral("END_DATA_FORMAT");
    m_format = QStringList();
    for (auto fields = nextWithin(last);; fields = nextWithin(last)) {
        if (!fields)
            return fields.fault();
        if (fields->front().text == last)
            break;
        for (const Field& field : *fields) {
            if (static_cast<std::size_t>(m_format->size()) == maxKeywords)
                return refusal(m_reader.place(field), {}, QStringLiteral("more than %1 fields").arg(maxKeywords));
            if (m_format->contains(field.text))
                return refusal(m_reader.place(field), {}, QStringLiteral("%1 stands there twice").arg(field.text));
            *m_format << field.text;
        }
    }
    const auto counted = requireCount(QStringLiteral("NUMBER_OF_FIELDS"), static_cast<std::size_t>(m_format->size()),
                                      QStringLiteral("fields, as BEGIN_DATA_FORMAT has"));
    if (counted)
        beginTable();
    return counted;
}

void CgatsParser::beginTable()
{
    ReadingColumns columns;
    columns.count = static_cast<std::size_t>(m_format->size());
    columns.drive = ThreeColumns();
    const char* const names[] = {"RGB_R", "RGB_G", "RGB_B", "XYZ_X", "XYZ_Y", "XYZ_Z"};
    for (std::size_t i = 0; i < std::size(names); ++i) {
        const QString name = QString::fromLatin1(names[i]);
        if (!m_format->contains(name)) {
            m_missing = m_missing.isEmpty() ? name : m_missing;
            return;
        }
        (i < 3 ? *columns.drive : columns.values)[i % 3] = {static_cast<std::size_t>(m_format->indexOf(name)), name};
    }
    const auto column = [this](const char* name) -> std::optional<ReadingColumn> {
        const int index = m_format->indexOf(QLatin1String(name));
        return index < 0 ? std::nullopt
                         : std::optional(ReadingColumn{static_cast<std::size_t>(index), QLatin1String(name)});
    };
    columns.device = column("DEVICE");
    columns.cabinets = column("CABINET");
    columns.group = column("GROUP");
    m_table.emplace(m_input, columns);
}

Result<void> CgatsParser::readData()
{
    const QString last = QStringLiteral("END_DATA");
    if (!m_format)
        return refusal(m_reader.place(), QStringLiteral("BEGIN_DATA_FORMAT first"), QStringLiteral("BEGIN_DATA"));
    std::size_t count = 0;
    for (auto fields = nextWithin(last);; fields = nextWithin(last), ++count) {
        if (!fields)
            return fields.fault();
        if (fields->front().text == last)
            return endData(count);
        const auto added = m_table ? m_table->add(m_reader, *fields) : Result<void>();
        if (!added)
            return added;
    }
}

Result<void> CgatsParser::endData(std::size_t count)
{
    const auto counted =
        requireCount(QStringLiteral("NUMBER_OF_SETS"), count, QStringLiteral("sets, as BEGIN_DATA has"));
    if (!counted)
        return counted;
    if (count == 0)
        return refusal(m_reader.begin(), QStringLiteral("readings"), QStringLiteral("no data"));
    m_isDone = m_table.has_value();
    if (!m_isDone) { // the next table brings its own
        m_keywords.clear();
        m_format.reset();
    }
    return {};
}

QString CgatsParser::valueOf(std::initializer_list<const char*> keys) const
{
    for (const char* key : keys) {
        const auto found = m_keywords.find(QString::fromLatin1(key));
        if (found != m_keywords.end())
            return found->second.text;
    }
    return {};
}

Result<double> CgatsParser::luminanceFactor(Measurement& measurement) const
{
    constexpr double largestDrift = 0.1; // of white's readings from 100
    const double whiteLuminance = measurement.patches.points[3].mean.lum;
    const QString normalised = valueOf({"NORMALIZED_TO_Y_100"}).toUpper();
    const bool isNormalised = normalised == QLatin1String("YES");
    const bool isOnlyGroup = m_table->groups().size() == 1;
    if (isNormalised && isOnlyGroup && std::abs(whiteLuminance / 100.0 - 1.0) > largestDrift)
        return refusal(QStringLiteral("%1, XYZ_Y").arg(m_keywords.at(QStringLiteral("NORMALIZED_TO_Y_100")).place),
                       QStringLiteral("a white of 100"), QString::number(whiteLuminance));
    const auto found = m_keywords.find(QStringLiteral("LUMINANCE_XYZ_CDM2"));
    const bool isScaled = isNormalised || (isOnlyGroup && normalised != QLatin1String("NO"));
    if (found == m_keywords.end() || !isScaled) {
        measurement.patches.isRelative = isNormalised;
        measurement.notes << (isNormalised
                                  ? QStringLiteral("luminances are relative: the file does not say white's in cd/m2")
                                  : QStringLiteral("luminances are taken as cd/m2, as they stand"));
        return 1.0;
    }
    const QStringList parts = found->second.text.split(QLatin1Char(' '), Qt::SkipEmptyParts);
    const double luminance = parts.size() == 3 ? parts.at(1).toDouble() : 0.0;
    if (!(luminance > 0.0) || !std::isfinite(luminance))
        return refusal(QStringLiteral("%1, LUMINANCE_XYZ_CDM2").arg(found->second.place),
                       QStringLiteral("X, Y and Z in cd/m2, Y above 0"),
                       QStringLiteral("\"%1\"").arg(found->second.text));
    measurement.notes
        << QStringLiteral("luminances are scaled to a white of %1 cd/m2 (LUMINANCE_XYZ_CDM2)").arg(luminance);
    return luminance / (isNormalised ? 100.0 : whiteLuminance);
}

Result<std::vector<Measurement>> CgatsParser::measurements() const
{
    std::vector<Measurement> result;
    for (const ReadingGroup& group : m_table->groups()) {
        auto one = measurement(group);
        if (!one)
            return one.fault();
        result.push_back(*std::move(one));
    }
    return result;
}

Result<Measurement> CgatsParser::measurement(const ReadingGroup& group) const
{
    Measurement result;
    result.group = group;
    const auto patches = m_table->byPatch(group, m_reader.begin());
    if (!patches)
        return patches.fault();
    result.patches = *patches;
    const auto factor = luminanceFactor(result);
    if (!factor)
        return factor.fault();
    for (PatchReadings& patch : result.patches.points)
        patch.mean.lum *= *factor;
    if (result.patches.black)
        result.patches.black->mean.lum *= *factor;
    result.kind = QStringLiteral("CGATS readings");
    for (const auto& [name, word] : m_keywords)
        result.keywords.push_back({name, word.text});
    result.instrument = valueOf({"TARGET_INSTRUMENT", "INSTRUMENTATION", "INSTRUMENT"});
    result.observer = valueOf({"OBSERVER"});
    result.date = valueOf({"CREATED"});
    return result;
}

} // namespace

bool isCgats(const QByteArray& text)
{
    return text.startsWith("CTI") || text.startsWith("CGATS") || text.startsWith("BEGIN_DATA") ||
           text.contains("\nBEGIN_DATA");
}

Result<std::vector<Measurement>> parseCgats(const Input& input)
{
    return CgatsParser(input).parse();
}

} // namespace Calibration
