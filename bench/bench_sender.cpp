// Loading a large wall, and sending gray tables to it over a transport that answers inside the call: what is measured
// is our own work. The baselines are what cannot be saved: parsing the JSON, copying the tables, looking the cabinets
// up.

#include <qualityutility/tool/sender4th/cabinetsender.h>
#include <suite/action/action.h>
#include <suite/service/walldocument.h>

#include <benchmark/benchmark.h>

#include <QCoreApplication>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QTemporaryDir>

namespace {

using Bytes = std::vector<unsigned char>;
using CabinetList = std::vector<unsigned long long>;
using CabinetSenderSpace::CabinetTargetMap;

constexpr int wallDevices = 200;
constexpr int cabinetsPerDevice = 500;
constexpr int tableLength = 65536;

std::string deviceId(int index)
{
    return "device-" + std::to_string(1000 + index);
}

QByteArray wallText()
{
    QJsonArray devices;
    for (int i = 0; i < wallDevices; ++i) {
        QJsonArray cabinets;
        for (int cid = 0; cid < cabinetsPerDevice; ++cid) {
            cabinets.append(QJsonObject{{QStringLiteral("cid"), 1000 * i + cid},
                                        {QStringLiteral("grayScaleSeries"), 16},
                                        {QStringLiteral("chipEffectFlag"), 1},
                                        {QStringLiteral("effectMode"), 3}});
        }
        devices.append(QJsonObject{{QStringLiteral("id"), QString::fromStdString(deviceId(i))},
                                   {QStringLiteral("type"), QStringLiteral("G4")},
                                   {QStringLiteral("batchCorrectionSwitch"), true},
                                   {QStringLiteral("cabinets"), cabinets}});
    }
    return QJsonDocument(QJsonObject{{QStringLiteral("devices"), devices}}).toJson();
}

/// The large wall as a file, written once.
const QString& wallFile()
{
    static const QTemporaryDir folder;
    static const QString path = [] {
        QFile file(folder.filePath(QStringLiteral("wall.json")));
        if (!file.open(QIODevice::WriteOnly) || file.write(wallText()) < 0)
            qFatal("cannot write the benchmark's wall");
        return file.fileName();
    }();
    return path;
}

/// The first `devices` devices of the large wall, which is in the registry afterwards.
CabinetTargetMap targets(int devices)
{
    QString error;
    if (!Service::loadWall(wallFile(), error))
        qFatal("%s", qPrintable(error));
    CabinetTargetMap result;
    for (int i = 0; i < devices; ++i) {
        CabinetList& cids = result[deviceId(i)];
        for (int cid = 0; cid < cabinetsPerDevice; ++cid)
            cids.push_back(static_cast<unsigned long long>(1000 * i + cid));
    }
    return result;
}

class InstantTransport : public Action::Transport
{
public:
    void send(const Action::Request& request, const Action::Responder& responder) override
    {
        Parameters reply;
        reply.insert("cids", *request.parameters.arguments().find<CabinetList>("cids"));
        responder.reply(std::move(reply));
    }
};

/// Adds a column with the time per device: it must not grow with their number.
void countPerDevice(benchmark::State& state)
{
    state.counters["per_device"] =
        benchmark::Counter(static_cast<double>(state.range(0)),
                           benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

void wallBaseline(benchmark::State& state)
{
    for (auto _ : state) {
        QFile file(wallFile());
        file.open(QIODevice::ReadOnly);
        benchmark::DoNotOptimize(QJsonDocument::fromJson(file.readAll()));
    }
}

void wallOurs(benchmark::State& state)
{
    QString error;
    for (auto _ : state) {
        if (!Service::loadWall(wallFile(), error))
            state.SkipWithError("the wall does not load");
    }
}

void grayBaseline(benchmark::State& state)
{
    const CabinetTargetMap all = targets(static_cast<int>(state.range(0)));
    const Bytes table(tableLength, 7);
    for (auto _ : state) {
        for (const auto& [device, cids] : all) {
            const CabinetList sent = cids;
            const CabinetList answered = cids;
            const std::array<Bytes, 4> tables{table, table, table, table};
            benchmark::DoNotOptimize(tables.data());
            for (const unsigned long long cid : answered)
                Service::ModelService::getCabByCid(device, cid, true)->getDisplayEffectPara().setFineGrayValid(true);
        }
    }
    countPerDevice(state);
}

void grayOurs(benchmark::State& state)
{
    const CabinetTargetMap all = targets(static_cast<int>(state.range(0)));
    Action::setTransport(std::make_shared<InstantTransport>());
    QList<unsigned char> table;
    for (int i = 0; i < tableLength; ++i)
        table.append(static_cast<unsigned char>(i));
    for (auto _ : state) {
        if (CabinetSenderSpace::CabinetSender::setGrayScaleTable(all, table, table, table, table, 60) != 0)
            state.SkipWithError("the tables were not sent");
    }
    Action::setTransport(nullptr);
    countPerDevice(state);
}

BENCHMARK(wallBaseline)->Name("wall of 200 x 500/baseline: parse its JSON")->Unit(benchmark::kMillisecond);
BENCHMARK(wallOurs)->Name("wall of 200 x 500/ours: load it")->Unit(benchmark::kMillisecond);
BENCHMARK(grayBaseline)
    ->Name("gray tables/baseline: copy and look up/devices")
    ->Arg(2)
    ->Arg(20)
    ->Arg(200)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(grayOurs)
    ->Name("gray tables/ours: setGrayScaleTable/devices")
    ->Arg(2)
    ->Arg(20)
    ->Arg(200)
    ->Unit(benchmark::kMicrosecond);

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
