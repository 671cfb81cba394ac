#include "walldocument.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>

#include <algorithm>
#include <cmath>
#include <limits>
#include <unordered_set>

namespace Service {

namespace {

constexpr qint64 maxMebibytes = 32;                    // some 350,000 cabinets with all their members
constexpr double maxExactInteger = 9007199254740991.0; // 2^53 - 1: above it a JSON number may name two integers

QString describe(const QJsonValue& value)
{
    switch (value.type()) {
    case QJsonValue::Null:
        return QStringLiteral("null");
    case QJsonValue::Bool:
        return value.toBool() ? QStringLiteral("true") : QStringLiteral("false");
    case QJsonValue::Double:
        return QString::number(value.toDouble(), 'g', 17);
    case QJsonValue::String:
        return QStringLiteral("\"%1\"").arg(value.toString());
    case QJsonValue::Array:
        return QStringLiteral("an array");
    case QJsonValue::Object:
        return QStringLiteral("an object");
    case QJsonValue::Undefined:
        break;
    }
    return QStringLiteral("nothing");
}

/// Builds a wall from a document's root. The first fault ends it; places are put into words only then.
class WallBuilder
{
public:
    std::optional<Wall> build(const QJsonObject& root)
    {
        const QJsonValue devices = root.value(QLatin1String("devices"));
        if (!devices.isArray()) {
            fail(QStringLiteral("devices"), QStringLiteral("an array"), devices);
            return std::nullopt;
        }
        const QJsonArray array = devices.toArray();
        Wall wall;
        wall.reserve(static_cast<size_t>(array.size()));
        for (m_device = 0; m_device < array.size() && ok(); ++m_device)
            wall.push_back(readDevice(array.at(m_device)));
        return ok() ? std::optional(std::move(wall)) : std::nullopt;
    }

    const QString& fault() const { return m_fault; }

private:
    bool ok() const { return m_fault.isEmpty(); }

    QString place(const QString& member) const
    {
        QString path = QStringLiteral("devices[%1]").arg(m_device);
        if (m_cabinet >= 0)
            path += QStringLiteral(".cabinets[%1]").arg(m_cabinet);
        return member.isEmpty() ? path : path + QLatin1Char('.') + member;
    }

    void fail(const QString& where, const QString& expected, const QJsonValue& found)
    {
        if (ok())
            m_fault = QStringLiteral("%1: expected %2, found %3").arg(where, expected, describe(found));
    }

    std::string text(const QJsonObject& object, QLatin1String key)
    {
        const QJsonValue value = object.value(key);
        if (!value.isString())
            fail(place(key), QStringLiteral("a string"), value);
        return value.toString().toStdString();
    }

    bool flag(const QJsonObject& object, QLatin1String key)
    {
        const QJsonValue value = object.value(key);
        if (!value.isUndefined() && !value.isBool())
            fail(place(key), QStringLiteral("true or false"), value);
        return value.toBool();
    }

    /// An optional integer from `min` to the largest int.
    int integer(const QJsonObject& object, QLatin1String key, int min, int fallback)
    {
        const QJsonValue value = object.value(key);
        if (value.isUndefined())
            return fallback;
        const double number = value.toDouble(std::numeric_limits<double>::quiet_NaN());
        if (!(number >= min && number <= std::numeric_limits<int>::max() && std::floor(number) == number)) {
            fail(place(key), QStringLiteral("an integer of at least %1").arg(min), value);
            return fallback;
        }
        return static_cast<int>(number);
    }

    unsigned long long identifier(const QJsonObject& object)
    {
        const QJsonValue value = object.value(QLatin1String("cid"));
        if (value.isDouble()) {
            const double number = value.toDouble();
            if (number >= 0.0 && number <= maxExactInteger && std::floor(number) == number)
                return static_cast<unsigned long long>(number);
        } else if (value.isString()) {
            bool converted = false;
            const unsigned long long number = value.toString().toULongLong(&converted, 10);
            if (converted)
                return number;
        }
        fail(place(QStringLiteral("cid")),
             QStringLiteral("an identifier: an integer from 0 to 9007199254740991, or a string of decimal digits up to "
                            "18446744073709551615"),
             value);
        return 0;
    }

    std::shared_ptr<Model::Cabinet> readCabinet(const QJsonValue& value)
    {
        if (!value.isObject())
            fail(place({}), QStringLiteral("an object"), value);
        const QJsonObject object = value.toObject();
        auto cabinet = std::make_shared<Model::Cabinet>(identifier(object));
        Model::CabinetBase& base = cabinet->getBase();
        base.setGrayScaleSeries(integer(object, QLatin1String("grayScaleSeries"), 1, base.getGrayScaleSeries()));
        base.setChipEffectFlag(integer(object, QLatin1String("chipEffectFlag"), 0, base.getChipEffectFlag()));
        const int mode = integer(object, QLatin1String("effectMode"), 0, 0);
        cabinet->getDisplayEffectPara().setEffectMode(static_cast<unsigned int>(mode));
        return cabinet;
    }

