// Loading the fifteen gray tables, beside a bare loop over the digits of the same bytes in memory and beside reading
// line by line.

#include <qualityutility/resource/picqualityresource.h>

#include <benchmark/benchmark.h>

#include <QCoreApplication>
#include <QFile>
#include <QTemporaryDir>

namespace {

QStringList paths()
{
    QStringList result{QStringLiteral(":/qualityadjust/resource/LUT_INDEX.txt"),
                       QStringLiteral(":/qualityadjust/resource/nGray_White.txt")};
    for (int table = 0; table < PicQualityResource::GrayTableCount; ++table)
        result << PicQualityResource::grayTablePath(static_cast<PicQualityResource::GrayTable>(table));
    return result;
}

QList<QByteArray> contents()
{
    QList<QByteArray> result;
    for (const QString& path : paths()) {
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly))
            qFatal("a gray table is missing");
        result << file.readAll();
    }
    return result;
}

void digitLoop(benchmark::State& state)
{
    const auto texts = contents();
    for (auto _ : state) {
        for (const QByteArray& text : texts) {
            QList<unsigned short> list;
            list.reserve(text.count('\n'));
            unsigned int number = 0;
            for (const char c : text) {
                if (c != '\n') {
                    number = number * 10 + static_cast<unsigned int>(c - '0');
                    continue;
                }
                list.append(static_cast<unsigned short>(number));
                number = 0;
            }
            benchmark::DoNotOptimize(list);
        }
    }
}

void readLines(benchmark::State& state)
{
    for (auto _ : state) {
        for (const QString& path : paths()) {
            QFile file(path);
            file.open(QIODevice::ReadOnly | QIODevice::Text);
            QList<unsigned short> list;
            while (!file.atEnd())
                list.append(file.readLine().toUShort());
            benchmark::DoNotOptimize(list);
        }
    }
}

void parseFiles(benchmark::State& state)
{
    PicQualityResource& resource = *PicQualityResource::getInstance();
    for (auto _ : state) {
        for (const QString& path : paths()) {
            QList<unsigned short> list;
            if (!resource.parseGrayFromFile(path, list))
                state.SkipWithError("a gray table was not read");
            benchmark::DoNotOptimize(list);
        }
    }
}

void discard(QtMsgType, const QMessageLogContext&, const QString&) {}

BENCHMARK(digitLoop)->Name("fifteen gray tables/baseline: bare digit loop")->Unit(benchmark::kMillisecond);
BENCHMARK(readLines)->Name("fifteen gray tables/baseline: readLine and convert")->Unit(benchmark::kMillisecond);
BENCHMARK(parseFiles)->Name("fifteen gray tables/ours: parseGrayFromFile")->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv)
{
    const QTemporaryDir folder;
    qputenv("SUITE_COMPANY_DIR", folder.path().toLocal8Bit());
    qInstallMessageHandler(discard);
    const QCoreApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    PicQualityResource::releaseInstance();
}
