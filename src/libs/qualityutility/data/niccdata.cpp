#include "niccdata.h"

#include <qualityutility/support/publishedinstance_p.h>

namespace {

QMutex createObjectMutex;

} // namespace

std::atomic<NICCData*> NICCData::m_instance{nullptr};

NICCData* NICCData::getInstance()
{
    return Support::publishedInstance(m_instance, createObjectMutex, [] { return new NICCData; });
}

void NICCData::releaseInstance()
{
    Support::releasePublishedInstance(m_instance);
}

QString NICCData::getVersion() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_version;
}

void NICCData::setVersion(const QString& version)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_version = version;
}

QDate NICCData::getManageDate() const
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    return m_manageDate;
}

void NICCData::setManageDate(QDate date)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_manageDate = date;
}
