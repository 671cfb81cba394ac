#pragma once

#include <qualityutility/tool/sender4th/deviceoutcomes.h>

namespace CabinetSenderSpace {

/// The end of an operation at which DeviceOutcomes listens. While one lives, the thread's listener hears it alone:
/// operations that event handlers start meanwhile have none.
class OutcomeRecorder
{
public:
    OutcomeRecorder();
    ~OutcomeRecorder();
    OutcomeRecorder(const OutcomeRecorder&) = delete;
    OutcomeRecorder& operator=(const OutcomeRecorder&) = delete;

    void record(DeviceOutcome outcome);

private:
    DeviceOutcomes* const m_listener;
};

} // namespace CabinetSenderSpace
