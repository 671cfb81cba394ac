#include "support/serving.h"
#include "support/testfiles.h"

#include <QTemporaryDir>
#include <QTest>

class ReplayTest : public QObject
{
    Q_OBJECT

    QTemporaryDir m_folder;
    QString in(const QString& name) const { return m_folder.filePath(name); }

    static QStringList toWall(const QStringList& command, const Serving& wall)
    {
        return command + QStringList{"--transport", wall.transport(), "--json"};
    }

private Q_SLOTS:
    void aRecordedWall_data()
    {
        QTest::addColumn<QString>("target");
        QTest::addColumn<QStringList>("differences");
        QTest::newRow("as recorded") << "rec709" << QStringList();
        QTest::newRow("another target")
            << "p3-d65"
            << QStringList{"put Device_CabinetsColorSpaceNicc of left: arguments.bLxy.lum: expected "
                           "214.79898019194133, found 235.90804928201098",
                           "put Device_CabinetsColorSpaceCoeff of left: arguments.niccData.coeffs[0]: expected 10264, "
                           "found 12333"};
    }
    void aRecordedWall()
    {
        QFETCH(QString, target);
        QFETCH(QStringList, differences);
        Serving wall(QUALITYCTL, {"wall", "replay", RECORDINGS "/gateway.jsonl", "--json"}, QProcess::StandardError);
        const Run calibrated = run(
            toWall({"calibrate", "--measured", "measured-gamut.json", "--target", target, "--out", in(target)}, wall));
        QVERIFY2(calibrated.json().value("simulated").toBool(), qPrintable(calibrated.out)); // nothing is behind it
        QCOMPARE(calibrated.exitCode, differences.isEmpty() ? 0 : 1); // read back is what was recorded
        const Run ended = wall.end();
        QCOMPARE(ended.exitCode, differences.isEmpty() ? 0 : 1);
        const QJsonObject json = ended.json();
        QVERIFY2(json["recorded"] == 23 && json["asked"] == 23, qPrintable(ended.out));
        QCOMPARE(json["differences"].toVariant().toStringList(), differences);
    }

    void aRecordedHub()
    {
        Serving hub(QUALITYCTL, {"hub", "replay", RECORDINGS "/hub.jsonl", "--json"}, QProcess::StandardError);
        const QStringList calibrate{"calibrate", "--generation", "3",     "--measured", "measured-gamut.json",
                                    "--hub",     hub.address(),  "--out", in("hub"),    "--target"};
        const Run calibrated = run(calibrate + QStringList{"native"});
        QVERIFY2(calibrated.exitCode == 0, qPrintable(calibrated.err));
        const Run beyond = run({"hub", "ping", "--hub", hub.address()});
        QVERIFY2(beyond.exitCode == 69 && beyond.err.contains("closed before the reply"), qPrintable(beyond.err));
        const Run ended = hub.end();
        QCOMPARE(ended.exitCode, 1);
        QCOMPARE(ended.json()["differences"].toVariant().toStringList(),
                 QStringList({"request 2: data.bLxy.cx: expected 0.15, found 0.13",
                              "request 3: not in the recording, or asked there less often"}));
    }

    void whatIsRecordedCanBeReplayed_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::addColumn<QStringList>("command");
        QTest::newRow("wall") << "wall" << QStringList{"send", "gray", "--table", "gray-table.csv", "--transport"};
        QTest::newRow("hub") << "hub" << QStringList{"hub", "send", "gray", "--table", "gray-table.csv", "--hub"};
    }
    void whatIsRecordedCanBeReplayed()
    {
        QFETCH(QString, kind);
        QFETCH(QStringList, command);
        const QString file = in(kind + ".jsonl");
        const auto send = [&](const Serving& serving, const QStringList& more) {
            const QString place = kind == "hub" ? serving.address() : serving.transport();
            return run(command + QStringList{place, "--json"} + more);
        };
        Serving real(QUALITYCTL, {kind, "serve"}, QProcess::StandardError);
        const Run sent = send(real, {"--record", file});
        QVERIFY2(sent.exitCode == 0, qPrintable(sent.out));
        const Run taken = send(real, {"--record", file});
        QVERIFY2(taken.exitCode == 73 && taken.out.contains("exists"), qPrintable(taken.out));
        Serving replay(QUALITYCTL, {kind, "replay", file, "--json"}, QProcess::StandardError);
        const Run again = send(replay, {});
        QCOMPARE(again.exitCode, 0);
        QCOMPARE(again.json()["cabinets"], sent.json()["cabinets"]);
        const Run ended = replay.end();
        QVERIFY2(ended.exitCode == 0 && ended.json()["differing"] == 0, qPrintable(ended.out));
        QVERIFY2(ended.json()["asked"].toInt() > 0, qPrintable(ended.out));
    }

    void aRecordingIsAskedForWhereItHasNoPlace_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<int>("exitCode");
        QTest::addColumn<QString>("text");
        const QString file = in("none.jsonl");
        QTest::newRow("simulated wall") << QStringList{"wall", "show", "--record", file} << 64
                                        << "expected --transport gateway:HOST:PORT, found simulated";
        QTest::newRow("nobody there") << QStringList{"wall",     "show", "--transport", "gateway:127.0.0.1:1",
                                                     "--record", file}
                                      << 69 << "Connection refused";
        QTest::newRow("no folder") << QStringList{"wall",     "show",    "--transport", "gateway:127.0.0.1:1",
                                                  "--record", in("no/f")}
                                   << 73 << "No such file";
        QTest::newRow("no recording") << QStringList{"wall", "replay", in("no.jsonl")} << 66 << "no such file";
        QTest::newRow("another kind") << QStringList{"hub", "replay", RECORDINGS "/gateway.jsonl"} << 65
                                      << "expected the recording of a hub, version 1, found gateway, version 1";
    }
    void aRecordingIsAskedForWhereItHasNoPlace()
    {
        QFETCH(QStringList, arguments);
        QFETCH(QString, text);
        const Run refused = run(arguments);
        QTEST(refused.exitCode, "exitCode");
        QVERIFY2(refused.err.contains(text), qPrintable(refused.err));
    }

    void aFullDiskIsSaid()
    {
        Serving wall(QUALITYCTL, {"wall", "serve"}, QProcess::StandardError);
        const Run shown = run(toWall({"wall", "show"}, wall) + QStringList{"--record", in("short.jsonl")}, 500);
        QVERIFY2(shown.exitCode == 74 && shown.out.contains("File too large"), qPrintable(shown.out));
        QVERIFY(!shown.json()["devices"].isUndefined()); // what was asked for is there all the same
    }
};

QTEST_GUILESS_MAIN(ReplayTest)
#include "tst_replay.moc"
