#include "builtinresource.h"

#include <QFile>
#include <QProcess>
#include <qualityutility/resource/picqualityresource.h>

PicQualityResource& builtInResource()
{
    qputenv("SUITE_COMPANY_DIR", QFile::encodeName(QProcess::nullDevice()));
    return *PicQualityResource::getInstance();
}
