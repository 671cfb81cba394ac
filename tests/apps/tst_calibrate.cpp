#include "support/hostrun.h"
#include "support/testfiles.h"

#include <suite/model/colorgamutinfo.h>
#include <sys/stat.h>

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QTemporaryDir>
#include <QTest>
#include <QXmlStreamReader>
#include <qualityutility/tool/file/picqualityfiletool.h>

#include <csignal>

namespace {

/// "" for a well-formed document.
QString xmlError(const QByteArray& document)
{
    QXmlStreamReader reader(document);
    while (!reader.atEnd())
        reader.readNext();
    return reader.errorString();
}

} // namespace

class CalibrateTest : public QObject
{
    Q_OBJECT

private:
    QString out(const QString& name = {}) const
    {
        return m_folder->filePath("out" + (name.isEmpty() ? name : '/' + name));
    }

    QStringList calibrate(const QStringList& further = {}) const
    {
        return QStringList{"calibrate", "--measured", "measured-gamut.json", "--target", "rec709", "--out",
                           out(),       "--json"} +
               further;
    }

    /// A wall of devices a, b, c with two cabinets each; `behaviour` is b's.
    QStringList wall(const QByteArray& behaviour)
    {
        QByteArray devices;
        for (const QByteArray id : {"a", "b", "c"})
            devices += (devices.isEmpty() ? "" : ", ") + (R"({"id": ")" + id + R"(", "type": "G4", "simulation": )") +
                       (id == "b" ? behaviour : QByteArray(R"({"latencyMs": 20})")) +
                       R"(, "cabinets": [{"cid": 1}, {"cid": 2}]})";
        return {"--wall", writeFile(m_folder->filePath("wall.json"), "{\"devices\": [" + devices + "]}")};
    }

    /// Whether the documents of the folder read whole, each that is there.
    void checkDocuments() const
    {
        for (const QString& name : QDir(out()).entryList({"*.nicc", "*.gray"}))
            QCOMPARE(run({"doc", "check", out(name)}).exitCode, 0);
        if (QFile::exists(out("screen.zip")))
            QCOMPARE(run({"project", "list", out("screen.zip")}).exitCode, 0);
        for (const QString& name : QDir(out()).entryList({"*.svg"}))
            QCOMPARE(xmlError(readFile(out(name))), QString());
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
        const Run done = run(calibrate({"--table", "gray-table.csv", "--bin", "receiving-card.bin"}));
        QVERIFY2(done.exitCode == 0, qPrintable(done.out + done.err));
        const QJsonObject report = done.json();
        QCOMPARE(report["coefficients"].toArray().at(5).toInt(), -1006);
        QVERIFY(report["reached"]["blue"]["out_of_reach"].toBool());
        QCOMPARE(report["devices"].toArray().size(), 3);
        for (const QJsonValue& result : report["results"].toArray())
            QCOMPARE(result["cabinets_holding_it"], result["cabinets"]);
        QCOMPARE(report["files"].toArray().size(), 9);
        for (const QJsonValue& file : report["files"].toArray())
            QVERIFY2(!readFile(file.toString()).isEmpty(), qPrintable(file.toString()));
        checkDocuments();
        const QByteArray html = readFile(out("report.html"));
        QCOMPARE(html.count("<svg"), 3);
        QVERIFY(!html.contains("<?xml") && !html.contains("<script") && !html.contains("<link"));

        Model::ColorGamutInfo led;
        Model::ColorGamutInfo target;
        bool isOpen = false;
        bool changed = true;
        QVERIFY(PicQualityFileTool::readNiccConfig(out("screen.nicc"), led, target, isOpen, changed));
        QVERIFY(isOpen && !changed && led.rLxy.lum == 809.05 && target.name == "Rec.709 / sRGB");
        const Run unpacked = run({"project", "unpack", out("screen.zip"), "--out", m_folder->filePath("u")});
        QCOMPARE(unpacked.exitCode, 0);
        for (const char* name : {"screen.nicc", "screen.gray", "screen.nrf"})
            QCOMPARE(readFile(m_folder->filePath("u/") + name), readFile(out(name)));
        QVERIFY(!QFile::exists(m_folder->filePath("screen"))); // the temporary folder is gone
    }

