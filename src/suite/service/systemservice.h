#pragma once

#include <suite/service/suite_service_export.h>

#include <QString>

namespace Service {

/// Places of the system.
class SUITE_SERVICE_EXPORT SystemService
{
public:
    SystemService() = delete;

    /// The folder in which the suite keeps a user's data, without a trailing "/": "LedSuite" in the user's generic data
    /// location. The environment variable SUITE_COMPANY_DIR, when not empty, is taken instead: for tests and portable
    /// installations. Nothing is made here: the folder need not exist. Any thread.
    static QString getRoamingCompanyPath();
};

} // namespace Service
