#include "builtinresource.h"

#include <qualityutility/resource/picqualityresource.h>

#include <QFile>
#include <QProcess>

PicQualityResource& builtInResource()
{
    qputenv("SUITE_COMPANY_DIR", QFile::encodeName(QProcess::nullDevice()));
    return *PicQualityResource::getInstance();
}
