#include "deviceoutcomes.h"

#include "outcomerecorder_p.h"

#include <utility>

namespace CabinetSenderSpace {

namespace {

thread_local DeviceOutcomes* s_listener = nullptr;

} // namespace

DeviceOutcomes::DeviceOutcomes() : m_outer(std::exchange(s_listener, this)) {}

DeviceOutcomes::~DeviceOutcomes()
{
    s_listener = m_outer;
}

OutcomeRecorder::OutcomeRecorder() : m_listener(std::exchange(s_listener, nullptr)) {}

OutcomeRecorder::~OutcomeRecorder()
{
    s_listener = m_listener;
}

void OutcomeRecorder::record(DeviceOutcome outcome)
{
    if (m_listener)
        m_listener->m_list.push_back(std::move(outcome));
}

} // namespace CabinetSenderSpace
