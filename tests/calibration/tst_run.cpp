#include "support/calibrationsetup.h"
#include "support/filesizelimit.h"
#include "support/ordinaryuser.h"
#include <qualityutility/tool/file/picqualityfiletool.h>

#include <QDateTime>
#include <QTemporaryDir>
#include <QTest>

using namespace Calibration;

namespace {

using Change = std::function<void(Content&, TestWall&)>;

RunOptions resume()
{
    return {true, false, {}, {}};
}

RunOptions oneByOne(RunOptions options = {})
{
    options.atOnce = 1;
    return options;
}

RunOptions force()
{
    return {false, true, {}, {}};
}

/// Wants an end as soon as a device has everything.
class StopAfterFirst : public Observer
{
public:
    void begin(int steps) override { m_steps = steps; }
    void sent(const Outcome& outcome) override { m_isStopWanted = m_isStopWanted || outcome.step == "mode"; }
    bool isStopWanted() override { return m_isStopWanted; }
    int m_steps = 0;
    bool m_isStopWanted = false;
};

} // namespace

Q_DECLARE_METATYPE(Change)

class RunTest : public QObject
{
    Q_OBJECT

private:
    QString out(const QString& name = {}) const { return m_folder->filePath("out/" + name); }
    const Content m_content = exampleContent();
    std::unique_ptr<QTemporaryDir> m_folder;

private Q_SLOTS:
    void init() { m_folder = std::make_unique<QTemporaryDir>(); }

    void everyDeviceHoldsWhatTheDocumentsSay()
    {
        const QString table = writeFile(m_folder->filePath("table"), "1 2 3 4\n5 6 7 8\n");
        const Content content = exampleContent(table);
        writeFile(table, "9 9 9 9\n"); // what comes after it was read changes nothing
        const TestWall wall;
        const RunResult result = good(calibrate(wall, content, out()));
        QVERIFY(result.isDone() && !result.fault() && result.resumed.isEmpty());
        QCOMPARE(result.verification.verdict.sentence(), QString("PASSED: 3 of 3 devices hold the correction, "
                                                                 "CIEDE2000 at most 0.01 of 1.0 (read back)"));
        QCOMPARE(result.files.size(), 5);
        for (const std::string device : {"a", "b", "c"}) {
            const auto state = wall.cabinets->cabinet(device, 2);
            QVERIFY(state->mode == (4 | 8) && wall.cabinets->cabinet(device, 1)->mode == (3 | 8));
            QVERIFY(state->grayTable->red == (std::vector<unsigned char>{1, 5}));
            QVERIFY(state->coefficients == content.target.coeff.getCoeffs());
            QCOMPARE(*state->binary, content.binary->bytes);
        }
        Model::ColorGamutInfo measured;
        Model::ColorGamutInfo target;
        bool isOpen = false;
        bool isChanged = true;
        QVERIFY(PicQualityFileTool::readNiccConfig(out("screen.nicc"), measured, target, isOpen, isChanged));
        QVERIFY(isOpen && measured.rLxy == content.measured.rLxy && target.name == content.target.name);
        QVERIFY(readFile(out("screen.gray")).simplified().contains("\"rGrayCoeffs\": [ 1, 5 ]"));
        QCOMPARE(good(Journal::read(out("calibration.jsonl"))).records().keys(), QStringList({"a", "b", "c"}));
    }

    void whatEveryDeviceHoldsMayStillDiffer()
    {
        RunOptions strict;
        strict.acceptance.isStrict = true;
        const RunResult result = good(calibrate(TestWall(), m_content, out(), strict));
        QVERIFY(result.isDone() && result.verification.verdict.kind == Verdict::Kind::Differs);
        QVERIFY2(faultText(*result.fault())
                     .startsWith("Difference: a: 2 cabinets differ from the target by CIEDE2000 10.26"),
                 qPrintable(faultText(*result.fault())));
    }

