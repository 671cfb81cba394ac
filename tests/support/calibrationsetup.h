#pragma once

#include "support/testfiles.h"
#include "support/walldocument.h"
#include <calibration/aftermeasurement.h>
#include <calibration/gamut.h>
#include <calibration/graytable.h>
#include <calibration/run.h>
#include <calibration/selection.h>
#include <calibration/target.h>
#include <simulator/simulatedwall.h>
#include <suite/action/action.h>

// A small wall and what a calibration brings to it, for tests of the calibration and of its reports.

/// "BadData: gamut x: not JSON"
inline QString faultText(const Common::Fault& fault)
{
    static const char* const kinds[] = {"Difference",   "Usage",       "BadData", "NoInput",  "Unavailable", "Internal",
                                        "CannotCreate", "InputOutput", "Timeout", "Protocol", "Interrupted"};
    return QString(kinds[static_cast<int>(fault.kind)]) + ": " + fault.message();
}

/// Empty where there is no fault.
template <typename T>
QString faultText(const Common::Result<T>& result)
{
    return result ? QString() : faultText(result.fault());
}

/// What must not fail here.
template <typename T>
T good(Common::Result<T> result)
{
    if (!result)
        qFatal("%s", qPrintable(result.fault().message()));
    return *std::move(result);
}

/// The simulated wall of wallDocument() or another document, behind the action library while it lives.
class TestWall
{
public:
    struct Document
    {
        QByteArray text;
    };

    explicit TestWall(const QByteArray& simulationOfB = R"({"latencyMs": 0})")
        : TestWall(Document{wallDocument(simulationOfB)})
    {}
    explicit TestWall(const Document& document)
    {
        wall = good(Service::parseWall(document.text, "test"));
        std::vector<Service::DeviceEntry> entries;
        for (const Service::WallDevice& device : wall)
            entries.push_back(device.entry);
        Service::ModelService::setDevices(entries);
        targets = good(Calibration::selectTargets(wall, {}));
        QString error;
        cabinets = Simulator::SimulatedWall::create(wall, 1, error);
        if (!cabinets)
            qFatal("%s", qPrintable(error));
        Action::setTransport(cabinets);
    }
    ~TestWall() { Action::setTransport(nullptr); }
    TestWall(const TestWall&) = delete;
    TestWall& operator=(const TestWall&) = delete;

    Service::Wall wall;
    CabinetSenderSpace::CabinetTargetMap targets;
    std::shared_ptr<Simulator::SimulatedWall> cabinets;
};

/// A standard gamut without luminances.
inline Model::ColorGamutInfo standardGamut(const char* key)
{
    return good(Calibration::readTarget(key, false)).gamut;
}

/// The example panel corrected to Rec. 709, with the example's table (or another file's) and binary.
inline Calibration::Content exampleContent(const QString& table = EXAMPLES "/gray-table.csv")
{
    Calibration::Content content;
    content.measurement = good(Calibration::readMeasured(EXAMPLES "/measured-gamut.json"));
    content.measured = content.measurement.gamut;
    content.target = good(Calibration::computeFigures(content.measured, standardGamut("rec709"))).target;
    content.tableFile = good(Calibration::readInput(table, "gray table"));
    content.table = good(Calibration::parseGrayTable(*content.tableFile, 60));
    content.binary = good(Calibration::readInput(EXAMPLES "/receiving-card.bin", "binary"));
    return content;
}

/// What an instrument would find of such figures, if that were a white of so many cd/m2; 0: it gives ratios only.
inline Calibration::Measurement measurementOf(const Calibration::Figures& figures, double whiteLuminance)
{
    Calibration::Measurement measurement;
    const std::array points{&measurement.gamut.rLxy, &measurement.gamut.gLxy, &measurement.gamut.bLxy,
                            &measurement.gamut.wLxy};
    for (std::size_t i = 0; i < points.size(); ++i) {
        const Colour::Vector3& shown = figures.corners.corners[i < 3 ? i : Colour::judgedWhite].shown;
        const Colour::Chromaticity xy = *Colour::chromaticity(shown);
        *points[i] = {shown[1] * whiteLuminance, xy.x, xy.y, {}};
        measurement.patches.points[i].mean = {
            shown[1] * (whiteLuminance > 0.0 ? whiteLuminance : 100.0), xy.x, xy.y, {}};
    }
    measurement.gamut.name = "afterwards";
    return measurement;
}

/// A calibration of the wall in `folder`.
inline Common::Result<Calibration::RunResult> calibrate(const TestWall& wall, const Calibration::Content& content,
                                                        const QString& folder,
                                                        const Calibration::RunOptions& options = {},
                                                        Calibration::Observer* observer = nullptr)
{
    const auto place = Calibration::Folder::open(folder);
    if (!place)
        return place.fault();
    const auto figures = good(Calibration::figuresOf(content.measured, content.target));
    const auto destination = Calibration::wallDestination("test wall", wall.targets, content, wall.cabinets.get());
    Calibration::Observer nobody;
    return Calibration::run(content, figures, *destination, inputsOf(content, *destination), **place, options,
                            observer ? *observer : nobody);
}