    void verifyJudgesWhatTheCabinetsHold()
    {
        QCOMPARE(run(calibrate()).exitCode, 0);
        const Run strict = run({"verify", out(), "--json"});
        QCOMPARE(strict.exitCode, 1);
        QVERIFY(strict.json().value("error")["message"].toString().startsWith("left: 16 cabinets differ by 10.2"));
        const Run mild = run({"verify", out(), "--max-de", "11", "--json"});
        QCOMPARE(mild.exitCode, 0);
        QCOMPARE(mild.json().value("devices")[0]["coefficients"].toArray().at(0).toInt(), 10264);
        // What the cabinets hold counts, not what was computed.
        QByteArray journal = readFile(out("calibration.jsonl"));
        QVERIFY(run({"verify", out(), "--max-de", "nan"}).err.contains("found nan"));
        writeFile(out("calibration.jsonl"),
                  QByteArray(journal).replace("10264,5297,823,960,16216,-1006,99,365,11230", "0,0,0,0,0,0,0,0,0"));
        const Run dark = run({"verify", out()});
        QVERIFY(dark.exitCode == 1 && dark.out.contains("DARK"));
        journal.replace("10264,5297", "8264,5297");
        writeFile(out("calibration.jsonl"), journal);
        QVERIFY(
            run({"verify", out(), "--json"}).json().value("devices")[0]["reached"]["white"]["ciede2000"].toDouble() >
            2.0);
    }

    void aThirdGenerationIsServedThroughAHub()
    {
        const Run done = run(calibrate({"--generation", "3", "--table", "gray-table.csv"}));
        QVERIFY2(done.exitCode == 0, qPrintable(done.out));
        QCOMPARE(done.json().value("results").toArray().size(), 3);
        const Run verified = run({"verify", out(), "--max-de", "11", "--json"});
        QCOMPARE(verified.exitCode, 0);
        QCOMPARE(verified.json().value("devices")[0]["coefficients"].toArray().at(5).toInt(), -1006);
    }

    void aFailedDeviceIsTriedAgainByAResume()
    {
        const QStringList failing = calibrate(wall(R"({"faults": [{"kind": "error"}]})"));
        const Run failed = run(failing);
        QCOMPARE(failed.exitCode, 69);
        QVERIFY2(failed.json().value("error")["message"].toString().startsWith("measure to b: "),
                 qPrintable(failed.out));
        QCOMPARE(failed.json().value("devices")[2]["done"].toBool(), true); // the others are served
        QCOMPARE(run({"verify", out(), "--max-de", "11"}).exitCode, 1);
        const Run again = run(failing + QStringList{"--resume"});
        QCOMPARE(again.exitCode, 69);
        QVERIFY(again.json().value("devices")[0]["resumed"].toBool() &&
                !again.json().value("devices")[1]["resumed"].toBool());
        QCOMPARE(run(failing).exitCode, 73);
        const Run other = run(failing + QStringList{"--resume", "--frequency", "50"});
        QCOMPARE(other.exitCode, 65);
        QVERIFY2(other.out.contains("was begun with another frequency_hz"), qPrintable(other.out));
        QCOMPARE(run(failing + QStringList{"--force"}).exitCode, 69);
        // A journal that was cut says nothing about c, and a line that is no record is damage.
        QByteArray journal = readFile(out("calibration.jsonl"));
        writeFile(out("calibration.jsonl"), journal.left(journal.indexOf("\"device\":\"c\"")));
        QVERIFY(run({"verify", out(), "--max-de", "11"}).err.contains("c: not served"));
        writeFile(out("calibration.jsonl"), journal.replace("{\"device\":\"b\"", "garbage"));
        QCOMPARE(run({"verify", out(), "--max-de", "11"}).exitCode, 65);
        checkDocuments();
    }

