// The settings file: it is read whatever it holds, and a write-back keeps it readable.

#include "fuzzing.h"

#include <qualityutility/resource/picqualityresource.h>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Fuzzing& fuzzing = Fuzzing::instance();
    static PicQualityResource& resource = *PicQualityResource::getInstance();
    // Qt keeps parsed files by their path: a new name for each.
    static unsigned int count = 0;
    const QString path = fuzzing.file(qPrintable(QStringLiteral("settings%1.ini").arg(count++)), data, size);
    resource.parsePicqualityConfigFile(path);
    const PicQualitySettings& settings = resource.settings();
    if (settings.colorTemp < 0)
        qFatal("a colour temperature of %d", settings.colorTemp);
    QFile::remove(path);
    return 0;
}
