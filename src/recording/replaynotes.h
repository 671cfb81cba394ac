#pragma once

#include <QStringList>

#include <functional>
#include <mutex>

namespace Recording {

/// What the clients of a replayed peer have asked so far.
struct ReplayState
{
    int recorded = 0;        ///< requests that the recording holds
    int asked = 0;           ///< of these, as recorded or differing from it
    int differing = 0;       ///< requests that differ, or that it does not hold
    QStringList differences; ///< what and where, of the first hundred of these
};

/// Counts that while it goes on. All functions may be called from any thread.
class ReplayNotes
{
public:
    /// `told` gets each difference, on the thread that notes it.
    ReplayNotes(int recorded, std::function<void(const QString&)> told);

    /// A recorded request was asked; `difference` is empty where it was asked as recorded.
    void asked(const QString& request, const QString& difference);
    /// A request was asked that the recording does not hold.
    void unknown(const QString& request);
    ReplayState state() const;

private:
    void differs(const QString& request, const QString& difference);

    const std::function<void(const QString&)> m_told;
    mutable std::mutex m_mutex;
    ReplayState m_state; ///< guarded
};

} // namespace Recording
