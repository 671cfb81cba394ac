// A wall of devices that take their time to answer, calibrated as a whole, beside its slowest device alone: the library
// is called, the wall simulated, every cabinet read back and the journal written in both. With --threads also what a
// number of threads brings.

#include <calibration/figures.h>
#include <calibration/journal.h>
#include <calibration/selection.h>
#include <calibration/serving.h>
#include <calibration/target.h>
#include <simulator/simulatedwall.h>
#include <suite/action/action.h>

#include <benchmark/benchmark.h>

#include <QCoreApplication>
#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QTemporaryDir>

namespace {

using namespace Calibration;

struct WallSize
{
    int devices;
    int cabinets; ///< of a device
    int latencyMs;
};
constexpr std::array walls{WallSize{200, 50, 30}, WallSize{1000, 100, 5}};

/// What must not fail here.
template <typename T>
T good(Common::Result<T> result)
{
    if (!result)
        qFatal("%s", qPrintable(result.fault().message()));
    return *std::move(result);
}

QByteArray wallText(const WallSize& size)
{
    QJsonArray devices;
    for (int i = 0; i < size.devices; ++i) {
        QJsonArray cabinets;
        for (int cid = 1; cid <= size.cabinets; ++cid)
            cabinets.append(QJsonObject{{QStringLiteral("cid"), cid}});
        devices.append(
            QJsonObject{{QStringLiteral("id"), QStringLiteral("device-%1").arg(i)},
                        {QStringLiteral("type"), QStringLiteral("G4")},
                        {QStringLiteral("simulation"), QJsonObject{{QStringLiteral("latencyMs"), size.latencyMs}}},
                        {QStringLiteral("cabinets"), cabinets}});
    }
    return QJsonDocument(QJsonObject{{QStringLiteral("devices"), devices}}).toJson(QJsonDocument::Compact);
}

/// A simulated wall behind the action library, while it lives.
class BenchWall
{
public:
    explicit BenchWall(const WallSize& size) : m_wall(good(Service::parseWall(wallText(size), QStringLiteral("bench"))))
    {
        std::vector<Service::DeviceEntry> entries;
        for (const Service::WallDevice& device : m_wall)
            entries.push_back(device.entry);
        Service::ModelService::setDevices(entries);
        QString error;
        m_cabinets = Simulator::SimulatedWall::create(m_wall, 1, error);
        if (!m_cabinets)
            qFatal("%s", qPrintable(error));
        Action::setTransport(m_cabinets);
    }
    ~BenchWall() { Action::setTransport(nullptr); }
    BenchWall(const BenchWall&) = delete;
    BenchWall& operator=(const BenchWall&) = delete;

    /// All devices, or one.
    CabinetSenderSpace::CabinetTargetMap targets(bool isOne) const
    {
        Selection selection;
        if (isOne)
            selection.devices = {"device-0"};
        return good(selectTargets(m_wall, selection));
    }
    const Action::CabinetReader& cabinets() const { return *m_cabinets; }

private:
    Service::Wall m_wall;
    std::shared_ptr<Simulator::SimulatedWall> m_cabinets;
};

/// Gray table, both gamuts, coefficients and mode.
Content content()
{
    Content result;
    result.measured = good(readTarget(QStringLiteral("p3-d65:3000"), false)).gamut;
    result.target =
        good(computeFigures(result.measured, good(readTarget(QStringLiteral("rec709:2800"), false)).gamut)).target;
    const std::vector<unsigned char> column(256, 128);
    result.table = {column, column, column, column, 60};
    result.tableFile = Input{QStringLiteral("gray table"), QStringLiteral("bench"), {}, {}};
    return result;
}

/// Serves the wall, or its first device, up to `atOnce` devices at the same time.
void serve(benchmark::State& state, bool isOne, int atOnce)
{
    const BenchWall wall(walls[state.range(0) == walls[0].devices ? 0 : 1]);
    const auto destination = wallDestination(QStringLiteral("bench"), wall.targets(isOne), content(), &wall.cabinets());
    const auto devices = destination->devices();
    const QTemporaryDir folder;
    Observer nobody;
    for (auto _ : state) {
        auto journal = good(Journal::begin(folder.filePath(QStringLiteral("journal")), {}));
        std::size_t done = 0;
        good(serveDevices(*destination, devices, atOnce, nobody, [&](std::size_t, const DeviceRecord& record) {
            done += record.isDone() ? 1 : 0;
            return journal.append(record);
        }));
        if (done != devices.size())
            state.SkipWithError("not everything has arrived");
    }
}

void oneDevice(benchmark::State& state)
{
    serve(state, true, 1);
}

void allDevices(benchmark::State& state)
{
    serve(state, false, defaultAtOnce);
}

/// What a number of threads brings.
void byThreads(benchmark::State& state)
{
    serve(state, false, static_cast<int>(state.range(1)));
}

void named(benchmark::internal::Benchmark* registered)
{
    for (const WallSize& wall : walls)
        registered->Arg(wall.devices);
    registered->Unit(benchmark::kMillisecond)->UseRealTime();
}

BENCHMARK(oneDevice)->Name("calibrating devices/baseline: the slowest alone")->Apply(named);
BENCHMARK(allDevices)->Name("calibrating devices/ours: all at once")->Apply(named);

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    qputenv("QT_LOGGING_RULES", "default.info=false");
    benchmark::Initialize(&argc, argv);
    if (argc > 1 && qstrcmp(argv[1], "--threads") == 0) {
        for (const WallSize& wall : walls) {
            for (const int threads : {1, 8, 16, 32, 64, 128, 256})
                benchmark::RegisterBenchmark("calibrating/threads", byThreads)
                    ->Args({wall.devices, threads})
                    ->Unit(benchmark::kMillisecond)
                    ->UseRealTime();
        }
    }
    benchmark::RunSpecifiedBenchmarks();
}
