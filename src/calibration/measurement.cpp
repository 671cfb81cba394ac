#include "measurement.h"

#include <calibration/cgats.h>
#include <calibration/csvreadings.h>
#include <calibration/gamut.h>
#include <calibration/gamutrequest.h>
#include <calibration/known.h>
#include <suite/common/jsonreader.h>

#include <QFileInfo>

#include <algorithm>
#include <cstring>

namespace Calibration {

namespace {

using Gamut = Model::ColorGamutInfo;

bool isJson(const QByteArray& text)
{
    const int begin = text.startsWith("\xef\xbb\xbf") ? 3 : 0; // a byte-order mark
    const auto* const first =
        std::find_if(text.begin() + begin, text.end(), [](char c) { return !std::strchr(" \t\r\n", c); });
    return first != text.end() && (*first == '{' || *first == '[');
}

/// What no text holds: control characters other than those between words and lines.
Result<void> requireText(const Input& input)
{
    int line = 1;
    int column = 1;
    for (const char c : input.bytes) {
        const auto code = static_cast<unsigned char>(c);
        if (code == 0x7f || (code < 0x20 && (code < '\t' || code > '\r')))
            return Fault{Fault::Kind::BadData,
                         QStringLiteral("%1, line %2, column %3")
                             .arg(input.subject(), QString::number(line), QString::number(column)),
                         QStringLiteral("text in UTF-8"),
                         QStringLiteral("the byte 0x%1").arg(code, 2, 16, QLatin1Char('0'))};
        column = c == '\n' ? 1 : column + 1;
        line += c == '\n' ? 1 : 0;
    }
    return {};
}

Gamut gamutAt(const Common::JsonReader& place)
{
    const auto point = [&place](const char* key) {
        const Common::JsonReader member = place.member(key);
        if (!member.value().isObject())
            member.expect(QStringLiteral("an object with lum, x and y"));
        const auto luminance = member.member("lum"); // 0 where nobody knows it
        return Model::LXY{luminance.isMissing() ? 0.0 : luminance.number(),
                          member.member("x").number(),
                          member.member("y").number(),
                          {}};
    };
    Gamut gamut;
    gamut.rLxy = point("RedPoint");
    gamut.gLxy = point("GreenPoint");
    gamut.bLxy = point("BluePoint");
    gamut.wLxy = point("WhitePoint");
    gamut.name = place.member("name").value().toString().toStdString();
    return gamut;
}

/// The root of a JSON text, or its member that holds the measured gamut.
Result<Gamut> gamutIn(const Input& input, const QJsonObject& object, const QString& member)
{
    std::optional<Fault> fault;
    const Common::JsonReader root(object, fault);
    const auto gamut = gamutAt(member.isEmpty() ? root : root.member(member.toLatin1().constData()).object());
    if (fault)
        return Fault{Fault::Kind::BadData, input.subject(), {}, fault->message()};
    return gamut;
}

Measurement documentOf(const Gamut& gamut)
{
    Measurement measurement;
    measurement.gamut = gamut;
    const auto points = pointsOf(measurement.gamut);
    for (std::size_t i = 0; i < points.size(); ++i)
        measurement.patches.points[i] = {1, *points[i]};
    return measurement;
}

/// {"groups": [{"name", "cabinets": "left,middle:1-8", "RedPoint", ...}]}; the name may be left out.
Result<std::vector<Measurement>> parseGroups(const Input& input, const QJsonObject& object)
{
    std::optional<Fault> fault;
    const Common::JsonReader root(object, fault);
    const auto groups = root.member("groups");
    std::vector<Measurement> measurements;
    for (int i = 0; i < groups.count() && !fault; ++i) {
        const auto group = groups.element(i);
        const QString cabinets = group.object().member("cabinets").text();
        measurements.push_back(documentOf(gamutAt(group)));
        Measurement& measurement = measurements.back();
        measurement.kind = QStringLiteral("gamuts of groups in JSON");
        measurement.group = {group.member("name").isMissing() ? cabinets : group.member("name").text(),
                             cabinets.split(QLatin1Char(','))};
    }
    if (!fault && measurements.empty())
        groups.refuse(QStringLiteral("no groups"));
    if (fault)
        return Fault{Fault::Kind::BadData, input.subject(), {}, fault->message()};
    return measurements;
}

Result<std::vector<Measurement>> parseDocument(const Input& input)
{
    const auto object = jsonObject(input);
    if (!object)
        return object.fault();
    if (object->contains(QStringLiteral("groups")))
        return parseGroups(input, *object);
    const QString led = QStringLiteral("LEDColorGamnut");
    const bool isNicc = object->contains(led);
    const auto gamut = gamutIn(input, *object, isNicc ? led : QString());
    if (!gamut)
        return gamut.fault();
    Measurement measurement = documentOf(*gamut);
    measurement.kind = isNicc ? QStringLiteral("NICC document") : QStringLiteral("gamut in JSON");
    measurement.date = object->value(QStringLiteral("Time")).toString();
    return std::vector<Measurement>{measurement};
}

/// The gamut that the patches make, without luminances that are only relative.
void takePoints(Measurement& measurement)
{
    const PatchTable& patches = measurement.patches;
    Model::LXY* const points[] = {&measurement.gamut.rLxy, &measurement.gamut.gLxy, &measurement.gamut.bLxy,
                                  &measurement.gamut.wLxy};
    for (std::size_t i = 0; i < patches.points.size(); ++i) {
        *points[i] = patches.points[i].mean;
        if (patches.isRelative)
            points[i]->lum = 0.0;
    }
}

Result<std::vector<Measurement>> parseReadings(const Input& input)
{
    const auto text = requireText(input);
    if (!text)
        return text.fault();
    auto measurements = isCgats(input.bytes) ? parseCgats(input) : parseCsvReadings(input);
    if (!measurements)
        return measurements;
    for (Measurement& measurement : *measurements) {
        takePoints(measurement);
        const int others = measurement.patches.otherCount;
        if (others > 0)
            measurement.notes << QStringLiteral("readings of other patches, passed over: %1").arg(others);
    }
    return measurements;
}

/// Gives white the luminance that its file does not know, and the primaries theirs.
Result<void> addLuminance(Measurement& measurement, double luminance)
{
    Gamut& gamut = measurement.gamut;
    measurement.notes << QStringLiteral("luminance of white given, not measured: %1 cd/m2").arg(luminance);
    const auto known = pointsOf(gamut);
    if (std::all_of(known.begin(), known.end(), [](const Model::LXY* point) { return point->lum > 0.0; }))
        return Fault{Fault::Kind::BadData, measurement.subject, QStringLiteral("no luminance beside the measured one"),
                     QStringLiteral("%1 beside %2 cd/m2").arg(luminance).arg(gamut.wLxy.lum)};
    PatchTable& patches = measurement.patches;
    if (patches.isRelative) {
        const double factor = luminance / patches.points[3].mean.lum;
        for (PatchReadings& patch : patches.points)
            patch.mean.lum *= factor;
        if (patches.black)
            patches.black->mean.lum *= factor;
        patches.isRelative = false;
        takePoints(measurement);
    } else {
        const std::string name = gamut.name;
        gamut = gamutOf(primariesOf(gamut), luminance);
        gamut.name = name;
    }
    return {};
}

Result<Measurement> fromFile(const GamutRequest& request)
{
    const auto input = readInput(request.primaries, QStringLiteral("gamut"));
    if (!input)
        return input.fault();
    if (request.white)
        return Fault{Fault::Kind::BadData, request.subject(), QStringLiteral("the white that was measured"),
                     request.whiteName};
    auto measurement = parseMeasurement(*input);
    const auto added =
        measurement && request.luminance ? addLuminance(*measurement, *request.luminance) : Result<void>();
    if (!added)
        return added.fault();
    return measurement;
}

/// A gamut that was typed or named instead of a file.
Result<Measurement> fromText(const GamutRequest& request)
{
    Measurement measurement;
    measurement.subject = request.subject();
    const auto* const standard = standardGamut(request.primaries);
    const auto typed = standard ? std::optional(standard->primaries) : typedPrimaries(request);
    if (!typed)
        return typed.fault();
    if (!*typed)
        return unknownGamut(request);
    Colour::Primaries primaries = **typed;
    primaries.white = request.white.value_or(primaries.white);
    measurement.kind = standard ? QStringLiteral("standard gamut") : QStringLiteral("chromaticities");
    measurement.gamut = gamutOf(primaries, request.luminance.value_or(0.0));
    measurement.gamut.name = standard ? standard->name : request.text.toStdString();
    const auto made = requireGamut(measurement.gamut, measurement.subject);
    if (!made)
        return made.fault();
    return measurement;
}

} // namespace

QString Measurement::known() const
{
    return file ? wordOf(Known::Measured) : QStringLiteral("given");
}

Result<std::vector<Measurement>> parseMeasurements(const Input& input)
{
    auto measurements = isJson(input.bytes) ? parseDocument(input) : parseReadings(input);
    if (!measurements)
        return measurements;
    for (Measurement& measurement : *measurements) {
        measurement.subject = input.subject();
        if (measurements->size() > 1)
            measurement.subject += QStringLiteral(", group %1").arg(measurement.group.name);
        measurement.file = input.digest();
        const auto made = requireGamut(measurement.gamut, measurement.subject);
        if (!made)
            return made.fault();
        if (measurement.gamut.name.empty())
            measurement.gamut.name = QFileInfo(input.name).fileName().toStdString();
    }
    return measurements;
}

Result<Measurement> parseMeasurement(const Input& input)
{
    auto measurements = parseMeasurements(input);
    if (!measurements)
        return measurements.fault();
    if (measurements->size() > 1)
        return Fault{Fault::Kind::BadData, input.subject(), QStringLiteral("one gamut"),
                     QStringLiteral("those of %1 groups").arg(measurements->size())};
    return std::move(measurements->front());
}

Result<Measurement> readMeasured(const QString& text)
{
    const auto request = parseGamutRequest(text);
    if (!request)
        return request.fault();
    return request->isFile ? fromFile(*request) : fromText(*request);
}

Result<Gamut> parseTargetGamut(const Input& input)
{
    const QString target = QStringLiteral("TargetColorGamnut");
    const auto object = isJson(input.bytes) ? jsonObject(input) : Result<QJsonObject>(QJsonObject());
    if (object && object->contains(target))
        return gamutIn(input, *object, target);
    const auto measurement = parseMeasurement(input);
    return measurement ? Result<Gamut>(measurement->gamut) : measurement.fault();
}

} // namespace Calibration