    void aFailedDeviceIsServedByAResume()
    {
        const RunResult failed = good(calibrate(TestWall(failingBy("error")), m_content, out()));
        QCOMPARE(faultText(*failed.fault()),
                 QString("Unavailable: binary to b: device \"b\" reports an error (simulated)"));
        QVERIFY(failed.records[2].isDone() && !failed.records[1].isDone());
        QCOMPARE(faultText(calibrate(TestWall(), m_content, out())),
                 "CannotCreate: " + out("calibration.jsonl") + ": exists");
        QVERIFY(QFile::rename(out("calibration.jsonl"), out("aside"))); // the documents are somebody's then
        QCOMPARE(faultText(calibrate(TestWall(), m_content, out())),
                 "CannotCreate: " + out("screen.nicc") + ": exists");
        QVERIFY(QFile::rename(out("aside"), out("calibration.jsonl")));
        const RunResult resumed = good(calibrate(TestWall(), m_content, out(), resume()));
        QVERIFY(resumed.isDone());
        QCOMPARE(resumed.resumed, QStringList({"a", "c"}));
        QVERIFY(good(calibrate(TestWall(), m_content, out(), force())).resumed.isEmpty());
    }

    void aStopFinishesTheRunningDevice()
    {
        StopAfterFirst observer;
        const RunResult stopped = good(calibrate(TestWall(), m_content, out(), oneByOne(), &observer));
        QCOMPARE(faultText(*stopped.fault()), QString("Interrupted: interrupted; done: a; not done: b, c"));
        QVERIFY(stopped.verification.verdict.sentence().startsWith("INTERRUPTED: 1 of 3 devices hold the correction"));
        QCOMPARE(observer.m_steps, 18);
        StopAfterFirst second;
        const RunResult resumed = good(calibrate(TestWall(), m_content, out(), oneByOne(resume()), &second));
        QCOMPARE(faultText(*resumed.fault()), QString("Interrupted: interrupted; done: a, b; not done: c"));
        QCOMPARE(second.m_steps, 12);
    }

    void aResumeNeedsTheInputsOfTheFirstRun_data()
    {
        QTest::addColumn<Change>("change");
        const auto row = [](const char* key, const Change& change) { QTest::newRow(key) << change; };
        row("measured", [](Content& content, TestWall&) { content.measured.rLxy.lum += 1.0; });
        row("target", [](Content& content, TestWall&) { content.target.wLxy.x += 0.001; });
        row("table_sha256", [](Content& content, TestWall&) { content.tableFile.reset(); });
        row("frequency_hz", [](Content& content, TestWall&) { content.table.freq = 50; });
        row("binary_sha256", [](Content& content, TestWall&) { content.binary->sha256[0] = '?'; });
        row("devices", [](Content&, TestWall& wall) { wall.targets.erase("b"); });
    }

    void aResumeNeedsTheInputsOfTheFirstRun()
    {
        QFETCH(Change, change);
        TestWall wall;
        Content content = m_content;
        good(calibrate(wall, content, out()));
        const QByteArray journal = readFile(out("calibration.jsonl"));
        change(content, wall);
        QCOMPARE(faultText(calibrate(wall, content, out(), resume())),
                 "BadData: " + out("calibration.jsonl") + ": was begun with another " + QTest::currentDataTag());
        QCOMPARE(readFile(out("calibration.jsonl")), journal);
    }

    void aJournalCountsAsFarAsItIsWhole_data()
    {
        QTest::addColumn<QByteArray>("journal");
        QTest::addColumn<QString>("found"); ///< devices, or the fault
        const QByteArray two = "{\"inputs\":{\"x\":1}}\n{\"device\":\"a\"}\n";
        QTest::newRow("whole") << two + "{\"device\":\"b\"}\n"
                               << "a b";
        QTest::newRow("cut before the line's end") << two + "{\"device\":\"b\"}"
                                                   << "a";
        QTest::newRow("cut in a record") << two + "{\"dev"
                                         << "a";
        QTest::newRow("a line that is no record") << two + "garbage\n"
                                                  << "the line at byte 34 is no record";
        QTest::newRow("cut in the inputs") << two.left(9) << "its first line has no inputs";
        QTest::newRow("no inputs") << QByteArray("{}\n") << "its first line has no inputs";
        QTest::newRow("empty") << QByteArray() << "its first line has no inputs";
    }

    void aJournalCountsAsFarAsItIsWhole()
    {
        QFETCH(QByteArray, journal);
        QFETCH(QString, found);
        const QString path = writeFile(out("calibration.jsonl"), journal);
        auto read = Journal::read(path);
        if (!read) {
            QCOMPARE(faultText(read), "BadData: calibration journal " + path + ": " + found);
            return;
        }
        QCOMPARE(QStringList(read->records().keys()).join(' '), found);
        DeviceRecord record;
        record.device = "n";
        QVERIFY(read->append(record)); // in the place of what was cut
        QCOMPARE(good(Journal::read(path)).records().keys().join(' '), found + " n");
    }

