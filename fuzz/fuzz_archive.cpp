// Unpacking: whatever an archive holds, the process lives, every path that comes out is in the archive's folder, and
// the files can be packed again.

#include "fuzzing.h"
#include <qualityutility/tool/file/picqualityfiletool.h>

#include <QDir>
#include <QFile>

#include <algorithm>

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
    others.erase(std::remove_if(others.begin(), others.end(),
                                [](const QString& path) { return path.endsWith(QLatin1Char('/')); }),
                 others.end());
    const QString again = QFileInfo(archive).dir().filePath(QStringLiteral("again.zip"));
    QFile::remove(again);
    PicQualityFileTool::packProConfig(again, nicc, gray, config, others);
    if (!QFile::exists(again))
        qFatal("what was unpacked cannot be packed");
    PicQualityFileTool::removeTempProConfig(archive);
    return 0;
}
