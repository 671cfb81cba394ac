// Packing and unpacking a project of four documents, beside JlCompress alone (no look at the entries, no move into
// place) and beside the commands zip and unzip at the same level. Wall-clock time: the commands are other processes.

#include <qualityutility/tool/file/picqualityfiletool.h>

#include <benchmark/benchmark.h>
#include <quazip/JlCompress.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

namespace {

QString s_folder;

QString path(const QString& name)
{
    return s_folder + QLatin1Char('/') + name;
}

QStringList documents()
{
    return {path(QStringLiteral("a.nicc")), path(QStringLiteral("c.nrf")), path(QStringLiteral("b.gray")),
            path(QStringLiteral("d.txt"))};
}

/// Text of numbers, as the documents are.
void makeDocuments()
{
    int size = 2000;
    for (const QString& document : documents()) {
        QByteArray content;
        for (unsigned int state = 1; content.size() < size; state = state * 1664525 + 1013904223)
            content += "    \"lum\": 0." + QByteArray::number(state) + ",\n";
        QFile file(document);
        if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
            qFatal("cannot write the documents");
        size *= 10;
    }
}

void run(const QString& program, const QStringList& arguments)
{
    QProcess process;
    process.start(program, arguments);
    if (!process.waitForFinished() || process.exitCode() != 0)
        qFatal("%s failed", qPrintable(program));
}

void packWithJlCompress()
{
    JlCompress::compressFiles(path(QStringLiteral("jl.zip")), documents());
}

void packWithZip()
{
    const QString archive = path(QStringLiteral("z.zip"));
    QFile::remove(archive);
    run(QStringLiteral("zip"), QStringList{QStringLiteral("-qj6"), archive} + documents());
}

void pack()
{
    const QStringList files = documents();
    PicQualityFileTool::packProConfig(path(QStringLiteral("p.zip")), files.at(0), files.at(2), files.at(1),
                                      {files.at(3)});
}

/// Baselines get a fresh folder too.
void freshFolder(const QString& folder)
{
    QDir(folder).removeRecursively();
    QDir().mkpath(folder);
}

void unpackWithJlCompress()
{
    freshFolder(path(QStringLiteral("jl")));
    JlCompress::extractDir(path(QStringLiteral("p.zip")), path(QStringLiteral("jl")));
}

void unpackWithUnzip()
{
    freshFolder(path(QStringLiteral("z")));
    run(QStringLiteral("unzip"),
        {QStringLiteral("-q"), path(QStringLiteral("p.zip")), QStringLiteral("-d"), path(QStringLiteral("z"))});
}

void unpack()
{
    QString nicc;
    QString gray;
    QString config;
    QStringList others;
    if (!PicQualityFileTool::unpackProConfig(path(QStringLiteral("p.zip")), nicc, gray, config, others))
        qFatal("the archive was refused");
}

template <void (*Work)()>
void repeat(benchmark::State& state)
{
    pack();
    for (auto _ : state)
        Work();
}

BENCHMARK(repeat<packWithJlCompress>)
    ->Name("packing a project/baseline: JlCompress")
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK(repeat<packWithZip>)->Name("packing a project/baseline: zip")->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(repeat<pack>)->Name("packing a project/ours: packProConfig")->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(repeat<unpackWithJlCompress>)
    ->Name("unpacking a project/baseline: JlCompress")
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK(repeat<unpackWithUnzip>)
    ->Name("unpacking a project/baseline: unzip")
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK(repeat<unpack>)
    ->Name("unpacking a project/ours: unpackProConfig")
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

} // namespace

int main(int argc, char** argv)
{
    const QTemporaryDir folder;
    s_folder = folder.path();
    qputenv("TMPDIR", s_folder.toLocal8Bit());
    const QCoreApplication application(argc, argv);
    makeDocuments();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
