#include "actionanswer_p.h"

#include <QCoreApplication>

namespace CabinetSenderSpace {

void ActionAnswer::give(Content content)
{
    std::unique_lock lock(m_mutex);
    if (!m_isOpen)
        return;
    m_isOpen = false;
    QEventLoop* const loop = m_loop;
    if (std::this_thread::get_id() != m_owner) {
        m_left = std::move(content);
        if (loop) // queued: a quit() that comes before exec() has begun would be lost
            QMetaObject::invokeMethod(loop, "quit", Qt::QueuedConnection);
        return;
    }
    lock.unlock(); // what observes the model may wait for another answer
    m_apply(content);
    if (loop)
        loop->quit();
}

void ActionAnswer::wait(QEventLoop& loop)
{
    std::unique_lock lock(m_mutex);
    // Without an application object a local loop would never end.
    if (m_isOpen && QCoreApplication::instance()) {
        m_loop = &loop;
        lock.unlock();
        // Entered once only: after the application was told to quit, exec() returns at once each time.
        loop.exec();
        lock.lock();
        m_loop = nullptr;
    }
    m_isOpen = false;
    lock.unlock();
    if (m_left)
        m_apply(*m_left);
    m_apply = nullptr;
}

} // namespace CabinetSenderSpace
