#include "rvcardconfigdatamodel.h"

namespace ReceivingCard {

ConfigData* RvCardConfigDataModel::m_pInstance = nullptr;

ConfigData* RvCardConfigDataModel::getInstance()
{
    if (!m_pInstance)
        m_pInstance = new ConfigData(nullptr);
    return m_pInstance;
}

void RvCardConfigDataModel::releaseInstance()
{
    delete m_pInstance;
    m_pInstance = nullptr;
}

} // namespace ReceivingCard
