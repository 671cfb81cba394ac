#include "devicebehaviour.h"

#include <suite/common/jsonreader.h>

#include <QStringList>

#include <algorithm>
#include <array>

namespace Simulator {

namespace {

using Common::JsonReader;

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

std::chrono::milliseconds readMs(const JsonReader& place, std::chrono::milliseconds fallback)
{
    if (place.isMissing())
        return fallback;
    return std::chrono::milliseconds(static_cast<long long>(place.number(0.0, maxDelayMs)));
}

FaultChance readFault(const JsonReader& place)
{
    FaultChance result;
    const JsonReader kind = place.member("kind");
    const auto known = std::find_if(faultNames.begin(), faultNames.end(), [&](const FaultName& entry) {
        return kind.value().toString() == QLatin1String(entry.name);
    });
    if (known == faultNames.end()) {
        QStringList names;
        for (const FaultName& entry : faultNames)
            names << QLatin1String(entry.name);
        kind.expect(QStringLiteral("one of %1").arg(names.join(QStringLiteral(", "))));
        return result;
    }
    result.fault = known->fault;
    const JsonReader chance = place.member("chance");
    if (!chance.isMissing())
        result.chance = chance.number(0.0, 1.0);
    result.delay = readMs(place.member("delayMs"), result.delay);
    return result;
}

} // namespace

std::optional<DeviceBehaviour> readBehaviour(const QJsonObject& simulation, QString& error)
{
    std::optional<Common::Fault> fault;
    const JsonReader root(simulation, fault);
    DeviceBehaviour behaviour;
    behaviour.latency = readMs(root.member("latencyMs"), behaviour.latency);
    const JsonReader faults = root.member("faults");
    const int count = faults.isMissing() ? 0 : faults.count();
    double sum = 0.0;
    for (int i = 0; i < count && !fault; ++i) {
        const JsonReader place = faults.element(i);
        behaviour.faults.push_back(readFault(place));
        sum += behaviour.faults.back().chance;
    }
    if (sum > 1.0 + 1e-9)
        faults.refuse(QStringLiteral("expected chances that add up to 1 or less, found %1").arg(sum));
    if (!fault)
        return behaviour;
    error = fault->message();
    return std::nullopt;
}

} // namespace Simulator
