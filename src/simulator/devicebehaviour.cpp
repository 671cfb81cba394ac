#include "devicebehaviour.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QStringList>

#include <algorithm>
#include <array>

namespace Simulator {

namespace {

struct FaultName
{
    const char* name;
    Fault fault;
};

constexpr std::array<FaultName, 8> faultNames{{
    {"error", Fault::Error},
    {"silence", Fault::Silence},
    {"slow", Fault::Slow},
    {"double-answer", Fault::DoubleAnswer},
    {"late", Fault::Late},
    {"no-cids", Fault::NoCids},
    {"partial", Fault::Partial},
    {"other-thread", Fault::OtherThread},
}};

constexpr double maxDelayMs = 24.0 * 3600.0 * 1000.0;

QString describe(const QJsonValue& value)
{
    if (value.isUndefined())
        return QStringLiteral("nothing");
    const QByteArray text = QJsonDocument(QJsonArray{value}).toJson(QJsonDocument::Compact);
    return QString::fromUtf8(text.mid(1, text.size() - 2));
}

/// Reads numbers of one object and remembers the first that is wrong.
class NumberReader
{
public:
    NumberReader(const QJsonObject& object, QString place, QString& error)
        : m_object(object), m_place(std::move(place)), m_error(error)
    {}

    double read(QLatin1String key, double max, double fallback)
    {
        const QJsonValue value = m_object.value(key);
        if (value.isUndefined())
            return fallback;
        if (value.isDouble() && value.toDouble() >= 0.0 && value.toDouble() <= max)
            return value.toDouble();
        m_error = QStringLiteral("%1%2: expected a number from 0 to %3, found %4")
                      .arg(m_place, key)
                      .arg(max)
                      .arg(describe(value));
        return fallback;
    }

    std::chrono::milliseconds readMs(QLatin1String key, std::chrono::milliseconds fallback)
    {
        return std::chrono::milliseconds(
            static_cast<long long>(read(key, maxDelayMs, static_cast<double>(fallback.count()))));
    }

private:
    const QJsonObject& m_object;
    QString m_place;
    QString& m_error;
};

FaultChance readFault(const QJsonObject& object, const QString& place, QString& error)
{
    FaultChance result;
    const QJsonValue kind = object.value(QLatin1String("kind"));
    const auto known = std::find_if(faultNames.begin(), faultNames.end(), [&](const FaultName& entry) {
        return kind.toString() == QLatin1String(entry.name);
    });
    if (known == faultNames.end()) {
        QStringList names;
        for (const FaultName& entry : faultNames)
            names << QLatin1String(entry.name);
        error = QStringLiteral("%1kind: expected one of %2, found %3")
                    .arg(place, names.join(QStringLiteral(", ")), describe(kind));
        return result;
    }
    NumberReader numbers(object, place, error);
    result.fault = known->fault;
    result.chance = numbers.read(QLatin1String("chance"), 1.0, result.chance);
    result.delay = numbers.readMs(QLatin1String("delayMs"), result.delay);
    return result;
}

} // namespace

std::optional<DeviceBehaviour> readBehaviour(const QJsonObject& simulation, QString& error)
{
    DeviceBehaviour behaviour;
    QString fault;
    behaviour.latency = NumberReader(simulation, {}, fault).readMs(QLatin1String("latencyMs"), behaviour.latency);
    const QJsonValue faults = simulation.value(QLatin1String("faults"));
    if (!faults.isUndefined() && !faults.isArray())
        fault = QStringLiteral("faults: expected an array, found %1").arg(describe(faults));
    double sum = 0.0;
    const QJsonArray array = faults.toArray();
    for (int i = 0; i < array.size() && fault.isEmpty(); ++i) {
        behaviour.faults.push_back(readFault(array.at(i).toObject(), QStringLiteral("faults[%1].").arg(i), fault));
        sum += behaviour.faults.back().chance;
    }
    if (fault.isEmpty() && sum > 1.0 + 1e-9)
        fault = QStringLiteral("faults: expected chances that add up to 1 or less, found %1").arg(sum);
    if (!fault.isEmpty()) {
        error = fault;
        return std::nullopt;
    }
    return behaviour;
}

} // namespace Simulator
