#include "parameters.h"

#include <QDebug>

#include <stdexcept>

const boost::any& ParameterMap::at(const char* key) const
{
    const auto item = m_items.find(key);
    if (item == m_items.end())
        throw std::out_of_range("No item found by the input KEY.");
    return item->second;
}

void ParameterMap::logGetError(const char* key)
{
    qCritical() << "Parameters get error, key:" << key;
}
