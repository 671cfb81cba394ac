// Wall documents: a wall or an error text, never neither.

#include "fuzzing.h"
#include <suite/service/walldocument.h>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QString path = Fuzzing::instance().file("wall.json", data, size);
    QString error;
    if (!Service::readWall(path, error) && error.isEmpty())
        qFatal("refused without a reason");
    return 0;
}
