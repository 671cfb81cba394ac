#include "support/hostrun.h"
#include "support/serving.h"
#include "support/testfiles.h"
#include "support/walldocument.h"

#include <QJsonArray>
#include <QTemporaryDir>
#include <QTest>

class WallTransportTest : public QObject
{
    Q_OBJECT

private:
    QString in(const QString& name) const { return m_folder->filePath(name); }

    QStringList calibrate(const QString& transport, const QString& folder) const
    {
        return {"calibrate",      "--measured", "measured-gamut.json", "--target",    "rec709",  "--table",
                "gray-table.csv", "--binary",   "receiving-card.bin",  "--transport", transport, "--out",
                in(folder),       "--json"};
    }
    QJsonArray devicesOf(const Serving& serving) const
    {
        return run({"wall", "show", "--transport", serving.transport(), "--json"}).json().value("devices").toArray();
    }

    std::unique_ptr<QTemporaryDir> m_folder;

private Q_SLOTS:
    void init() { m_folder = std::make_unique<QTemporaryDir>(); }

    void processesShareAServedWall()
    {
        const Serving serving(QUALITYCTL, {"wall", "serve"}, QProcess::StandardError);
        const Run calibrated = run(calibrate(serving.transport(), "out"));
        QVERIFY2(calibrated.exitCode == 0 && calibrated.json()["simulated"].toBool(), qPrintable(calibrated.out));
        const QJsonValue held = devicesOf(serving).at(0)["cabinets"][0]["held"];
        QCOMPARE(held["coefficients"][0].toInt(), 10264);
        QCOMPARE(held["gray_levels"].toInt(), 256);
        const QStringList verify{"verify", in("out"), "--transport", serving.transport(), "--json"};
        const Run asked = run(verify);
        QVERIFY2(asked.exitCode == 0 && asked.json()["source"] == "cabinets", qPrintable(asked.out));
        const Run sent =
            run({"send", "mode", "--correction", "off", "--exclusive", "--transport", serving.transport(), "--json"});
        QVERIFY2(sent.exitCode == 0 && sent.json()["simulated"].toBool(), qPrintable(sent.out));
        QCOMPARE(devicesOf(serving).at(0)["cabinets"][0]["effect_mode"].toInt(), 0); // the wall as it is now
        QCOMPARE(run({"verify", in("out"), "--quiet"}).exitCode, 0); // what they held when they were served
        const Run switched = run(verify);
        QVERIFY2(switched.exitCode == 1 &&
                     switched.json().value("verdict")["sentence"].toString().startsWith("DIFFERS: 3 of 3"),
                 qPrintable(switched.out));
        const QString other = writeFile(in("other.json"), wallDocument("{}"));
        const Run foreign = run({"send", "mode", "--correction", "on", "--device", "a", "--wall", other, "--transport",
                                 serving.transport(), "--json"});
        QVERIFY2(foreign.exitCode == 69 && foreign.out.contains("no device"), qPrintable(foreign.out));
    }

    void aKilledServerEndsTheRunAndAResumeCompletesIt()
    {
        const QStringList wall{"--wall", writeFile(in("wall.json"), wallDocument(R"({"latencyMs": 150})"))};
        auto serving =
            std::make_unique<Serving>(QUALITYCTL, QStringList{"wall", "serve"} + wall, QProcess::StandardError);
        const QString port = serving->port();
        const QStringList arguments = calibrate(serving->transport(), "out");
        QObject owner;
        QProcess* process = start(arguments, &owner);
        process->setReadChannel(QProcess::StandardError);
        QByteArray err;
        while (!err.contains("to b") && process->waitForReadyRead(10000))
            err += process->readAllStandardError();
        serving->kill();
        const Run ended = finish(process);
        QCOMPARE(ended.exitCode, 69);
        QVERIFY2(ended.out.contains("gateway 127.0.0.1:" + port + ": "), qPrintable(ended.out));
        const Run refused = run(arguments + QStringList{"--resume"});
        QVERIFY2(refused.exitCode == 69 && refused.out.contains("Connection refused"), qPrintable(refused.out));
        serving = std::make_unique<Serving>(QUALITYCTL, QStringList{"wall", "serve", "--port", port} + wall,
                                            QProcess::StandardError);
        const Run resumed = run(arguments + QStringList{"--resume"});
        QVERIFY2(resumed.exitCode == 0, qPrintable(resumed.out));
        QVERIFY(resumed.json().value("devices")[0]["resumed"].toBool());
    }