    void interruptedItFinishesTheRunningDevice()
    {
        const QStringList arguments = calibrate(wall(R"({"latencyMs": 150})"));
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
        QCOMPARE(resumed.exitCode, 0);
        QVERIFY(resumed.json().value("devices")[0]["resumed"].toBool() &&
                !resumed.json().value("devices")[2]["resumed"].toBool());
    }

    void aKillAtAnyMomentLeavesWhatAResumeCompletes()
    {
        const QStringList arguments = calibrate(wall(R"({"latencyMs": 5})") + QStringList{"--table", "gray-table.csv"});
        for (int delay = 20; delay <= 500; delay += 60) {
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
            checkDocuments();
        }
    }

    void whatCannotEndWellIsRefusedBeforeAnythingIsSent()
    {
        const Run html = run(calibrate({"--html", out("absent/report.html")}));
        QCOMPARE(html.exitCode, 73);
        QVERIFY(!QFile::exists(out("calibration.jsonl")));
        for (const char* name : {"screen.nicc", "gamut-xy.svg", "report.html"}) {
            const QString path = writeFile(out(name), "somebody's");
            QCOMPARE(run(calibrate()).exitCode, 73);
            QCOMPARE(readFile(path), QByteArray("somebody's"));
            QFile::remove(path);
        }
        const QString gamut = writeFile(m_folder->filePath("gamut.json"), readFile(EXAMPLES "/measured-gamut.json"));
        for (const QString& taken : {out("screen.zip"), out("calibration.jsonl"), gamut}) {
            const Run refused = run(
                {"calibrate", "--measured", gamut, "--target", "rec709", "--out", out(), "--force", "--html", taken});
            QCOMPARE(refused.exitCode, 64);
            QVERIFY2(refused.err.contains("this run would write it, and uses it as"), qPrintable(refused.err));
        }
        QVERIFY(QFile::exists(gamut));
        writeFile(out("screen.nrf"), "an input in the place of an output");
        QCOMPARE(run(calibrate({"--force", "--bin", out("screen.nrf")})).exitCode, 64);
        QVERIFY(QFile::remove(out("screen.nrf")));
        QCOMPARE(run(calibrate({"--html", m_folder->path(), "--force"})).exitCode, 73);
        const QString pipe = m_folder->filePath("pipe");
        QCOMPARE(::mkfifo(pipe.toLocal8Bit().constData(), 0600), 0);
        QVERIFY(run(calibrate({"--html", pipe, "--force"})).out.contains("expected a file, found a pipe or device"));
        QCOMPARE(run({"verify", out()}).exitCode, 66);
        writeFile(out("calibration.jsonl"), "{}\n");
        QCOMPARE(run({"verify", out()}).exitCode, 65);
    }

    void whatCannotBeWrittenSaysWhy_data()
    {
        QTest::addColumn<qint64>("fileBytes"); ///< 0: no limit
        QTest::addColumn<int>("exitCode");
        QTest::addColumn<QString>("message");
        QTest::newRow("no room for the lock") << qint64{1} << 74 << "calibration.lock: cannot be made: File too large";
        QTest::newRow("no room for the journal") << qint64{500} << 74 << "calibration.jsonl: File too large";
        QTest::newRow("no room for a chart") << qint64{17000} << 74 << "gamut-xy.svg: File too large";
        QTest::newRow("no permission") << qint64{0} << 73 << "calibration.lock: cannot be made: Permission denied";
    }