    void aFileThatARunUsesIsNotWritten_data()
    {
        QTest::addColumn<QString>("output");
        QTest::newRow("an input as a document") << "screen.nrf"; // every run writes it
        QTest::newRow("an input as a report") << "gamut.json";
        QTest::newRow("an input as a report, through a link") << "link";
        QTest::newRow("a document as a report") << "screen.zip";
        QTest::newRow("the journal as a report") << "./calibration.jsonl";
    }

    void aFileThatARunUsesIsNotWritten()
    {
        QFETCH(QString, output);
        const QString input = writeFile(out(output == "screen.nrf" ? output : "gamut.json"), "an input");
        QVERIFY(QFile::link(input, out("link")));
        const QString fault = faultText(calibrate(TestWall(), m_content, out(), {false, true, {input}, {out(output)}}));
        QVERIFY2(fault.startsWith("Usage: ") && fault.contains(": this run would write it, and uses it as "),
                 qPrintable(fault));
        QVERIFY(readFile(input) == "an input" && !QFile::exists(out("calibration.jsonl")));
    }

    void oneAtATimeIsAtWorkInAFolder()
    {
        auto first = good(Folder::open(out()));
        QVERIFY(faultText(Folder::open(out())).contains(": another calibration is at work there"));
        first.reset();
        // A kill between making the lock and writing its owner left it so.
        QFile lock(writeFile(out("calibration.lock"), {}));
        QVERIFY(lock.open(QIODevice::ReadWrite));
        QVERIFY(lock.setFileTime(QDateTime::currentDateTime().addSecs(-5), QFileDevice::FileModificationTime));
        QCOMPARE(faultText(Folder::open(out())), QString());
    }

    void aFolderThatMayNotBeWrittenIntoIsTold()
    {
        const OrdinaryUser user(m_folder->path());
        QVERIFY(QDir().mkpath(out()) && QFile::setPermissions(out(), QFile::ReadOwner | QFile::ExeOwner));
        const QString fault = faultText(Folder::open(out()));
        QVERIFY(QFile::setPermissions(out(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
        QCOMPARE(fault, "CannotCreate: " + out("calibration.lock") + ": cannot be made: Permission denied");
    }

    void aFullDiskIsTold_data()
    {
        QTest::addColumn<int>("bytes");
        QTest::addColumn<QString>("fault");
        QTest::newRow("the lock") << 1 << "calibration.lock: cannot be made: File too large";
        QTest::newRow("the journal") << 500 << "calibration.jsonl: File too large";
        QTest::newRow("a document") << 1500 << "screen.gray: cannot be written: File too large";
    }

    void aFullDiskIsTold()
    {
        QFETCH(int, bytes);
        QFETCH(QString, fault);
        const TestWall wall;
        const FileSizeLimit full(static_cast<rlim_t>(bytes));
        QCOMPARE(faultText(calibrate(wall, m_content, out())), "InputOutput: " + out(fault));
        QVERIFY(!wall.cabinets->cabinet("a", 1)->grayTable); // nothing was sent
    }

    void aFinishedCalibrationStaysOneWhateverBecomesOfAFurtherRun()
    {
        const TestWall wall;
        good(calibrate(wall, m_content, out()));
        const QByteArray nicc = readFile(out("screen.nicc"));
        for (const bool isResumed : {true, false}) { // else with room for the lock, and none for the journal
            const FileSizeLimit full(isResumed ? static_cast<rlim_t>(nicc.size() - 1) : 500);
            QVERIFY(!calibrate(wall, m_content, out(), isResumed ? resume() : force()));
            QCOMPARE(readFile(out("screen.nicc")), nicc);
        }
        // A new one that was killed as soon as its journal stood has what the earlier one made.
        const QByteArray journal = readFile(out("calibration.jsonl"));
        writeFile(out("calibration.jsonl"), journal.left(journal.indexOf('\n') + 1));
        RunOptions options = resume();
        options.outputs << writeFile(out("gray.svg"), "of a calibration with a table");
        QVERIFY(good(calibrate(wall, m_content, out(), options)).isDone());
        QVERIFY(!QFile::exists(out("gray.svg")));
    }
};

QTEST_GUILESS_MAIN(RunTest)
#include "tst_run.moc"
