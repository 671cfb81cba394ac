#include "measurement.h"

#include <calibration/cgats.h>
#include <calibration/csvreadings.h>
#include <calibration/gamut.h>
#include <suite/common/jsonreader.h>

#include <algorithm>
#include <cstring>

namespace Calibration {

namespace {

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

Model::ColorGamutInfo gamutAt(const Common::JsonReader& place)
{
    const auto point = [&place](const char* key) {
        const Common::JsonReader member = place.member(key);
        if (!member.value().isObject())
            member.expect(QStringLiteral("an object with lum, x and y"));
        return Model::LXY{member.member("lum").number(), member.member("x").number(), member.member("y").number(), {}};
    };
    Model::ColorGamutInfo gamut;
    gamut.rLxy = point("RedPoint");
    gamut.gLxy = point("GreenPoint");
    gamut.bLxy = point("BluePoint");
    gamut.wLxy = point("WhitePoint");
    gamut.name = place.member("name").value().toString().toStdString();
    return gamut;
}

Result<Measurement> parseDocument(const Input& input)
{
    const auto object = jsonObject(input);
    if (!object)
        return object.fault();
    std::optional<Fault> fault;
    const Common::JsonReader root(*object, fault);
    const Common::JsonReader led = root.member("LEDColorGamnut");
    Measurement measurement;
    measurement.kind = led.isMissing() ? QStringLiteral("gamut in JSON") : QStringLiteral("NICC document");
    measurement.gamut = gamutAt(led.isMissing() ? root : led.object());
    measurement.date = root.member("Time").value().toString();
    if (fault)
        return Fault{Fault::Kind::BadData, input.subject(), {}, fault->message()};
    const auto points = pointsOf(measurement.gamut);
    for (std::size_t i = 0; i < points.size(); ++i)
        measurement.patches.points[i] = {1, *points[i]};
    return measurement;
}

Result<Measurement> parseReadings(const Input& input)
{
    const auto text = requireText(input);
    if (!text)
        return text.fault();
    auto measurement = isCgats(input.bytes) ? parseCgats(input) : parseCsvReadings(input);
    if (!measurement)
        return measurement;
    const PatchTable& patches = measurement->patches;
    measurement->gamut.rLxy = patches.points[0].mean;
    measurement->gamut.gLxy = patches.points[1].mean;
    measurement->gamut.bLxy = patches.points[2].mean;
    measurement->gamut.wLxy = patches.points[3].mean;
    if (patches.otherCount > 0)
        measurement->notes << QStringLiteral("readings of other patches, passed over: %1").arg(patches.otherCount);
    return measurement;
}

} // namespace

Result<Measurement> parseMeasurement(const Input& input)
{
    auto measurement = isJson(input.bytes) ? parseDocument(input) : parseReadings(input);
    if (!measurement)
        return measurement;
    const auto made = requireGamut(measurement->gamut, input.subject());
    if (!made)
        return made.fault();
    if (measurement->gamut.name.empty())
        measurement->gamut.name = input.name.toStdString();
    return measurement;
}

} // namespace Calibration
