#include "systemservice.h"

#include <QStandardPaths>

namespace Service {

QString SystemService::getRoamingCompanyPath()
{
    QString given = qEnvironmentVariable("SUITE_COMPANY_DIR");
    if (!given.isEmpty())
        return given;
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + QStringLiteral("/LedSuite");
}

} // namespace Service
