#include "support/hostrun.h"
#include "support/testfiles.h"

#include <sys/stat.h>

#include <QFile>
#include <QJsonArray>
#include <QJsonObject>
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
    /// A wall of devices a and b with two cabinets each, in modes 3 and 4, and the given behaviours.
    QString wall(const QByteArray& a, const QByteArray& b = "{}")
    {
        const QByteArray cabinets = R"("cabinets": [{"cid": 1, "effectMode": 3}, {"cid": 2, "effectMode": 4}])";
        return writeFile(m_folder.filePath("wall.json"),
                         R"({"devices": [{"id": "a", "type": "G4", "simulation": )" + a + ", " + cabinets +
                             R"(}, {"id": "b", "type": "", "batchCorrectionSwitch": true, "simulation": )" + b + ", " +
                             cabinets + "}]}");
    }

    /// A named pipe.
    QString pipe() const
    {
        const QString path = m_folder.filePath("pipe");
        if (!QFile::exists(path) && ::mkfifo(path.toLocal8Bit().constData(), 0600) != 0)
            qFatal("cannot make a pipe");
        return path;
    }

    QTemporaryDir m_folder;

private Q_SLOTS:
    void initTestCase()
    {
        qputenv("SUITE_COMPANY_DIR", m_folder.filePath("company").toLocal8Bit());
        qputenv("TMPDIR", m_folder.path().toLocal8Bit());
    }

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
        const auto file = [&](const QString& name, const QByteArray& content) {
            return writeFile(m_folder.filePath(name), content);
        };
        const auto large = [&](const QString& name, int mebibytes) {
            QFile::resize(file(name, {}), qint64{mebibytes} * 1024 * 1024 + 1);
            return m_folder.filePath(name);
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
        row("send gray --table " + file("quoted.csv", "\"1\",\"2\",\"3\",\"4\"\n"), 65, "line 1: expected an integer");
        row("send gray --table " + file("p%1%2.csv", "1 2 3\n"), 65, "p%1%2.csv, line 1: expected 4 columns");
        row("send gray --table " + file("long.csv", "1 2 3 4" + QByteArray(2000, ' ') + "5\n"), 65,
            "line 1: expected at most 1024 characters, found 2008");
        row("send gray --table " + large("large-table", 16), 65, "larger than 16 MiB");
        row("doc check " + large("large-document", 64), 65, "larger than 64 MiB");
        row("send bin --file " + pipe(), 66, "expected a file, found a pipe or device");
        row("hub ping --timeout nan", 64, "expected a number from 0.001 to 86400, found nan");
        row("send gray --table " + file("none.csv", "# nothing\n"), 65, "no gray levels");
        row("send gamut --gamut nonsense", 66, "neither a standard gamut nor a file");
        row("send gamut --gamut wall.json", 65, "RedPoint: expected an object");
        row("send gamut --gamut 0.6,0.3:0.3,0.6:0.1,0:0.3,0.3", 65, "blue: y must be above 0");
        row("send gamut --gamut 0.6,0.3:0.5,0.35:0.4,0.4:0.3,0.3", 65, "one line");
        row("send gamut --gamut 0.8,0.3:0.3,0.6:0.1,0.1:0.3,0.3", 65, "red: (0.8, 0.3) lies outside");
        row("gamut coverage rec709 0.6,0.3:0.3,0.6:0.1,0.1:0.7,0.2", 65, "white (0.7, 0.2) lies outside the triangle");
        row("gamut coefficients rec709", 64, "target is required");
        row("gray write --calibration absent.json --out x", 66, "gray calibration absent.json: no such file");
        row("gray write --calibration wall.json --out x", 65, "red: expected an array");
        row("gray write --calibration gray-calibration.json --out wall.json", 73, "expected a folder, found a file");
        row("settings set Speed 3", 64, "the library writes only freq and open-path");
        row("settings set freq fast", 64, "freq: expected a frequency in Hz above 0, found \"fast\"");
        row("hub ping --host 127.0.0.1", 64, "--host: needs --port");
        row("hub ping --port 65536", 64, "--port");
        row("hub send gray --table absent.csv", 66, "gray table absent.csv: no such file");
        row("doc check absent.gray", 66, "document absent.gray: no such file");
        row("doc check gray-table.csv", 65, "not JSON");
        row("doc show wall.json", 65, "not a picture-quality document");
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

    void aPipeIsAnInputOnceSomebodyWritesIntoIt()
    {
        const Run alone = run({"doc", "check", pipe()});
        QCOMPARE(alone.exitCode, 66);
        QVERIFY2(alone.err.contains("document " + pipe() + ": a pipe that nobody writes into"), qPrintable(alone.err));
        QObject owner;
        QProcess* named = start({"doc", "check", pipe()}, &owner);
        writeFile(pipe(), R"({"magnitudes": [1]})"); // opens when the reader has
        QCOMPARE(finish(named).exitCode, 0);
        QProcess* anonymous = start({"doc", "check", "/dev/stdin"}, &owner);
        QVERIFY(anonymous->waitForStarted());
        anonymous->write(R"({"magnitudes": [1]})");
        anonymous->closeWriteChannel();
        QCOMPARE(finish(anonymous).exitCode, 0);
    }

    void gamutFiguresAreFractionsAndComeFromTheIntegers()
    {
        const QJsonObject coverage = run({"gamut", "coverage", "p3-d65", "bt2020", "--json"}).json();
        QVERIFY(qAbs(coverage["ratio_xy"].toDouble() - 0.7174329118) < 1e-9);
        QVERIFY(qAbs(coverage["coverage_uv"].toDouble() - 0.7284919140) < 1e-9);
        QCOMPARE(coverage["target"].toString(), QString("BT.2020"));
        const Run done = run({"gamut", "coefficients", "measured-gamut.json", "rec709", "--json"});
        QCOMPARE(done.json()["coefficients"],
                 QJsonValue(QJsonArray{10264, 5297, 823, 960, 16216, -1006, 99, 365, 11230}));
        QCOMPARE(done.json()["source"].toString(), QString("Panel 2026-11"));
        const QJsonObject reached = done.json()["reached"].toObject();
        QVERIFY(reached["blue"]["out_of_reach"].toBool() && reached["blue"]["ciede2000"].toDouble() > 5.0);
        QVERIFY(!reached["green"]["out_of_reach"].toBool() && reached["white"]["ciede2000"].toDouble() < 0.02);
        QVERIFY(qAbs(reached["white"]["x"].toDouble() - 0.3127) < 2e-4);
        QVERIFY(qAbs(done.json()["white_kept"].toDouble() - 0.95365) < 1e-4);
        const Run explained = run({"gamut", "explain", "--source", "measured-gamut.json", "--target", "rec709"});
        QVERIFY2(explained.out.contains("0.95365319") && explained.out.contains("[SMPTE RP 177]"),
                 qPrintable(explained.out));
    }

    void aGrayCalibrationIsWrittenAndReadBack()
    {
        const QStringList arguments{
            "gray",  "write", "--calibration", "gray-calibration.json", "--out", m_folder.filePath("gray/deep"),
            "--json"};
        const Run done = run(arguments);
        QVERIFY2(done.exitCode == 0, qPrintable(done.out));
        const QJsonArray documents = done.json()["documents"].toArray();
        QCOMPARE(documents.size(), 2);
        for (const QJsonValue& document : documents) {
            QVERIFY(document["equal"].toBool() && document["bytes"].toInt() > 10000);
            QCOMPARE(run({"doc", "check", document["path"].toString()}).exitCode, 0);
        }
        const Run shown = run({"doc", "show", documents[0]["path"].toString()});
        QVERIFY2(shown.out.contains("fine-gray configuration\n  rMeasure: 33 points, 0.02 to 809.07 cd/m2"),
                 qPrintable(shown.out));
        QCOMPARE(run(arguments).exitCode, 73); // nothing is overwritten without being asked
        QCOMPARE(run(arguments + QStringList("--force")).exitCode, 0);
        // A disk with room for the first document of another calibration, and not for the second.
        const auto contents = [&] {
            return readFile(documents[0]["path"].toString()) + readFile(documents[1]["path"].toString());
        };
        const QByteArray before = contents();
        QStringList other = arguments + QStringList("--force");
        other[3] = writeFile(m_folder.filePath("other.json"),
                             readFile(EXAMPLES "/gray-calibration.json").replace("0.02", "0.03"));
        Hindrance full;
        full.fileBytes = static_cast<rlim_t>((documents[0]["bytes"].toInt() + documents[1]["bytes"].toInt()) / 2);
        QCOMPARE(run(other, full).exitCode, 74);
        QCOMPARE(contents(), before);
    }

    void anOutputIsWrittenUnderItsNameOrRefused()
    {
        const auto draw = [&](const QString& path) {
            return run({"gray", "chart", "--table", "gray-table.csv", "--force", "--out", path}).exitCode;
        };
        const QString pipe = m_folder.filePath("pipe.svg");
        QCOMPARE(mkfifo(qPrintable(pipe), 0600), 0);
        QCOMPARE(draw(pipe), 73);
        QVERIFY(QFileInfo::exists(pipe) && !QFileInfo(pipe).isFile());
        QVERIFY(QFile::link("chart.svg", m_folder.filePath("link.svg")));
        QCOMPARE(draw(m_folder.filePath("link.svg")), 0);
        QVERIFY(QFileInfo(m_folder.filePath("chart.svg")).isFile());
        QCOMPARE(draw(m_folder.filePath(QString("not UTF-8 %1.svg").arg(QChar(QChar::ReplacementCharacter)))), 73);
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
        const Run listed = run({"gray", "tables", "--json"});
        const Run shown = run({"settings", "show", "--json"});
        const Run set = run({"settings", "set", "freq", "60"}); // as it is
        qputenv("SUITE_COMPANY_DIR", company);
        qputenv("HOME", home);
        QCOMPARE(set.exitCode, 0);
        const QJsonArray tables = listed.json()["tables"].toArray();
        QCOMPARE(tables.size(), 15);
        QCOMPARE(tables[12]["table"].toString(), "nGray_16");
        QCOMPARE(tables[12]["last"].toInt(), 65535);
        const QJsonObject settings = shown.json();
        QCOMPARE(settings["settings"]["frequency_hz"].toDouble(), 60.0); // the shipped file, beside the executable
        QVERIFY(QFile::exists(settings["file"].toString()));
        QCOMPARE(readFile(transfer), QByteArray("of a running host"));
        QCOMPARE(QDir(data).entryList(QDir::Files), QStringList("niccpath.nicc"));
    }

    void hubCommandsTalkToAHub()
    {
        const Run alone = run({"hub", "ping", "--json"});
        QCOMPARE(alone.exitCode, 0);
        QVERIFY2(alone.err.startsWith("qualityctl: no address: using a simulated hub"), qPrintable(alone.err));
        QCOMPARE(alone.json()["level"].toInt(), 14);
        QCOMPARE(run({"hub", "send", "gray", "--table", "gray-table.csv"}).exitCode, 0);
        QCOMPARE(run({"hub", "send", "gamut", "--gamut", "rec709"}).exitCode, 0);
        QCOMPARE(run({"hub", "send", "measure", "--gamut", "measured-gamut.json"}).exitCode, 0);

        QObject owner;
        QProcess* server = start({"hub", "serve"}, &owner);
        server->setReadChannel(QProcess::StandardError);
        QVERIFY(server->waitForReadyRead(10000));
        const QString port = QString::fromUtf8(server->readLine()).section(':', 2).section(';', 0, 0);
        const Run there = run({"hub", "fine-gray", "--port", port});
        QVERIFY2(there.exitCode == 0 && there.out.contains("level 14, mode 1"), qPrintable(there.err));
        ::kill(static_cast<pid_t>(server->processId()), SIGINT);
        const Run served = finish(server);
        QCOMPARE(served.exitCode, 0);
        QCOMPARE(served.out, QString("served 1 requests\n"));
        const Run refused = run({"hub", "ping", "--port", port});
        QCOMPARE(refused.exitCode, 69);
        QVERIFY2(refused.err.contains("connection refused"), qPrintable(refused.err));

        server = start({"hub", "serve", "--quiet"}, &owner); // a port that nobody chose is told all the same
        server->setReadChannel(QProcess::StandardError);
        QVERIFY(server->waitForReadyRead(10000));
        ::kill(static_cast<pid_t>(server->processId()), SIGTERM);
        QCOMPARE(finish(server).out, QString("served 0 requests\n"));
    }

    void hubAnswersAreToldApart_data()
    {
        QTest::addColumn<QByteArray>("answer"); ///< raw bytes; "close" closes the connection
        QTest::addColumn<int>("exitCode");
        QTest::addColumn<QString>("message");
        QTest::newRow("silence") << QByteArray() << 75 << "no reply within 0.5 s";
        QTest::newRow("closed") << QByteArray("close") << 69 << "the connection was closed before the reply";
        QTest::newRow("not the protocol") << QByteArray("\x05\0\0\0hello", 9) << 76 << "not the hub's protocol";
        QTest::newRow("error number") << QByteArray("\x0b\0\0\0{\"error\":7}", 15) << 69 << "error number 7";
        QTest::newRow("no figures") << QByteArray("\x0b\0\0\0{\"error\":0}", 15) << 0 << "\"level\": null";
        QTest::newRow("half of them") << QByteArray("\x1d\0\0\0{\"error\":0,\"data\":{\"mode\":0}}", 33) << 0
                                      << "\"level\": null,\n    \"mode\": 0,";
    }

    void hubAnswersAreToldApart()
    {
        QFETCH(QByteArray, answer);
        QFETCH(QString, message);
        QTcpServer server;
        QVERIFY(server.listen(QHostAddress::LocalHost));
        connect(&server, &QTcpServer::newConnection, [&] {
            QTcpSocket* socket = server.nextPendingConnection();
            connect(socket, &QTcpSocket::readyRead, [socket, answer] {
                socket->readAll();
                if (answer == "close")
                    socket->close();
                else
                    socket->write(answer);
            });
        });
        QObject owner;
        QProcess* process = start(
            {"hub", "ping", "--json", "--timeout", "0.5", "--port", QString::number(server.serverPort())}, &owner);
        QTRY_COMPARE_WITH_TIMEOUT(process->state(), QProcess::NotRunning, 10000); // this test's event loop is the hub
        const Run done = finish(process);
        QTEST(done.exitCode, "exitCode");
        QVERIFY2(done.out.contains(message), qPrintable(done.out));
    }

    void aFaultyDocumentIsToldByPath_data()
    {
        QTest::addColumn<QByteArray>("document");
        QTest::addColumn<QStringList>("faults");
        QTest::newRow("good, empty lists") << QByteArray(R"({"rGrayCoeffs": [], "gGrayCoeffs": []})") << QStringList();
        QTest::newRow("unknown keys") << QByteArray(R"({"magnitudes": [], "color": 1, "mgData": {"x": 1}})")
                                      << QStringList({"color: unknown key", "mgData.x: unknown key"});
        QTest::newRow("wrong types")
            << QByteArray(R"({"openGray": 1, "xbitType": 2.5, "grayEffectPara": [], "rGrayCoeffs": [1, "2"]})")
            << QStringList({"grayEffectPara: expected an object", "openGray: expected true or false",
                            "rGrayCoeffs[1]: expected an integer", "xbitType: expected an integer"});
        QTest::newRow("outside their meaning")
            << QByteArray(
                   R"({"magnitudes": [256], "rMeasure": [{"lum": -1, "x": 0.6, "y": 0.5}], "grayDetailPara": {"peakLum": -2}})")
            << QStringList({"grayDetailPara.peakLum: expected at least 0, found -2",
                            "magnitudes[0]: expected 0 to 255, found 256",
                            "rMeasure[0].lum: expected at least 0, found -1",
                            "rMeasure[0]: x + y is 1.1, outside the chromaticity diagram"});
        QTest::newRow("lengths")
            << QByteArray(
                   R"({"grayAdvance": {"coeffs": {"rGrayCoeffs": [1], "gGrayCoeffs": []}}, "rMeasure": [], "gMeasure": [{"lum": 1, "x": 0, "y": 0}]})")
            << QStringList({"grayAdvance.coeffs.gGrayCoeffs: has 0 entries, rGrayCoeffs has 1",
                            "gMeasure: has 1 entries, rMeasure has 0"});
        QTest::newRow("series") << QByteArray(R"({"wMGMeasure": [{"measure": [{"lum": 1, "x": 0.3}]}, {}]})")
                                << QStringList({"wMGMeasure[0].measure[0]: has no y",
                                                "wMGMeasure[1]: expected an object with \"measure\""});
    }

    void aFaultyDocumentIsToldByPath()
    {
        QFETCH(QByteArray, document);
        QFETCH(QStringList, faults);
        const Run done = run({"doc", "check", writeFile(m_folder.filePath("faulty.gray"), document), "--json"});
        QStringList found;
        for (const QJsonValue& fault : done.json()["faults"].toArray())
            found << fault.toString();
        QCOMPARE(found, faults);
        QCOMPARE(done.exitCode, faults.isEmpty() ? 0 : 1);
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
        // The signal comes while b is waited for, or just before it is sent to.
        static const QRegularExpression expected("interrupted; failed: (gray to b: no answer when interrupted; not "
                                                 "sent: |none; not sent: gray to b, )mode to a, mode to b");
        QVERIFY2(expected.match(done.err).hasMatch(), qPrintable(done.err));
    }
};

QTEST_GUILESS_MAIN(QualityctlTest)
#include "tst_qualityctl.moc"
