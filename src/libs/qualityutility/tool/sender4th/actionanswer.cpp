#include "actionanswer_p.h"

#include <QCoreApplication>

namespace CabinetSenderSpace {

void ActionAnswer::give(Content content)
{
    const std::lock_guard lock(m_mutex);
    if (!isOpen())
        return;
    m_content = std::move(content);
    // Queued: a quit() that comes before exec() has begun would be lost.
    if (m_loop)
        QMetaObject::invokeMethod(m_loop, "quit", Qt::QueuedConnection);
}

ActionAnswer::Content ActionAnswer::wait()
{
    std::unique_lock lock(m_mutex);
    // Without an application object a local loop would never end.
    if (isOpen() && QCoreApplication::instance()) {
        QEventLoop loop;
        m_loop = &loop;
        lock.unlock();
        // Entered once only: after the application was told to quit, exec() returns at once each time.
        loop.exec();
        lock.lock();
        m_loop = nullptr;
    }
    m_isClosed = true;
    return std::move(m_content);
}

} // namespace CabinetSenderSpace
