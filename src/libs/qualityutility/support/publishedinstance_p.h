#pragma once

#include <QMutex>
#include <QMutexLocker>

#include <atomic>

namespace Support {

/// The instance behind a singleton's getInstance(): returned at once when it is there, otherwise made by `create` under
/// `mutex`, once however many threads ask first. The atomic pointer is what makes the look without the lock safe.
template <typename T, typename Create>
T* publishedInstance(std::atomic<T*>& instance, QMutex& mutex, const Create& create)
{
    if (T* existing = instance.load(std::memory_order_acquire))
        return existing;
    const QMutexLocker lock(&mutex);
    if (T* existing = instance.load(std::memory_order_acquire))
        return existing;
    T* created = create();
    instance.store(created, std::memory_order_release);
    return created;
}

/// What releaseInstance() does: deletes the instance, if there is one. Nobody may be using it.
template <typename T>
void releasePublishedInstance(std::atomic<T*>& instance)
{
    delete instance.exchange(nullptr, std::memory_order_acq_rel);
}

} // namespace Support
