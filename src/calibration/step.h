#pragma once

#include <qualityutility/tool/sender4th/cabinetsenderbase.h>
#include <suite/action/cabinetreader.h>
#include <suite/common/result.h>
#include <suite/model/cabinet.h>

#include <functional>
#include <map>

namespace Calibration {

using Common::Fault;

/// One thing to send to every target.
struct Step
{
    QString name;    ///< short, for JSON and progress: "gray"
    QString summary; ///< for people: what is sent

    // What follows may be called on several threads at once, for different devices.

    /// Calls the library; the result is the library's.
    std::function<int(const CabinetSenderSpace::CabinetTargetMap&)> send;
    /// Whether a cabinet holds what was sent, given what it held before.
    std::function<bool(const Action::CabinetState& before, const Action::CabinetState& now)> hasArrived;
    /// Cabinets of one device that differ in this number are sent to in separate calls; null: one call.
    std::function<int(const Model::Cabinet&)> groupBy = nullptr;
};

/// What became of one step on one device.
struct Outcome
{
    enum class Kind { NotSent, Answered, Failed, TimedOut, Unanswered };

    QString step;
    QString device;
    int cabinets = 0;
    Kind kind = Kind::NotSent;
    int result = CabinetSenderSpace::ResultSkipped;
    QString error;
    double seconds = 0.0;
    int arrived = 0; ///< cabinets that hold what was sent
    int unread = 0;  ///< cabinets that left the question for it unanswered

    /// Whether the device answered and every cabinet holds it.
    bool isGood() const { return kind == Kind::Answered && arrived == cabinets; }
};

/// Hears what happens during a run and is asked whether it should end. Called on the thread that runs, one call at a
/// time, also where devices are served on others; of several devices at once, steps come in the order in which they
/// end.
class Observer
{
public:
    Observer() = default;
    virtual ~Observer();
    Observer(const Observer&) = delete;
    Observer& operator=(const Observer&) = delete;

    /// So many steps will be sent, at most.
    virtual void begin(int steps);
    /// One more was.
    virtual void sent(const Outcome& outcome);
    /// Asked when a device is reached and nothing has been sent to it yet: false lets nothing be sent.
    virtual bool mayBegin();
    /// Asked before each device: true lets no other one begin.
    virtual bool isStopWanted();
};

/// What cabinets hold, by device and identifier.
using CabinetStates = std::map<std::pair<std::string, unsigned long long>, Action::CabinetState>;

/// Asks every target that is there.
CabinetStates readBack(const Action::CabinetReader& reader, const CabinetSenderSpace::CabinetTargetMap& targets);

/// The outcome of a step that has not been sent.
Outcome notSent(const Step& step, const std::string& device, std::size_t cabinets);

/// Sends a step to a device and counts the cabinets that hold it then; without a reader all count of a device that
/// answered. Blocks until the
/// device has answered, as the library's operations do. Different devices may be sent to on several threads at once.
Outcome sendToDevice(const Step& step, const std::string& device, const std::vector<unsigned long long>& cids,
                     const Action::CabinetReader* reader);

/// Sends every step to every device, step by step, until the observer asks to stop. Blocks meanwhile.
std::vector<Outcome> sendSteps(const std::vector<Step>& steps, const CabinetSenderSpace::CabinetTargetMap& targets,
                               const Action::CabinetReader* reader, Observer& observer);

/// In words: "ok", "not sent", or what went wrong.
QString describe(const Outcome& outcome);

/// The one fault that outcomes amount to; nothing where every cabinet holds everything.
std::optional<Fault> faultOf(const std::vector<Outcome>& outcomes, bool isInterrupted);

/// The kind of an outcome, from the library's result and the error text of the action library.
Outcome::Kind kindOf(int result, const QString& error);

} // namespace Calibration
