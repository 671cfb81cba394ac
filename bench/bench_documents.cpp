// Reading and writing documents of n points per channel, beside what QJsonDocument itself takes for the same bytes:
// parsing alone, and building and printing alone.

#include <qualityutility/tool/file/picqualityfiletool.h>
#include <suite/model/finegray.h>

#include <benchmark/benchmark.h>

#include <QFile>
#include <QJsonDocument>
#include <QTemporaryDir>

namespace {

using Model::LXY;

struct Content
{
    QList<LXY> points;
    Model::FineGrayCoeffs coeffs;
};

Content contentOf(int count)
{
    Content content;
    for (int i = 0; i < count; ++i) {
        content.points.append({0.001 * i * i + 0.0123, 0.3 + 1e-6 * i, 0.33 - 1e-6 * i, {}});
        content.coeffs.rGrayCoeffs.push_back(static_cast<unsigned char>(i));
    }
    content.coeffs.gGrayCoeffs = content.coeffs.bGrayCoeffs = content.coeffs.magnitudes = content.coeffs.rGrayCoeffs;
    return content;
}

QString file()
{
    static const QTemporaryDir folder;
    return folder.filePath(QStringLiteral("document.json"));
}

/// The same document, built by hand with the quickest calls there are.
QJsonObject build(const Content& content)
{
    const auto points = [&] {
        QJsonArray array;
        for (const LXY& point : content.points) {
            QJsonObject object;
            object.insert(QLatin1String("lum"), point.lum);
            object.insert(QLatin1String("x"), point.x);
            object.insert(QLatin1String("y"), point.y);
            array.append(object);
        }
        return array;
    };
    const auto bytes = [](const std::vector<unsigned char>& list) {
        QJsonArray array;
        for (const unsigned char byte : list)
            array.append(static_cast<int>(byte));
        return array;
    };
    QJsonObject root;
    for (const char* key : {"rMeasure", "gMeasure", "bMeasure"})
        root.insert(QLatin1String(key), points());
    root.insert(QLatin1String("rGrayCoeffs"), bytes(content.coeffs.rGrayCoeffs));
    root.insert(QLatin1String("gGrayCoeffs"), bytes(content.coeffs.gGrayCoeffs));
    root.insert(QLatin1String("bGrayCoeffs"), bytes(content.coeffs.bGrayCoeffs));
    root.insert(QLatin1String("magnitudes"), bytes(content.coeffs.magnitudes));
    return root;
}

void prepare(const Content& content)
{
    if (!PicQualityFileTool::writeFineGrayConfig(file(), content.points, content.points, content.points,
                                                 content.coeffs))
        qFatal("cannot write the benchmark's document");
}

void readBaseline(benchmark::State& state)
{
    prepare(contentOf(static_cast<int>(state.range(0))));
    QFile in(file());
    in.open(QIODevice::ReadOnly);
    const QByteArray bytes = in.readAll();
    for (auto _ : state)
        benchmark::DoNotOptimize(QJsonDocument::fromJson(bytes));
}

void readOurs(benchmark::State& state)
{
    prepare(contentOf(static_cast<int>(state.range(0))));
    for (auto _ : state) {
        Content content;
        QList<LXY> green;
        QList<LXY> blue;
        if (!PicQualityFileTool::readFineGrayConfig(file(), content.points, green, blue, content.coeffs) ||
            blue.isEmpty())
            state.SkipWithError("the document was not read");
    }
}

void writeBaseline(benchmark::State& state)
{
    const Content content = contentOf(static_cast<int>(state.range(0)));
    for (auto _ : state)
        benchmark::DoNotOptimize(QJsonDocument(build(content)).toJson());
}

void writeOurs(benchmark::State& state)
{
    const Content content = contentOf(static_cast<int>(state.range(0)));
    for (auto _ : state)
        prepare(content);
}

BENCHMARK(readBaseline)
    ->Name("read/baseline: parse/points")
    ->Arg(256)
    ->Arg(4096)
    ->Arg(65536)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(readOurs)
    ->Name("read/ours: readFineGrayConfig/points")
    ->Arg(256)
    ->Arg(4096)
    ->Arg(65536)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(writeBaseline)
    ->Name("write/baseline: build and print/points")
    ->Arg(256)
    ->Arg(4096)
    ->Arg(65536)
    ->Unit(benchmark::kMillisecond);
BENCHMARK(writeOurs)
    ->Name("write/ours: writeFineGrayConfig/points")
    ->Arg(256)
    ->Arg(4096)
    ->Arg(65536)
    ->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
