#include "support/hostrun.h"
#include "support/testfiles.h"
#include "support/walldocument.h"

#include <QJsonArray>
#include <QRegularExpression>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>

class QualityctlTest : public QObject
{
    Q_OBJECT

private:
    /// A wall whose device b behaves so.
    QString wall(const QByteArray& behaviour = "{}")
    {
        return writeFile(m_folder.filePath("wall" + QString::number(m_walls++)), wallDocument(behaviour));
    }

    QTemporaryDir m_folder;
    int m_walls = 0;
    QTcpServer m_silentHub;

private Q_SLOTS:
    void initTestCase()
    {
        qputenv("SUITE_COMPANY_DIR", m_folder.filePath("company").toLocal8Bit());
        qputenv("TMPDIR", m_folder.path().toLocal8Bit());
    }

    void theExampleWallTakesEverything()
    {
        const Run done =
            run({"send", "all", "--wall", "wall.json", "--table", "gray-table.csv", "--target", "rec709", "--measured",
                 "measured-gamut.json", "--coefficients", "10264,5297,823,960,16216,-1006,99,365,11230", "--correction",
                 "on", "--binary", "receiving-card.bin", "--json", "--quiet"});
        QCOMPARE(done.exitCode, 0);
        QCOMPARE(done.err, QString());
        const QJsonValue cabinet = done.json().value("cabinets")[0];
        QVERIFY(done.json().value("ok").toBool() && cabinet["mode_before"] == 3 && cabinet["mode"] == 11);
        QVERIFY(cabinet["gray_levels"] == 256 && cabinet["full_scale"] == 1023 && cabinet["binary_bytes"] == 2048);
        QCOMPARE(cabinet["coefficients"].toArray().at(5).toInt(), -1006);
    }

