#include "niccdata.h"

#include <qualityutility/publishedinstance_p.h>

namespace {

QMutex createObjectMutex;

} // namespace

std::atomic<NICCData*> NICCData::m_instance{nullptr};

NICCData* NICCData::getInstance()
{
    return publishedInstance(m_instance, createObjectMutex, [] { return new NICCData; });
}

void NICCData::releaseInstance()
{
    releasePublishedInstance(m_instance);
}
