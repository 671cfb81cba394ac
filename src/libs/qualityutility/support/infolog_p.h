#pragma once

#include <QDebug>
#include <QLoggingCategory>

namespace Support {

/// A line at info level in the default category. Nothing is formatted when that level is off.
template <typename... Items>
void logInfo(const Items&... items)
{
    if (QLoggingCategory::defaultCategory()->isInfoEnabled())
        (qInfo() << ... << items);
}

} // namespace Support