    void devicesOfEveryKindHoldTheSame()
    {
        const Serving python("python3", {"-B", EXAMPLES "/gateway_device.py", EXAMPLES "/wall.json"},
                             QProcess::StandardOutput);
        const Serving simulated(QUALITYCTL, {"wall", "serve"}, QProcess::StandardError);
        QJsonArray held; // of each kind, as the journal tells it
        for (const auto& [folder, transport] :
             {std::pair(QString("simulated"), simulated.transport()), std::pair(QString("python"), python.transport()),
              std::pair(QString("plugin"), QString("plugin:" MEMORY_DEVICES "=wall.json"))}) {
            const Run done = run(calibrate(transport, folder));
            QVERIFY2(done.exitCode == 0, qPrintable(done.out + done.err));
            for (const char* name : {"/screen.nicc", "/screen.gray", "/screen.nrf"})
                QCOMPARE(readFile(in(folder) + name), readFile(in("simulated") + name));
            held.append(run({"verify", in(folder), "--json"}).json());
            QCOMPARE(held.last()["devices"].toArray().size(), 3);
            QCOMPARE(held.last()["devices"], held.first()["devices"]);
        }
        const QJsonArray devices = devicesOf(simulated);
        const QJsonArray inPython = devicesOf(python);
        QVERIFY(devices.size() == 3 && inPython.size() == 3);
        for (int i = 0; i < devices.size(); ++i) {
            const QJsonArray cabinets = devices[i]["cabinets"].toArray();
            const QJsonArray others = inPython[i]["cabinets"].toArray();
            for (int k = 0; k < cabinets.size(); ++k)
                QCOMPARE(others[k]["held"], cabinets[k]["held"]);
        }
    }

    void commandsWorkThroughAPlugIn()
    {
        const QString plugin = "plugin:" MEMORY_DEVICES "=wall.json";
        QCOMPARE(run(calibrate("simulated", "out")).exitCode, 0);
        const Run sent =
            run({"send", "mode", "--correction", "on", "--device", "left", "--transport", plugin, "--json"});
        QVERIFY2(sent.exitCode == 0 && sent.json()["simulated"].toBool(), qPrintable(sent.out));
        QVERIFY2(sent.err.contains("qualityctl: plug-in " MEMORY_DEVICES "=wall.json, simulated devices\n"),
                 qPrintable(sent.err));
        const Run shown = run({"wall", "show", "--transport", plugin, "--json"});
        QCOMPARE(shown.json().value("devices")[2]["cabinets"][0]["held"]["effect_mode"].toInt(), 3);
        const Run verified = run({"verify", in("out"), "--transport", plugin, "--json"}); // in a process of its own
        QVERIFY2(verified.exitCode == 1 && verified.json()["source"] == "cabinets", qPrintable(verified.out));
        const QString bare = "plugin:" FAULTY_PLUGIN "=confirms"; // neither reader nor wall
        const Run confirmed = run(calibrate(bare, "bare"));
        QVERIFY2(confirmed.exitCode == 0 && !confirmed.json()["simulated"].toBool(), qPrintable(confirmed.out));
        QCOMPARE(confirmed.json().value("verdict")["known"].toString(), "acknowledged");
        QVERIFY2(confirmed.err.contains("=confirms, not simulated devices"), qPrintable(confirmed.err));
        const Run switched = run({"send", "mode", "--correction", "on", "--transport", bare, "--json"});
        QVERIFY2(switched.exitCode == 0 && switched.json()["known"] == "acknowledged", qPrintable(switched.out));
    }

    void aTransportThatCannotBeHadIsNamed_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<int>("exitCode");
        QTest::addColumn<QString>("message");
        const QStringList show{"wall", "show", "--transport"};
        const QString forms = "expected simulated, gateway:HOST:PORT or plugin:FILE[=ARGUMENT], found ";
        for (const char* name :
             {"plug", "gateway:9100", "gateway::9100", "gateway:h:0", "plugin:", "plugin:=wall.json", "plugin"})
            QTest::newRow(name) << show + QStringList{name} << 64 << forms + name;
        QTest::newRow("no plug-in")
            << show + QStringList{"plugin:wall.json=a=b:c"} << 69
            << "plug-in wall.json: expected a Qt plug-in of interface suite.action.TransportPlugin/1";
        QTest::newRow("an argument with every sign")
            << show + QStringList{"plugin:" FAULTY_PLUGIN "=a=b:c"} << 69 << "no device \"a=b:c\"";
        QTest::newRow("its wall is not there")
            << show + QStringList{"plugin:" MEMORY_DEVICES} << 69 << "expected plugin:FILE=WALL.json";
        QTest::newRow("a wall that nobody looks at")
            << QStringList{"verify", ".", "--wall", "wall.json"} << 64 << "--wall requires --transport";
    }
    void aTransportThatCannotBeHadIsNamed()
    {
        QFETCH(QStringList, arguments);
        QFETCH(QString, message);
        const Run ended = run(arguments + QStringList{"--json"});
        QTEST(ended.exitCode, "exitCode");
        const QString told = ended.json().value("error")["message"].toString();
        QVERIFY2(told.contains(message), qPrintable(told));
    }
};

QTEST_GUILESS_MAIN(WallTransportTest)
#include "tst_walltransport.moc"
