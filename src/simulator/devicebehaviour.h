#pragma once

#include <QJsonObject>
#include <QString>

#include <chrono>
#include <optional>
#include <vector>

namespace Simulator {

/// How a simulated device may fail to answer as it should.
enum class Fault {
    None,
    Error,   ///< refuses the request
    Silence, ///< takes the request in and never answers
    Slow,    ///< answers after FaultChance::delay
    DoubleAnswer,
    Late,        ///< does the work and answers after the request's timeout
    NoCids,      ///< answers without "cids"
    Partial,     ///< serves and names only every other cabinet
    OtherThread, ///< answers from a thread that lives for this answer only
};

struct FaultChance
{
    Fault fault = Fault::None;
    double chance = 1.0; ///< probability for each request, 0..1
    std::chrono::milliseconds delay{2000};
};

/// How a simulated device answers.
struct DeviceBehaviour
{
    /// From the request to its answer; requests to one device wait for each other.
    std::chrono::milliseconds latency{5};
    /// At most one happens per request; the chances add up to 1 or less.
    std::vector<FaultChance> faults;
};

/// Reads the member "simulation" of a wall document's device: {"latencyMs": 5, "faults": [{"kind": "late", "chance":
/// 0.1}]}. On failure gives nothing and says in `error` which member is wrong, what was expected and what was found.
std::optional<DeviceBehaviour> readBehaviour(const QJsonObject& simulation, QString& error);

} // namespace Simulator
