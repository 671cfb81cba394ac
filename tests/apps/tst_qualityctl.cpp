#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>

namespace {

struct Run
{
    int exitCode = -1;
    QString out;
    QString err;

    QJsonObject json() const { return QJsonDocument::fromJson(out.toUtf8()).object(); }
};

QProcess* start(const QStringList& arguments, QObject* parent)
{
    auto* process = new QProcess(parent);
    process->setWorkingDirectory(EXAMPLES);
    process->start(QUALITYCTL, arguments);
    return process;
}

Run finish(QProcess* process)
{
    if (!process->waitForFinished(60000))
        qFatal("qualityctl does not end");
    return {process->exitStatus() == QProcess::NormalExit ? process->exitCode() : -1,
            QString::fromUtf8(process->readAllStandardOutput()), QString::fromUtf8(process->readAllStandardError())};
}

Run run(const QStringList& arguments)
{
    QObject owner;
    return finish(start(arguments, &owner));
}

} // namespace

class QualityctlTest : public QObject
{
    Q_OBJECT

private:
    /// A wall of devices a and b with two cabinets each, in modes 3 and 4, and the given behaviours.
    QString wall(const QByteArray& a, const QByteArray& b = "{}")
    {
        QFile file(m_folder.filePath("wall.json"));
        if (!file.open(QIODevice::WriteOnly))
            qFatal("cannot write the test's wall");
        const QByteArray cabinets = R"("cabinets": [{"cid": 1, "effectMode": 3}, {"cid": 2, "effectMode": 4}])";
        file.write(R"({"devices": [{"id": "a", "type": "G4", "simulation": )" + a + ", " + cabinets +
                   R"(}, {"id": "b", "type": "", "batchCorrectionSwitch": true, "simulation": )" + b + ", " + cabinets +
                   "}]}");
        return file.fileName();
    }

    QTemporaryDir m_folder;

private Q_SLOTS:
    void modeChangesTheGamutBitOfEachCabinetAndNothingElse()
    {
        const Run done = run({"send", "mode", "--gamut", "on", "--json", "--wall", wall("{}")});
        QCOMPARE(done.exitCode, 0);
        QVERIFY2(done.err.startsWith("qualityctl: simulated wall: "), qPrintable(done.err));
        const QJsonArray cabinets = done.json().value("cabinets").toArray();
        QCOMPARE(cabinets.size(), 4);
        for (const QJsonValue& cabinet : cabinets) {
            QCOMPARE(cabinet["mode"].toInt(), cabinet["mode_before"].toInt() | 8);
            QVERIFY(!cabinet["gray_levels"].isDouble() && !cabinet["has_measured_gamut"].toBool());
        }
        QVERIFY(done.json().value("ok").toBool());
    }

    void theExampleWallTakesEverything()
    {
        const Run done =
            run({"send", "all", "--wall", "wall.json", "--table", "gray-table.csv", "--gamut", "rec709", "--measured",
                 "measured-gamut.json", "--coefficients", "10264,5297,823,960,16216,-1006,99,365,11230", "--correction",
                 "on", "--bin", "receiving-card.bin", "--json", "--quiet"});
        QCOMPARE(done.exitCode, 0);
        QCOMPARE(done.err, QString());
        const QJsonObject cabinet = done.json().value("cabinets").toArray().first().toObject();
        QCOMPARE(cabinet["gray_levels"].toInt(), 256);
        QCOMPARE(cabinet["coefficients"].toArray().at(5).toInt(), -1006);
        QCOMPARE(cabinet["full_scale"].toInt(), 1023);
        QCOMPARE(cabinet["binary_bytes"].toInt(), 2048);
    }

    void aFailingDeviceIsNamedWhateverTheOthersDo_data()
    {
        QTest::addColumn<QByteArray>("simulation");
        QTest::addColumn<int>("exitCode");
        QTest::addColumn<QString>("message");
        QTest::newRow("refuses") << QByteArray(R"({"faults": [{"kind": "error"}]})") << 69
                                 << "bin to a: device \"a\" reports an error (simulated)";
        QTest::newRow("serves a part") << QByteArray(R"({"faults": [{"kind": "partial"}]})") << 1
                                       << "bin to a: 1 of 2 cabinets hold it";
    }

    void aFailingDeviceIsNamedWhateverTheOthersDo()
    {
        QFETCH(QByteArray, simulation);
        QFETCH(QString, message);
        const Run done = run({"send", "bin", "--file", "receiving-card.bin", "--json", "--wall", wall(simulation)});
        QTEST(done.exitCode, "exitCode");
        const QJsonObject document = done.json();
        QVERIFY(!document.value("ok").toBool());
        QCOMPARE(document["error"]["message"].toString(), message);
        QCOMPARE(document["error"]["code"].toInt(), done.exitCode);
        QCOMPARE(document["results"][1]["error"], QJsonValue(QJsonValue::Undefined)); // b answered
    }

    void aSilentDeviceTimesOut()
    {
        const Run done = run({"send", "gamut", "--gamut", "0.64,0.33:0.3,0.6:0.15,0.06:0.3127,0.329:250", "--device",
                              "a", "--cabinet", "1", "--wall", wall(R"({"faults": [{"kind": "silence"}]})")});
        QCOMPARE(done.exitCode, 75);
        QVERIFY2(done.err.contains("within 4 s"), qPrintable(done.err));
    }

