#include "replaynotes.h"

namespace Recording {

namespace {

constexpr int maxDifferences = 100;

} // namespace

ReplayNotes::ReplayNotes(int recorded, std::function<void(const QString&)> told) : m_told(std::move(told))
{
    m_state.recorded = recorded;
}

void ReplayNotes::asked(const QString& request, const QString& difference)
{
    const std::lock_guard lock(m_mutex);
    ++m_state.asked;
    if (!difference.isEmpty())
        differs(request, difference);
}

void ReplayNotes::unknown(const QString& request)
{
    const std::lock_guard lock(m_mutex);
    differs(request, QStringLiteral("not in the recording, or asked there less often"));
}

ReplayState ReplayNotes::state() const
{
    const std::lock_guard lock(m_mutex);
    return m_state;
}

void ReplayNotes::differs(const QString& request, const QString& difference)
{
    const QString text = QStringLiteral("%1: %2").arg(request, difference);
    if (++m_state.differing > maxDifferences)
        return;
    m_state.differences << text;
    m_told(text);
}

} // namespace Recording
