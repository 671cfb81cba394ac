#include "documentschema.h"

#include <QJsonArray>

#include <algorithm>
#include <cmath>
#include <map>

namespace DocumentSchema {

namespace {

constexpr double intMin = -2147483648.0;
constexpr double intMax = 2147483647.0;

Member of(const char* key, Type type, int lengthGroup = 0)
{
    return {QLatin1String(key), type, -1e300, 1e300, nullptr, lengthGroup};
}

Member integer(const char* key, double min)
{
    return {QLatin1String(key), Type::Int, min, intMax, nullptr, 0};
}

Member bytes(const char* key, int lengthGroup)
{
    return {QLatin1String(key), Type::Integers, 0, 255, nullptr, lengthGroup};
}

Member table(const char* key, int lengthGroup)
{
    return {QLatin1String(key), Type::Integers, intMin, intMax, nullptr, lengthGroup};
}

Member object(const char* key, const std::vector<Member>& members)
{
    return {QLatin1String(key), Type::Object, 0, 0, &members, 0};
}

std::vector<Member> join(std::vector<Member> first, const std::vector<Member>& second)
{
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

std::vector<Member> measures()
{
    return {of("rMeasure", Type::Points, 1), of("gMeasure", Type::Points, 1), of("bMeasure", Type::Points, 1)};
}

std::vector<Member> grayTables()
{
    return {bytes("rGrayCoeffs", 2), bytes("gGrayCoeffs", 2), bytes("bGrayCoeffs", 2), bytes("magnitudes", 2)};
}

std::vector<Member> magicGrayMeasures()
{
    return {of("rMG0Measure", Type::Points, 3),     of("gMG0Measure", Type::Points, 3),
            of("bMG0Measure", Type::Points, 3),     of("rMG1Measure", Type::Points, 4),
            of("gMG1Measure", Type::Points, 4),     of("bMG1Measure", Type::Points, 4),
            of("rMGFirstMeasure", Type::Points, 5), of("gMGFirstMeasure", Type::Points, 5),
            of("bMGFirstMeasure", Type::Points, 5), of("rMGMeasure", Type::Series, 6),
            of("gMGMeasure", Type::Series, 6),      of("bMGMeasure", Type::Series, 6),
            of("wMGMeasure", Type::Series)};
}

const std::vector<Member>& effectMembers()
{
    static const std::vector<Member> members{of("supGraySwitch", Type::Bool), of("fineGraySwitch", Type::Bool),
                                             of("switch22bit", Type::Bool), of("switchMG", Type::Bool)};
    return members;
}

const std::vector<Member>& detailMembers()
{
    static const std::vector<Member> members{of("qualityAdvance", Type::Bool),
                                             of("detailAdvance", Type::Bool),
                                             integer("detailLevel", 0),
                                             of("switchABL", Type::Bool),
                                             of("peakInvalid", Type::Bool),
                                             integer("peakMeasure", 0),
                                             integer("peakLum", 0),
                                             integer("maxLum", 0),
                                             of("switchINVTMO", Type::Bool)};
    return members;
}

const std::vector<Member>& magicGrayMembers()
{
    static const std::vector<Member> members =
        join(magicGrayMeasures(), {table("mgCurrentLUTs", 0), table("mgComGainLUTOdd", 7), table("mgComGainLUTEven", 7),
                                   integer("compBase", 0), integer("maxDataShiftBase", 0)});
    return members;
}

const std::vector<Member>& advanceMembers()
{
    static const std::vector<Member> coeffs{bytes("rGrayCoeffs", 1), bytes("gGrayCoeffs", 1), bytes("bGrayCoeffs", 1)};
    static const std::vector<Member> targets{of("rLumTarget", Type::Numbers, 1), of("gLumTarget", Type::Numbers, 1),
                                             of("bLumTarget", Type::Numbers, 1)};
    static const std::vector<Member> members{
        integer("maxNum", 0),     integer("caliNum", 0),        of("wMeasure", Type::Points), integer("caliLength", 0),
        object("coeffs", coeffs), object("targetLum", targets), bytes("magBits", 0)};
    return members;
}

const std::vector<Member>& gamutMembers()
{
    static const std::vector<Member> members{of("RedPoint", Type::Point),  of("GreenPoint", Type::Point),
                                             of("BluePoint", Type::Point), of("WhitePoint", Type::Point),
                                             of("name", Type::Text),       of("Cover", Type::Number),
                                             of("OrgCover", Type::Number)};
    return members;
}

std::vector<Member> keptWhiteMeasures()
{
    std::vector<Member> members;
    for (const char* key : {"wMeasure1", "wMeasure2", "wMeasure3", "wMeasure4", "wMeasure5", "wMeasure6", "wMeasure7",
                            "wMeasure8", "wMeasure9"})
        members.push_back(of(key, Type::Points));
    return members;
}

std::vector<QLatin1String> keysOf(const std::vector<Member>& members)
{
    std::vector<QLatin1String> keys;
    for (const Member& member : members)
        keys.push_back(member.key);
    return keys;
}

/// In the order in which kinds are told: a cache that an updater created also holds the empty configuration's keys.
const std::vector<Document>& documents()
{
    static const std::vector<Document> all = [] {
        const auto cacheOwn =
            join(join({object("grayAdvance", advanceMembers())}, keptWhiteMeasures()), magicGrayMeasures());
        const std::vector<Member> configOwn{object("grayEffectPara", effectMembers()),
                                            object("grayDetailPara", detailMembers()),
                                            object("mgData", magicGrayMembers()),
                                            of("openGray", Type::Bool),
                                            of("openXbit", Type::Bool),
                                            integer("xbitType", 0),
                                            of("open18bit", Type::Bool)};
        const auto cache = join(join(measures(), grayTables()), cacheOwn);
        const auto config = join(join(measures(), grayTables()), configOwn);
        const QString cacheName = QStringLiteral("fine-gray cache");
        return std::vector<Document>{
            {QStringLiteral("NICC configuration"),
             {QLatin1String("LEDColorGamnut"), QLatin1String("TargetColorGamnut")},
             {of("vesion", Type::Text), of("Time", Type::Text), object("LEDColorGamnut", gamutMembers()),
              object("TargetColorGamnut", gamutMembers()), of("IsOpen", Type::Bool), integer("UsedIndex", 0)}},
            {QStringLiteral("new-NICC document"),
             {QLatin1String("GamutName"), QLatin1String("FromInputStatus")},
             {of("GamutName", Type::Text), integer("Temperature", 0), integer("FromInputStatus", intMin)}},
            {cacheName, keysOf(cacheOwn), cache},
            {QStringLiteral("fine-gray configuration"), keysOf(join(grayTables(), configOwn)), config},
            {cacheName, keysOf(measures()), cache}};
    }();
    return all;
}

QString typeName(Type type)
{
    switch (type) {
    case Type::Points:
        return QStringLiteral("an array of points");
    case Type::Series:
        return QStringLiteral("an array of measurement series");
    case Type::Integers:
        return QStringLiteral("an array of integers");
    case Type::Numbers:
        return QStringLiteral("an array of numbers");
    case Type::Bool:
        return QStringLiteral("true or false");
    case Type::Int:
        return QStringLiteral("an integer");
    case Type::Number:
        return QStringLiteral("a number");
    case Type::Text:
        return QStringLiteral("a text");
    case Type::Point:
        return QStringLiteral("a point with lum, x and y");
    case Type::Object:
        return QStringLiteral("an object");
    }
    return {};
}

/// Collects what is wrong, by path.
class Checker
{
public:
    const QStringList& faults() const { return m_faults; }

    void checkObject(const QJsonObject& holder, const std::vector<Member>& members, const QString& path)
    {
        for (auto entry = holder.begin(); entry != holder.end(); ++entry) {
            const auto known = std::find_if(members.begin(), members.end(),
                                            [&](const Member& member) { return entry.key() == member.key; });
            if (known == members.end())
                add(path + entry.key(), QStringLiteral("unknown key"));
            else
                checkMember(entry.value(), *known, path + entry.key());
        }
        checkLengths(holder, members, path);
    }

private:
    void add(const QString& path, const QString& what) { m_faults << path + QStringLiteral(": ") + what; }

    void expect(bool isGood, const QString& path, Type type)
    {
        if (!isGood)
            add(path, QStringLiteral("expected %1").arg(typeName(type)));
    }

    void checkMember(const QJsonValue& value, const Member& member, const QString& path)
    {
        switch (member.type) {
        case Type::Bool:
            return expect(value.isBool(), path, member.type);
        case Type::Text:
            return expect(value.isString(), path, member.type);
        case Type::Int:
        case Type::Number:
            return checkNumber(value, member, path);
        case Type::Point:
            return checkPoint(value, path);
        case Type::Object:
            expect(value.isObject(), path, member.type);
            return checkObject(value.toObject(), *member.members, path + QLatin1Char('.'));
        case Type::Points:
        case Type::Series:
        case Type::Integers:
        case Type::Numbers:
            return checkElements(value, member, path);
        }
    }

    void checkElements(const QJsonValue& value, const Member& member, const QString& path)
    {
        expect(value.isArray(), path, member.type);
        const QJsonArray array = value.toArray();
        for (int i = 0; i < array.size(); ++i) {
            const QString place = QStringLiteral("%1[%2]").arg(path).arg(i);
            if (member.type == Type::Points)
                checkPoint(array.at(i), place);
            else if (member.type == Type::Series)
                checkSeries(array.at(i), place);
            else
                checkNumber(array.at(i), member, place);
        }
    }

    void checkNumber(const QJsonValue& value, const Member& member, const QString& path)
    {
        const bool mustBeWhole = member.type == Type::Int || member.type == Type::Integers;
        const double number = value.toDouble();
        if (!value.isDouble() || (mustBeWhole && std::floor(number) != number))
            add(path, QStringLiteral("expected %1").arg(typeName(mustBeWhole ? Type::Int : Type::Number)));
        else if (number < member.min || number > member.max)
            add(path,
                (member.max < intMax ? QStringLiteral("expected %1 to %2, found %3").arg(member.min).arg(member.max)
                                     : QStringLiteral("expected at least %1, found %2").arg(member.min))
                    .arg(number));
    }

    void checkSeries(const QJsonValue& value, const QString& path)
    {
        static const std::vector<Member> members{of("measure", Type::Points)};
        if (!value.toObject().contains(QLatin1String("measure")))
            add(path, QStringLiteral("expected an object with \"measure\""));
        checkObject(value.toObject(), members, path + QLatin1Char('.'));
    }

    void checkPoint(const QJsonValue& value, const QString& path)
    {
        static const std::vector<Member> members{{QLatin1String("lum"), Type::Number, 0, 1e300, nullptr, 0},
                                                 {QLatin1String("x"), Type::Number, 0, 1, nullptr, 0},
                                                 {QLatin1String("y"), Type::Number, 0, 1, nullptr, 0}};
        expect(value.isObject(), path, Type::Point);
        const QJsonObject point = value.toObject();
        checkObject(point, members, path + QLatin1Char('.'));
        for (const Member& member : members) {
            if (value.isObject() && !point.contains(member.key))
                add(path, QStringLiteral("has no %1").arg(member.key));
        }
        const double sum = point.value(QLatin1String("x")).toDouble() + point.value(QLatin1String("y")).toDouble();
        if (sum > 1.0)
            add(path, QStringLiteral("x + y is %1, outside the chromaticity diagram").arg(sum));
    }

    void checkLengths(const QJsonObject& holder, const std::vector<Member>& members, const QString& path)
    {
        std::map<int, std::pair<QLatin1String, int>> firstOfGroup;
        for (const Member& member : members) {
            if (member.lengthGroup == 0 || !holder.value(member.key).isArray())
                continue;
            const int length = holder.value(member.key).toArray().size();
            const auto [first, isFirst] = firstOfGroup.try_emplace(member.lengthGroup, member.key, length);
            if (!isFirst && first->second.second != length)
                add(path + member.key, QStringLiteral("has %1 entries, %2 has %3")
                                           .arg(length)
                                           .arg(first->second.first)
                                           .arg(first->second.second));
        }
    }

    QStringList m_faults;
};

/// Counts and the range of what is counted.
QString describeNumbers(const QJsonArray& array, const QString& noun, const QString& unit,
                        const std::function<double(const QJsonValue&)>& number)
{
    if (array.isEmpty())
        return QStringLiteral("none");
    double min = number(array.first());
    double max = min;
    for (const QJsonValue value : array) {
        min = std::min(min, number(value));
        max = std::max(max, number(value));
    }
    return QStringLiteral("%1 %2, %3 to %4%5").arg(array.size()).arg(noun).arg(min).arg(max).arg(unit);
}

QString describe(const QJsonValue& value, const Member& member)
{
    const auto luminance = [](const QJsonValue& point) {
        return point.toObject().value(QLatin1String("lum")).toDouble();
    };
    const QJsonArray array = value.toArray();
    switch (member.type) {
    case Type::Points:
        return describeNumbers(array, QStringLiteral("points"), QStringLiteral(" cd/m2"), luminance);
    case Type::Series:
        return QStringLiteral("%1 series").arg(array.size());
    case Type::Integers:
    case Type::Numbers:
        return describeNumbers(array, QStringLiteral("numbers"), {}, [](const QJsonValue& n) { return n.toDouble(); });
    case Type::Bool:
        return value.toBool() ? QStringLiteral("on") : QStringLiteral("off");
    case Type::Int:
    case Type::Number:
        return QString::number(value.toDouble(), 'g', 10);
    case Type::Text:
        return value.toString();
    case Type::Point:
        return QStringLiteral("%1 cd/m2, x %2, y %3")
            .arg(luminance(value))
            .arg(value.toObject().value(QLatin1String("x")).toDouble())
            .arg(value.toObject().value(QLatin1String("y")).toDouble());
    case Type::Object:
        break;
    }
    return {};
}

void summarize(const QJsonObject& holder, const std::vector<Member>& members, const QString& path, QStringList& lines)
{
    for (const Member& member : members) {
        const QJsonValue value = holder.value(member.key);
        if (value.isUndefined())
            continue;
        if (member.type == Type::Object)
            summarize(value.toObject(), *member.members, path + member.key + QLatin1Char('.'), lines);
        else
            lines << QStringLiteral("%1%2: %3").arg(path, member.key, describe(value, member));
    }
}

} // namespace

const Document* kindOf(const QJsonObject& root)
{
    for (const Document& document : documents()) {
        if (std::any_of(document.signs.begin(), document.signs.end(),
                        [&](QLatin1String sign) { return root.contains(sign); }))
            return &document;
    }
    return nullptr;
}

QStringList faultsOf(const QJsonObject& root, const Document& document)
{
    Checker checker;
    checker.checkObject(root, document.members, {});
    return checker.faults();
}

QStringList summaryOf(const QJsonObject& root, const Document& document)
{
    QStringList lines;
    summarize(root, document.members, {}, lines);
    return lines;
}

} // namespace DocumentSchema
