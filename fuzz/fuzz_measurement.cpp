// Measurements of every kind: what is read has a gamut that can be corrected, and its means lie among the readings.

#include "fuzzing.h"
#include <calibration/gamut.h>
#include <calibration/measurement.h>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<int>(size));
    const auto read = Calibration::parseMeasurement({QStringLiteral("measurement"), QStringLiteral("m"), bytes, {}});
    if (!read) {
        if (read.fault().kind != Common::Fault::Kind::BadData || read.fault().message().isEmpty())
            qFatal("refused without a reason");
        return 0;
    }
    if (!Calibration::requireGamut(read->gamut, {}))
        qFatal("no gamut");
    for (const Calibration::PatchReadings& patch : read->patches.points) {
        // The largest distance from the mean is at most the diagonal of the diagram.
        if (patch.count < 1 || !(patch.spreadXy >= 0.0 && patch.spreadXy < 1.5) || !(patch.spreadLuminance >= 0.0))
            qFatal("%d readings, spread %g and %g", patch.count, patch.spreadXy, patch.spreadLuminance);
    }
    return 0;
}