    void aCommandThatFailsSaysWhyAndWithWhatCode_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<int>("exitCode");
        QTest::addColumn<QString>("message");
        const auto row = [](const QString& arguments, int code, const char* message) {
            QTest::newRow(qPrintable(arguments)) << arguments.split(' ') << code << message;
        };
        row("dance", 64, "no such command: dance");
        row("send gray --json", 64, "--table is required");
        row("send mode --correction on --device nowhere", 64, "device nowhere: the wall has no such device");
        row("send all --json", 64, "send all: nothing to send");
        row("send coefficients --coefficients 9,0,0,5,-3,-2,0,0,9", 65, "row of green: expected a sum above 0");
        row("send coefficients --force --device nowhere --coefficients 9,0,0,5,-3,-2,0,0,9", 64, "no such device");
        row("settings set Speed 3", 64, "the library writes only freq and open-path");
        row("hub ping --timeout nan", 64, "expected a number from 0.001 to 86400, found nan");
        row("hub ping --host 127.0.0.1", 64, "--host: needs --port");
        row("hub ping --hub ::1:9000", 64, "--hub: expected HOST:PORT, as 192.0.2.7:9000 or [::1]:9000");
        row("hub ping --hub a:1 --port 1", 64, "--host and --port name one without it");
        row("hub ping --record -", 64, "--record: expected a new file, found \"-\"");
        row("hub ping --hub [::1]:9 --hub b:9 --hub [0::1]:9", 64, "each hub once, found [::1]:9 twice");
        row("wall check --wall " + wall(R"({"latencyMs": "x"})"), 65, "device \"b\": simulation.latencyMs");
        row("doc show wall.json --json", 65, "not a picture-quality document");
        row("send gray --table absent.csv --json", 66, "gray table absent.csv: no such file");
        row("send binary --binary receiving-card.bin --json --wall " + wall(failingBy("error")), 69,
            "binary to b: device \"b\" reports an error (simulated)");
        QVERIFY(m_silentHub.listen(QHostAddress::LocalHost));
        row("hub ping --timeout 0.1 --port " + QString::number(m_silentHub.serverPort()), 75, "no reply within 0.1 s");
        const QString document = wall();
        const QString calibrate = "calibrate --measured rec709:100 --target rec709 --out " + m_folder.filePath("out");
        row(calibrate + " --html absent/r.html", 73, "--html absent/r.html: expected a file in a folder that is there");
        row(calibrate + " --host 127.0.0.1 --port 1", 64, "--host: is a hub's, which needs --generation 3");
        row(calibrate + " --hub 127.0.0.1:1", 64, "--hub: is a hub's, which needs --generation 3");
        row(calibrate + " --generation 3 --hub 127.0.0.1:1", 69, "measure to hub 127.0.0.1:1: connection refused");
        row(calibrate + " --timeout 5", 64, "--timeout: is a hub's, which needs --generation 3");
        row(calibrate + " --generation 3 --wall " + document, 64, "--wall: does not go through a hub");
        row(calibrate + " --dry-run --resume", 64, "--resume excludes --dry-run");
        row(calibrate + " --seed 2 --transport gateway:h:1", 64,
            "--seed: expected --transport simulated, found gateway:h:1");
        row(calibrate + " --generation 3 --cabinet 1", 64, "--cabinet: does not go through a hub");
        row(calibrate + " --parallel 0", 64, "--parallel: Value 0 not in range 1 to 256");
        row(calibrate + " --frequency 120", 64, "--frequency requires --table");
        row(calibrate + " --force --wall " + document + " --html " + document, 64,
            "this run would write it, and uses it as");
        row("gray write --calibration gray-calibration.json --out wall.json", 73, "expected a folder, found a file");
        row("gamut chart rec709 bt2020 --out chart.jpg", 64, "expected a name that ends in .svg or .png");
    }

    void aCommandThatFailsSaysWhyAndWithWhatCode()
    {
        QFETCH(QStringList, arguments);
        QFETCH(QString, message);
        const Run done = run(arguments);
        QTEST(done.exitCode, "exitCode");
        const bool isJson = arguments.contains("--json");
        const QString found = isJson ? done.json().value("error")["message"].toString() : done.err;
        QVERIFY2(found.contains(message), qPrintable(found));
        QVERIFY(isJson ? done.json().value("error")["code"] == done.exitCode : done.out.isEmpty());
    }

    void aPipeIsAnInput()
    {
        QObject owner;
        QProcess* process = start({"doc", "check", "-", "--json"}, &owner);
        QVERIFY(process->waitForStarted());
        process->write(R"({"openGray": 1, "rMeasure": [{"lum": 1, "x": 0.3}]})");
        process->closeWriteChannel();
        const Run done = finish(process);
        QCOMPARE(done.exitCode, 1);
        QCOMPARE(done.json()["faults"].toArray(),
                 (QJsonArray{"openGray: expected true or false", "rMeasure[0]: has no y"}));
    }

    void aGrayCalibrationIsWrittenAndShown()
    {
        const QString out = m_folder.filePath("gray/deep");
        QCOMPARE(run({"gray", "write", "--calibration", "gray-calibration.json", "--out", out}).exitCode, 0);
        const Run shown = run({"doc", "show", out + "/fine-gray.gray"});
        QVERIFY2(shown.out.contains("fine-gray configuration\n  rMeasure: 33 points, 0.02 to 809.07 cd/m2"),
                 qPrintable(shown.out));
    }

    void builtInTablesAndSettingsAreShownWithoutTouchingTheHostsFolder_data()
    {
        QTest::addColumn<bool>("isHostTold");
        QTest::newRow("the host's folder in the environment") << true;
        QTest::newRow("no home that can be written to") << false;
    }

    void builtInTablesAndSettingsAreShownWithoutTouchingTheHostsFolder()
    {
        QFETCH(bool, isHostTold);
        const QString data = m_folder.filePath("company/qualityadjust/data");
        const QString transfer = writeFile(data + "/niccpath.nicc", "of a running host");
        const QByteArray company = qgetenv("SUITE_COMPANY_DIR");
        const QByteArray home = qgetenv("HOME");
        if (!isHostTold) {
            qunsetenv("SUITE_COMPANY_DIR");
            qputenv("HOME", "/dev/null");
        }
        const QJsonValue table = run({"gray", "tables", "--json"}).json().value("tables")[12];
        const QJsonObject shown = run({"settings", "show", "--json"}).json();
        const Run set = run({"settings", "set", "freq", "60"}); // as it is
        qputenv("SUITE_COMPANY_DIR", company);
        qputenv("HOME", home);
        QCOMPARE(set.exitCode, 0);
        QVERIFY(table["table"] == "nGray_16" && table["last"] == 65535);
        QVERIFY(shown.value("settings")["frequency_hz"] == 60.0); // the shipped file, beside the executable
        QCOMPARE(readFile(transfer), QByteArray("of a running host"));
        QCOMPARE(QDir(data).entryList(QDir::Files), QStringList("niccpath.nicc"));
    }

    void hubCommandsTalkToAHub()
    {
        QObject owner;
        QProcess* server = start({"hub", "serve", "--quiet"}, &owner); // a port that nobody chose is told all the same
        server->setReadChannel(QProcess::StandardError);
        QVERIFY(server->waitForReadyRead(10000));
        const QString port = QString::fromUtf8(server->readLine()).section(':', 2).section(';', 0, 0);
        const Run there = run({"hub", "fine-gray", "--port", port});
        QVERIFY2(there.exitCode == 0 && there.out.contains("level 14, mode 1"), qPrintable(there.err));
        const QStringList several{"hub", "ping", "--hub", "127.0.0.1:1", "--hub", "127.0.0.1:" + port};
        const Run both = run(several);
        const QStringList lines = both.out.split('\n');
        QVERIFY2(both.exitCode == 69 && lines.size() == 3 && lines[0] == "hub 127.0.0.1:1: connection refused" &&
                     lines[1].startsWith("hub 127.0.0.1:" + port + ": alive (level 14, mode 1), "),
                 qPrintable(both.out));
        const QJsonObject json = run(several + QStringList("--json")).json();
        QVERIFY(!json["ok"].toBool() && json.value("error")["message"] == lines[0]);
        QVERIFY(json.value("hubs")[0]["error"]["code"] == 69 && json.value("hubs")[1]["level"] == 14);
        const Run measured = run({"hub", "send", "measure", "--measured", "measured-gamut.json"});
        QVERIFY2(measured.exitCode == 0 && measured.err.startsWith("qualityctl: no address: using a simulated hub"),
                 qPrintable(measured.err));
        ::kill(static_cast<pid_t>(server->processId()), SIGTERM);
        const Run served = finish(server);
        QVERIFY(served.exitCode == 0 && served.out == "served 3 requests\n");
        QCOMPARE(run({"hub", "ping", "--port", port}).exitCode, 69);
    }

    void aHubThatLacksFiguresIsToldApartFromOneThatIsNone_data()
    {
        QTest::addColumn<QByteArray>("answer");
        QTest::addColumn<int>("exitCode");
        QTest::addColumn<QString>("message");
        QTest::newRow("none") << QByteArray("\x05\0\0\0hello", 9) << 76 << "not the hub's protocol";
        QTest::newRow("half of the figures") << QByteArray("\x1d\0\0\0{\"error\":0,\"data\":{\"mode\":0}}", 33) << 0
                                             << "\"level\": null,\n    \"mode\": 0,";
    }

    void aHubThatLacksFiguresIsToldApartFromOneThatIsNone()
    {
        QFETCH(QByteArray, answer);
        QFETCH(QString, message);
        QTcpServer server;
        QVERIFY(server.listen(QHostAddress::LocalHost));
        connect(&server, &QTcpServer::newConnection, [&] {
            QTcpSocket* socket = server.nextPendingConnection();
            connect(socket, &QTcpSocket::readyRead, [socket, answer] { socket->write(answer); });
        });
        QObject owner;
        QProcess* process = start({"hub", "ping", "--json", "--port", QString::number(server.serverPort())}, &owner);
        QTRY_COMPARE_WITH_TIMEOUT(process->state(), QProcess::NotRunning, 10000); // this test's event loop is the hub
        const Run done = finish(process);
        QTEST(done.exitCode, "exitCode");
        QVERIFY2(done.out.contains(message), qPrintable(done.out));
    }

    void helpGoesToStdoutAndADryRunSendsNothing()
    {
        const Run help = run({"--help"});
        QVERIFY(help.exitCode == 0 && help.out.contains("Exit codes") && help.err.isEmpty());
        const Run dry =
            run({"send", "mode", "--correction", "on", "--dry-run", "--device", "left", "--cabinet", "2-3"});
        QCOMPARE(dry.out, QString("would post Device_CabinetsCorrectionChildSwitchV2 to left\n    cids = <2 cabinets>\n"
                                  "    mode = 11\n    switches = [{enable = true, switchMode = 5}]\n"));
        const QJsonObject json =
            run({"send", "binary", "--binary", "receiving-card.bin", "--dry-run", "--json"}).json();
        const QJsonValue request = json.value("requests")[0];
        QVERIFY2(json["dry_run"].toBool() && request["method"].isString(), QJsonDocument(json).toJson().constData());
    }

    void interruptedItSaysWhatWasSentAndWhatNot()
    {
        QObject owner;
        const QString document = wall(failingBy("silence"));
        QProcess* process =
            start({"send", "all", "--wall", document, "--table", "gray-table.csv", "--correction", "on"}, &owner);
        process->setReadChannel(QProcess::StandardError);
        QByteArray err;
        while (!err.contains("gray to a") && process->waitForReadyRead(10000)) // the silent device comes next
            err += process->readAllStandardError();
        ::kill(static_cast<pid_t>(process->processId()), SIGINT);
        const Run done = finish(process);
        QCOMPARE(done.exitCode, 130);
        // The signal comes while b is waited for, or just before it is sent to.
        static const QRegularExpression expected(
            "interrupted; failed: (gray to b: no answer when interrupted; not "
            "sent: |none; not sent: gray to b, )gray to c, mode to a, mode to b, mode to c");
        QVERIFY2(expected.match(done.err).hasMatch(), qPrintable(done.err));
    }
};

QTEST_GUILESS_MAIN(QualityctlTest)
#include "tst_qualityctl.moc"
