#pragma once

#include <qualityutility/qualityutility_export.h>

#include <QString>

#include <string>
#include <vector>

namespace CabinetSenderSpace {

/// What became of one device in a sending operation of the fourth generation.
struct DeviceOutcome
{
    /// How it ended.
    enum class Kind {
        Skipped,    ///< nothing was sent: the local model has no such device
        Confirmed,  ///< the device answered with success
        Failed,     ///< the action ended with an error, its timeout among them
        Unanswered, ///< the wait was ended before an answer: the application was told to quit
    };

    std::string deviceId;                      ///< as in the targets
    Kind kind = Kind::Skipped;                 ///< says which of the two below is filled
    QString error;                             ///< Failed: the action library's text
    std::vector<unsigned long long> confirmed; ///< Confirmed: the cabinets that the reply names; may be empty
};

/// Collects, beside the operations' own results, which are the last device's only, what became of every device:
///
///     CabinetSenderSpace::DeviceOutcomes outcomes;
///     CabinetSenderSpace::CabinetSender::uploadNiccData(targets, gamut);
///     for (const auto& outcome : outcomes.list()) ...
///
/// It sees the operations that its own thread calls while it lives, and not those that event handlers start during
/// their waits. The innermost one counts. Used on the thread that made it.
class QUALITYUTILITY_EXPORT DeviceOutcomes
{
public:
    /// Begins to listen; what came before is not there.
    DeviceOutcomes();
    /// Hands the thread's operations back to the one that listened before.
    ~DeviceOutcomes();
    DeviceOutcomes(const DeviceOutcomes&) = delete;
    DeviceOutcomes& operator=(const DeviceOutcomes&) = delete;

    /// In the order in which the devices were served.
    const std::vector<DeviceOutcome>& list() const { return m_list; }

private:
    friend class OutcomeRecorder;

    std::vector<DeviceOutcome> m_list;
    DeviceOutcomes* m_outer;
};

} // namespace CabinetSenderSpace