    void whatCannotBeWrittenSaysWhy()
    {
        QFETCH(qint64, fileBytes);
        Hindrance hindrance;
        if (fileBytes > 0)
            hindrance.fileBytes = static_cast<rlim_t>(fileBytes);
        else
            hindrance.obeysPermissions = true;
        QVERIFY(QDir().mkpath(out()));
        if (hindrance.obeysPermissions)
            QVERIFY(QFile::setPermissions(out(), QFile::ReadOwner | QFile::ExeOwner));
        const Run done = run(calibrate(), hindrance);
        QFile::setPermissions(out(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        QTEST(done.exitCode, "exitCode");
        QFETCH(QString, message);
        QCOMPARE(done.json().value("error")["message"].toString(), out(message));
    }

    void aRunThatEndsEarlyLeavesWhatIsTrue()
    {
        // A kill between making the lock and writing its owner left it so.
        QFile lock(writeFile(out("calibration.lock"), {}));
        QVERIFY(lock.open(QIODevice::ReadWrite));
        QVERIFY(lock.setFileTime(QDateTime::currentDateTime().addSecs(-5), QFileDevice::FileModificationTime));
        const QStringList arguments = calibrate(wall("{}"));
        QCOMPARE(run(arguments).exitCode, 0);
        // A finished calibration stays one, with its switch on, whatever becomes of a further run.
        const QByteArray nicc = readFile(out("screen.nicc"));
        Hindrance full;
        full.fileBytes = static_cast<rlim_t>(nicc.size() - 1);
        QCOMPARE(run(arguments + QStringList("--resume"), full).exitCode, 74);
        QCOMPARE(readFile(out("screen.nicc")), nicc);
        full.fileBytes = 500; // room for the lock, none for the journal
        QCOMPARE(run(arguments + QStringList("--force"), full).exitCode, 74);
        QCOMPARE(readFile(out("screen.nicc")), nicc);
        // A new one that was killed as soon as its journal stood still has the documents of the earlier one.
        const QByteArray journal = readFile(out("calibration.jsonl"));
        writeFile(out("calibration.jsonl"), journal.left(journal.indexOf('\n') + 1));
        writeFile(out("gray.svg"), "of a calibration with a table");
        QCOMPARE(run({"verify", out(), "--max-de", "11"}).exitCode, 65);
        QCOMPARE(run(arguments + QStringList("--resume")).exitCode, 0);
        QVERIFY(!QFile::exists(out("gray.svg")));
    }

    void projectCommandsLoseNothing()
    {
        const auto in = [this](const QString& name) { return m_folder->filePath(name); };
        writeFile(in("1/a.nicc"), "one");
        writeFile(in("2/a.nicc"), "two");
        writeFile(in("b.nicc"), "three");
        QCOMPARE(run({"project", "pack", in("p.zip"), "--nicc", in("1/a.nicc"), "--file", in("2/a.nicc")}).exitCode,
                 64);
        QCOMPARE(run({"project", "pack", in("p.zip"), "--nicc", in("1/a.nicc"), "--file", in("b.nicc")}).exitCode, 0);
        const QString nicc = in("b.nicc");
        QCOMPARE(run({"project", "pack", nicc, "--nicc", nicc, "--force"}).exitCode, 64);
        QCOMPARE(readFile(nicc), QByteArray("three"));
        writeFile(in("p/mine"), "in the way of the library's temporary folder");
        const Run listed = run({"project", "list", in("p.zip"), "--json"});
        QCOMPARE(listed.json().value("files").toArray().size(), 2); // one of two of a role is listed all the same
        QCOMPARE(run({"project", "unpack", in("p.zip"), "--out", in("p")}).exitCode, 0);
        QCOMPARE(readFile(in("p/a.nicc")) + readFile(in("p/b.nicc")), QByteArray("onethree"));
        QVERIFY(QFile::exists(in("p/mine")));
        QVERIFY(QDir().mkpath(in("q")) && QFile::link(in("absent"), in("q/a.nicc")));
        QCOMPARE(run({"project", "unpack", in("p.zip"), "--out", in("q")}).exitCode, 73); // through a dangling link
        QVERIFY(!QFile::exists(in("absent")));
        QCOMPARE(run({"project", "unpack", in("p.zip"), "--out", ""}).exitCode, 64);
    }

    void projectCommandsDoAllOrNothing()
    {
        const auto in = [this](const QString& name) { return m_folder->filePath(name); };
        const auto all = QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot;
        QByteArray digits; // which take a while to pack
        while (digits.size() < 1'000'000)
            digits += QByteArray::number(digits.size() * qint64{7919} % 1'000'003);
        const QString nicc = writeFile(in("a.nicc"), "new");
        const QString further = writeFile(in("b"), digits);
        const QStringList pack{"project", "pack", in("p/p.zip"), "--nicc", nicc, "--file", further};
        QObject owner;
        QList<QProcess*> packing;
        for (int i = 0; i < 4; ++i)
            packing << start(pack, &owner);
        QMap<int, int> exitCodes;
        for (QProcess* process : packing)
            ++exitCodes[finish(process).exitCode];
        QCOMPARE(exitCodes, (QMap<int, int>{{0, 1}, {73, 3}})); // one of them made it
        QCOMPARE(QDir(in("p")).entryList(all), QStringList{"p.zip"});

        writeFile(in("q/a.nicc"), "mine");
        QVERIFY(QDir().mkpath(in("q/b"))); // a folder in the way of the second file
        writeFile(in("q/.qualityctl-1/a.nicc"), "left by a killed process");
        QCOMPARE(run({"project", "unpack", in("p/p.zip"), "--out", in("q"), "--force"}).exitCode, 73);
        QCOMPARE(readFile(in("q/a.nicc")), QByteArray("mine"));
        QCOMPARE(QDir(in("q")).entryList(all), (QStringList{"a.nicc", "b"}));
        QVERIFY(QDir().rmdir(in("q/b")));
        QCOMPARE(run({"project", "unpack", in("p/p.zip"), "--out", in("q"), "--force"}).exitCode, 0);
        QCOMPARE(readFile(in("q/a.nicc")), QByteArray("new"));
        QCOMPARE(readFile(in("q/b")), digits);
        writeFile(in("bad.zip"), "no archive");
        QCOMPARE(run({"project", "unpack", in("bad.zip"), "--out", in("new/deep")}).exitCode, 65);
        QVERIFY(!QFile::exists(in("new")));
    }

    void namesReachReportsAsText()
    {
        QByteArray gamut = readFile(EXAMPLES "/measured-gamut.json");
        gamut.replace("Panel 2026-11", "</title><script>%1\\u001b&");
        const Run done = run({"calibrate", "--measured", writeFile(m_folder->filePath("g%2.json"), gamut), "--target",
                              "rec709", "--device", "left", "--out", out()});
        QCOMPARE(done.exitCode, 0);
        QVERIFY(!done.out.contains(QChar(0x1b)) && done.out.contains("<script>%1"));
        QVERIFY(!readFile(out("report.html")).contains("<script"));
        checkDocuments();
        // A report's link is followed, also when it is made anew.
        const QString report = writeFile(m_folder->filePath("site/report.html"), "earlier");
        QVERIFY(QFile::link(report, m_folder->filePath("link.html")));
        QCOMPARE(
            run(calibrate(wall("{}")) + QStringList({"--force", "--html", m_folder->filePath("link.html")})).exitCode,
            0);
        QVERIFY(readFile(report).contains("Calibration of"));
    }

    void chartsAreWrittenByTheirSuffix()
    {
        const auto chart = [this](const QString& name) {
            return run({"gamut", "chart", "measured-gamut.json", "rec709", "--out", m_folder->filePath(name)});
        };
        QCOMPARE(chart("c.svg").exitCode, 0);
        QCOMPARE(xmlError(readFile(m_folder->filePath("c.svg"))), QString());
        QVERIFY(readFile(m_folder->filePath("c.svg")).contains("reached"));
        QCOMPARE(chart("c.png").exitCode, 0);
        QVERIFY(readFile(m_folder->filePath("c.png")).startsWith("\x89PNG"));
        QCOMPARE(chart("c.png").exitCode, 73);
        QCOMPARE(chart("c.jpg").exitCode, 64);
        QCOMPARE(chart("absent/c.svg").exitCode, 73);
        QCOMPARE(run({"gray", "chart", "--table", "gray-table.csv", "--out", m_folder->filePath("g.svg")}).exitCode, 0);
        QVERIFY(readFile(m_folder->filePath("g.svg")).contains("magnitude"));
    }
};

QTEST_GUILESS_MAIN(CalibrateTest)
#include "tst_calibrate.moc"
