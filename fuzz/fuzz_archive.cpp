// Unpacking: whatever an archive holds, the process lives and every path that comes out is in the archive's folder.

#include "fuzzing.h"

#include <QDir>
#include <qualityutility/tool/file/picqualityfiletool.h>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QString archive = Fuzzing::instance().file("fuzzed.zip", data, size);
    QString nicc;
    QString gray;
    QString config;
    QStringList others;
    if (!PicQualityFileTool::unpackProConfig(archive, nicc, gray, config, others))
        return 0;
    const QString folder = QDir::tempPath() + QStringLiteral("/fuzzed/");
    for (const QString& path : others + QStringList{nicc, gray, config})
        if (!path.isEmpty() && !QDir::cleanPath(path).startsWith(folder) &&
            QDir::cleanPath(path) + QLatin1Char('/') != folder)
            qFatal("a path outside: %s", qPrintable(path));
    PicQualityFileTool::removeTempProConfig(archive);
    return 0;
}
