#include "support/hostrun.h"
#include "support/testfiles.h"
#include "support/walldocument.h"

#include <QJsonArray>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>

namespace {

/// What a calibration says of its devices, but how long they took and which run served them.
QJsonArray devicesOf(const Run& run)
{
    QJsonArray told{run.json().value("verdict")};
    for (const char* table : {"devices", "results"}) {
        for (const QJsonValue value : run.json().value(table).toArray()) {
            QJsonObject row = value.toObject();
            row.remove("seconds");
            row.remove("resumed");
            told.append(row);
        }
    }
    return told;
}

} // namespace

class CalibrateTest : public QObject
{
    Q_OBJECT

private:
    QString in(const QString& name) const { return m_folder->filePath(name); }
    QString out(const QString& name = {}) const { return in("out/" + name); }

    QStringList calibrate(const QStringList& further = {}) const
    {
        return QStringList{"calibrate", "--measured", "measured-gamut.json", "--target", "rec709", "--out",
                           out(),       "--json"} +
               further;
    }

    /// A wall whose device b behaves so.
    QStringList wall(const QByteArray& behaviour) const
    {
        return {"--wall", writeFile(in("wall.json"), wallDocument(behaviour, R"({"latencyMs": 20})"))};
    }

    /// Whether the documents of the folder are whole, each that is there.
    void checkDocuments() const
    {
        for (const QString& name : QDir(out()).entryList({"*.nicc", "*.gray"}))
            QVERIFY2(QJsonDocument::fromJson(readFile(out(name))).isObject(), qPrintable(name));
    }