    void wrongInputIsRefusedBeforeAnythingIsSent_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<int>("exitCode");
        QTest::addColumn<QString>("message");
        const auto row = [](const QString& arguments, int code, const char* message) {
            QTest::newRow(qPrintable(arguments)) << arguments.split(' ') << code << message;
        };
        const auto file = [&](const char* name, const QByteArray& content) {
            QFile out(m_folder.filePath(name));
            if (!out.open(QIODevice::WriteOnly) || out.write(content) != content.size())
                qFatal("cannot write the test's input");
            return out.fileName();
        };
        row("dance", 64, "dance");
        row("send gray", 64, "--table is required");
        row("send mode --gamut maybe", 64, "maybe not in {on,off}");
        row("send mode --gamut on --device nowhere", 64, "--device nowhere: the wall has no such device");
        row("send mode --gamut on --cabinet 7777", 64, "--cabinet 7777: no selected device has such a cabinet");
        row("send mode --gamut on --cabinet 9-5", 64, "\"9-5\" is not a range");
        row("send mode --gamut on --cabinet x", 64, "found \"x\"");
        row("send coefficients --coefficients 1,2,3", 64, "--coefficients");
        row("send all", 64, "nothing to send");
        row("wall check --wall absent.json", 66, "wall document absent.json: no such file");
        row("wall check --wall ..", 66, "expected a file, found a folder");
        row("wall check --wall gray-table.csv", 65, "not JSON");
        row("wall check --wall " + file("behaviour.json", R"({"devices": [
            {"id": "a", "type": "", "simulation": {"latencyMs": "x"}, "cabinets": []}]})"),
            65, "device \"a\": simulation.latencyMs");
        row("send bin --file absent.bin", 66, "binary absent.bin: no such file");
        row("send bin --file ..", 66, "expected a file, found a folder");
        row("send gray --table absent.csv", 66, "gray table absent.csv: no such file");
        row("send gray --table " + file("five.csv", "1,2,3,4,5\n"), 65, "line 1: expected 4 columns");
        row("send gray --table " + file("large.csv", "r g b m\n# a\n1 2 3 256\n"), 65,
            "line 3: expected an integer from 0 to 255, found \"256\"");
        row("send gray --table " + file("none.csv", "# nothing\n"), 65, "no gray levels");
        row("send gamut --gamut nonsense", 66, "neither a standard gamut nor a file");
        row("send gamut --gamut wall.json", 65, "RedPoint: expected an object");
        row("send gamut --gamut 0.6,0.3:0.3,0.6:0.1,0:0.3,0.3", 65, "blue: y must be above 0");
        row("send gamut --gamut 0.6,0.3:0.5,0.35:0.4,0.4:0.3,0.3", 65, "one line");
        row("send gamut --gamut 0.8,0.3:0.3,0.6:0.1,0.1:0.3,0.3", 65, "red: (0.8, 0.3) lies outside");
        row("send gamut --gamut nan,0.3:0.3,0.6:0.1,0.1:0.3,0.3", 65, "expected a number, found \"nan\"");
    }

    void wrongInputIsRefusedBeforeAnythingIsSent()
    {
        QFETCH(QStringList, arguments);
        QFETCH(QString, message);
        const Run plain = run(arguments);
        QTEST(plain.exitCode, "exitCode");
        QVERIFY2(plain.err.contains(message), qPrintable(plain.err));
        QCOMPARE(plain.out, QString());
        const Run json = run(arguments + QStringList("--json"));
        QTEST(json.exitCode, "exitCode");
        QVERIFY2(json.json().value("error")["message"].toString().contains(message), qPrintable(json.out));
        QCOMPARE(json.json().value("error")["code"].toInt(), json.exitCode);
    }

    void helpGoesToStdoutAndADryRunSendsNothing()
    {
        const Run help = run({"--help"});
        QCOMPARE(help.exitCode, 0);
        QVERIFY(help.out.contains("Exit codes") && help.err.isEmpty());
        const Run dry = run({"send", "mode", "--gamut", "on", "--dry-run", "--device", "left", "--cabinet", "2-3"});
        QCOMPARE(dry.exitCode, 0);
        QCOMPARE(dry.out, QString("would post Device_CabinetsCorrectionChildSwitchV2 to left\n    cids = <2 cabinets>\n"
                                  "    mode = 11\n    switches = <1 records>\n"));
    }

    void interruptedItSaysWhatWasSentAndWhatNot()
    {
        QObject owner;
        const QString document = wall("{\"latencyMs\": 0}", R"({"faults": [{"kind": "silence"}]})");
        QProcess* process =
            start({"send", "all", "--wall", document, "--table", "gray-table.csv", "--correction", "on"}, &owner);
        process->setReadChannel(QProcess::StandardError);
        QByteArray err;
        while (!err.contains("gray to a") && process->waitForReadyRead(10000)) // the silent device comes next
            err += process->readAllStandardError();
        QVERIFY2(err.contains("gray to a"), err.constData());
        ::kill(static_cast<pid_t>(process->processId()), SIGINT);
        const Run done = finish(process);
        QCOMPARE(done.exitCode, 130);
        QVERIFY2(done.err.contains(
                     "interrupted; failed: gray to b: no answer when interrupted; not sent: mode to a, mode to b"),
                 qPrintable(done.err));
    }
};

QTEST_GUILESS_MAIN(QualityctlTest)
#include "tst_qualityctl.moc"