    void checkDistinct(const std::vector<std::shared_ptr<Model::Cabinet>>& cabinets)
    {
        std::vector<std::pair<unsigned long long, int>> places;
        places.reserve(cabinets.size());
        for (const auto& cabinet : cabinets)
            places.emplace_back(cabinet->getCid(), static_cast<int>(places.size()));
        std::sort(places.begin(), places.end());
        const auto twice = std::adjacent_find(places.begin(), places.end(),
                                              [](const auto& a, const auto& b) { return a.first == b.first; });
        if (twice == places.end())
            return;
        m_cabinet = std::next(twice)->second;
        m_fault = QStringLiteral("%1: cabinet %2 is listed twice").arg(place(QStringLiteral("cid"))).arg(twice->first);
    }

    void readCabinets(const QJsonObject& device, DeviceEntry& entry)
    {
        const QJsonValue cabinets = device.value(QLatin1String("cabinets"));
        if (!cabinets.isArray())
            fail(place(QStringLiteral("cabinets")), QStringLiteral("an array"), cabinets);
        const QJsonArray array = cabinets.toArray();
        entry.cabinets.reserve(static_cast<size_t>(array.size()));
        for (m_cabinet = 0; m_cabinet < array.size() && ok(); ++m_cabinet)
            entry.cabinets.push_back(readCabinet(array.at(m_cabinet)));
        if (ok())
            checkDistinct(entry.cabinets);
        m_cabinet = -1;
    }

    WallDevice readDevice(const QJsonValue& value)
    {
        WallDevice result;
        if (!value.isObject()) {
            fail(place({}), QStringLiteral("an object"), value);
            return result;
        }
        const QJsonObject object = value.toObject();
        result.entry.device = std::make_shared<Model::Device>();
        Model::Device& device = *result.entry.device;
        const std::string id = text(object, QLatin1String("id"));
        if (ok() && id.empty())
            m_fault = QStringLiteral("%1: an identity must not be empty").arg(place(QStringLiteral("id")));
        if (ok() && !m_identities.insert(id).second)
            m_fault = QStringLiteral("%1: device \"%2\" is listed twice")
                          .arg(place(QStringLiteral("id")), QString::fromStdString(id));
        device.getBase().setId(id);
        device.getBase().setType(text(object, QLatin1String("type")));
        device.getConfiguration().getCapacity().setIsSupportBatchCorrectionSwitch(
            flag(object, QLatin1String("batchCorrectionSwitch")));
        const QJsonValue simulation = object.value(QLatin1String("simulation"));
        if (!simulation.isUndefined() && !simulation.isObject())
            fail(place(QStringLiteral("simulation")), QStringLiteral("an object"), simulation);
        result.simulation = simulation.toObject();
        readCabinets(object, result.entry);
        return result;
    }

    int m_device = 0;
    int m_cabinet = -1;
    std::unordered_set<std::string> m_identities;
    QString m_fault;
};

/// The place of the byte before `offset`: Qt's JSON errors point behind what is wrong.
QString lineAndColumn(const QByteArray& text, int offset)
{
    const QByteArray before = text.left(qMax(0, offset - 1));
    const int line = before.count('\n') + 1;
    const int column = before.size() - before.lastIndexOf('\n');
    return QStringLiteral("line %1, column %2").arg(line).arg(column);
}

} // namespace

std::optional<Wall> readWall(const QString& filePath, QString& error)
{
    QFile file(filePath);
    if (!file.open(QIODevice::ReadOnly)) {
        error = QStringLiteral("wall document %1: cannot be read: %2").arg(filePath, file.errorString());
        return std::nullopt;
    }
    constexpr qint64 maxBytes = maxMebibytes * 1024 * 1024;
    const QByteArray bytes = file.read(maxBytes + 1);
    if (file.error() != QFileDevice::NoError) {
        error = QStringLiteral("wall document %1: cannot be read: %2").arg(filePath, file.errorString());
        return std::nullopt;
    }
    if (bytes.size() > maxBytes) {
        error = QStringLiteral("wall document %1: larger than %2 MiB").arg(filePath).arg(maxMebibytes);
        return std::nullopt;
    }
    QJsonParseError parse;
    const QJsonDocument document = QJsonDocument::fromJson(bytes, &parse);
    if (parse.error != QJsonParseError::NoError) {
        error = QStringLiteral("wall document %1: %2: not JSON: %3")
                    .arg(filePath, lineAndColumn(bytes, parse.offset), parse.errorString());
        return std::nullopt;
    }
    if (!document.isObject()) {
        error = QStringLiteral("wall document %1: expected an object, found an array").arg(filePath);
        return std::nullopt;
    }
    WallBuilder builder;
    auto wall = builder.build(document.object());
    if (!wall)
        error = QStringLiteral("wall document %1: %2").arg(filePath, builder.fault());
    return wall;
}

bool loadWall(const QString& filePath, QString& error)
{
    auto wall = readWall(filePath, error);
    if (!wall)
        return false;
    std::vector<DeviceEntry> entries;
    entries.reserve(wall->size());
    for (WallDevice& device : *wall)
        entries.push_back(std::move(device.entry));
    ModelService::setDevices(std::move(entries));
    return true;
}

} // namespace Service