    std::unique_ptr<QTemporaryDir> m_folder;

private Q_SLOTS:
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        qputenv("TMPDIR", m_folder->path().toLocal8Bit());
    }

    void cleanup() { qunsetenv("TMPDIR"); }

    void theWholeRoadLeavesDocumentsAndReport()
    {
        const Run done = run(calibrate({"--table", "gray-table.csv", "--binary", "receiving-card.bin"}));
        QVERIFY2(done.exitCode == 0, qPrintable(done.out + done.err));
        QCOMPARE(done.json().value("files").toArray().size(), 9);
        for (const QJsonValue& file : done.json().value("files").toArray())
            QVERIFY2(!readFile(file.toString()).isEmpty(), qPrintable(file.toString()));
        QCOMPARE(run({"project", "unpack", out("screen.zip"), "--out", in("u")}).exitCode, 0);
        for (const char* name : {"screen.nicc", "screen.gray", "screen.nrf"})
            QCOMPARE(readFile(in("u/") + name), readFile(out(name)));
        QVERIFY(!QFile::exists(in("screen"))); // the temporary folder is gone
        const Run strict = run({"verify", out(), "--strict", "--quiet"});
        QCOMPARE(strict.exitCode, 1);
        QVERIFY2(strict.err.contains("left: 16 cabinets differ from the target by CIEDE2000 10.2"),
                 qPrintable(strict.err));
        QVERIFY2(strict.out.contains("(read back, simulated, from the journal)\n\nFrom the journal: "),
                 qPrintable(strict.out));
        const QJsonObject verified = run({"verify", out(), "--json"}).json();
        QVERIFY(verified["ok"].toBool() && verified.value("devices")[0]["coefficients"][0] == 10264);
        QVERIFY(verified["simulated"].toBool() && verified.value("verdict")["passed"].toBool());
        for (const char* figure : {"coverage_xy", "coverage_uv", "area_ratio_xy", "simulated"})
            QCOMPARE(verified[figure], done.json()[figure]);
        const Run uncorrected = run({"verify", out(), "--measured", "readings.ti3", "--json"});
        const QJsonObject after = uncorrected.json().value("after").toObject();
        QVERIFY(uncorrected.exitCode == 1 && after["instrument"] == "Spectroradiometer at 5 m");
        QVERIFY(qAbs(after.value("points")[0]["after_cd_m2"].toDouble() - 834.2) < 1.0);
    }

    void aThirdGenerationIsServedThroughAHub()
    {
        const Run done = run(calibrate({"--generation", "3", "--table", "gray-table.csv"}));
        QVERIFY2(done.exitCode == 0 && done.json().value("results").toArray().size() == 3, qPrintable(done.out));
        const Run verified = run({"verify", out(), "--json"});
        QVERIFY(verified.exitCode == 0 && verified.json()["simulated"].toBool());
        QCOMPARE(verified.json().value("devices")[0]["coefficients"][5].toInt(), -1006);
    }

    void aFailedDeviceIsTriedAgainByAResume()
    {
        const QStringList failing = calibrate(wall(failingBy("error")));
        QCOMPARE(run(failing).exitCode, 69);
        const Run again = run(failing + QStringList{"--resume"});
        QVERIFY(again.exitCode == 69 && again.json().value("devices")[0]["resumed"].toBool());
        const Run other = run(failing + QStringList{"--resume", "--cabinet", "1"});
        QCOMPARE(other.exitCode, 65);
        QVERIFY2(other.out.contains("was begun with another cabinet"), qPrintable(other.out));
    }

    void interruptedItFinishesTheRunningDevice()
    {
        const QStringList arguments = calibrate(wall(R"({"latencyMs": 150})") + QStringList{"--parallel", "1"});
        QObject owner;
        QProcess* process = start(arguments, &owner);
        process->setReadChannel(QProcess::StandardError);
        QByteArray err;
        while (!err.contains("measure to b") && !err.contains("mode to a") && process->waitForReadyRead(10000))
            err += process->readAllStandardError();
        QCOMPARE(run(arguments + QStringList{"--resume"}).exitCode, 69); // one at a time
        ::kill(static_cast<pid_t>(process->processId()), SIGINT);
        const Run done = finish(process);
        QCOMPARE(done.exitCode, 130);
        const QString message = done.json().value("error")["message"].toString();
        QVERIFY2(message == "interrupted; done: a, b; not done: c" || message == "interrupted; done: a; not done: b, c",
                 qPrintable(message));
        const Run resumed = run(arguments + QStringList{"--resume"});
        QVERIFY(resumed.exitCode == 0 && resumed.json().value("devices")[0]["resumed"].toBool());
    }

    void aKillAtAnyMomentLeavesWhatAResumeCompletes()
    {
        const QStringList arguments =
            calibrate(wall(R"({"latencyMs": 5})") + QStringList{"--table", "gray-table.csv", "--parallel", "2"});
        const QJsonArray undisturbed = devicesOf(run(arguments));
        QCOMPARE(undisturbed.size(), 1 + 3 + 3 * 5);
        for (int delay = 40; delay <= 400; delay += 120) {
            QDir(out()).removeRecursively();
            QObject owner;
            QProcess* process = start(arguments, &owner);
            QVERIFY(process->waitForStarted());
            process->waitForFinished(delay);
            process->kill();
            process->waitForFinished();
            checkDocuments();
            const Run resumed = run(arguments + QStringList{"--resume"});
            QVERIFY2(resumed.exitCode == 0, qPrintable(resumed.out));
            QCOMPARE(devicesOf(resumed), undisturbed);
            checkDocuments();
        }
        QCOMPARE(run({"project", "list", out("screen.zip")}).exitCode, 0);
    }

    void aFullDiskIsTold()
    {
        const Run done = run(calibrate(), 17000);
        QCOMPARE(done.exitCode, 74);
        QCOMPARE(done.json().value("error")["message"].toString(), out("gamut-xy.svg: File too large"));
    }

    void projectCommandsLoseNothing()
    {
        writeFile(in("1/a.nicc"), "one");
        writeFile(in("2/a.nicc"), "two");
        const QString nicc = writeFile(in("b.nicc"), "three");
        const auto pack = [&](const QString& archive, const QStringList& files) {
            return run(QStringList{"project", "pack", archive} + files).exitCode;
        };
        QCOMPARE(pack(in("p.zip"), {"--nicc", in("1/a.nicc"), "--file", in("2/a.nicc")}), 64);
        QCOMPARE(pack(in("p.zip"), {"--nicc", in("1/a.nicc"), "--file", nicc}), 0);
        qputenv("QT_LOGGING_RULES", "default.critical=false"); // nothing is known from the log
        QCOMPARE(pack(in("1"), {"--nicc", nicc, "--force"}), 73);
        QCOMPARE(pack(in("1/a.nicc/x.zip"), {"--nicc", nicc}), 74);
        qunsetenv("QT_LOGGING_RULES");
        const auto unpack = [&](const QString& archive, const QString& folder) {
            return run({"project", "unpack", archive, "--out", folder, "--force"}).exitCode;
        };
        writeFile(in("p/mine"), "in the way of the library's temporary folder");
        QCOMPARE(unpack(in("p.zip"), in("p")), 0);
        QCOMPARE(readFile(in("p/a.nicc")) + readFile(in("p/b.nicc")), QByteArray("onethree"));
        writeFile(in("q/a.nicc"), "mine");
        QVERIFY(QFile::exists(in("p/mine")) && QDir().mkpath(in("q/b.nicc"))); // in the way of the second file
        QCOMPARE(unpack(in("p.zip"), in("q")), 73);
        QCOMPARE(readFile(in("q/a.nicc")), QByteArray("mine"));
        QCOMPARE(unpack(writeFile(in("bad.zip"), "no archive"), in("new/deep")), 65);
        QVERIFY(!QFile::exists(in("new")));
    }

    void ofSeveralPackingsAtOnceOneMakesTheArchive()
    {
        QByteArray digits; // which take a while to pack
        while (digits.size() < 1'000'000)
            digits += QByteArray::number(digits.size() * qint64{7919} % 1'000'003);
        const QStringList pack{"project", "pack", in("p.zip"), "--file", writeFile(in("b"), digits)};
        QObject owner;
        QList<QProcess*> packing;
        for (int i = 0; i < 4; ++i)
            packing << start(pack, &owner);
        QMap<int, int> exitCodes;
        for (QProcess* process : packing)
            ++exitCodes[finish(process).exitCode];
        QCOMPARE(exitCodes, (QMap<int, int>{{0, 1}, {73, 3}}));
        QCOMPARE(QDir(m_folder->path()).entryList(QDir::Files | QDir::Hidden), (QStringList{"b", "p.zip"}));
    }

    void chartsAreWrittenByTheirSuffix()
    {
        QCOMPARE(run({"gamut", "chart", "rec709", "bt2020", "--plane", "uv", "--out", in("c.svg")}).exitCode, 0);
        QVERIFY(readFile(in("c.svg")).contains("reached"));
        QCOMPARE(run({"gray", "chart", "--table", "gray-table.csv", "--out", in("c.png")}).exitCode, 0);
        QVERIFY(readFile(in("c.png")).startsWith("\x89PNG"));
    }
};

QTEST_GUILESS_MAIN(CalibrateTest)
#include "tst_calibrate.moc"
