#include "support/testfiles.h"
#include <suite/service/walldocument.h>

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using Service::ModelService;

class WallDocumentTest : public QObject
{
    Q_OBJECT

private:
    QString write(const QByteArray& content) { return writeFile(m_folder.filePath("wall.json"), content); }

    QTemporaryDir m_folder;

private Q_SLOTS:
    void init() { ModelService::setDevices({}); }

    void aGoodDocumentFillsTheRegistry()
    {
        QString error;
        QVERIFY2(Service::loadWall(write(R"({"devices": [
            {"id": "left", "type": "G4", "batchCorrectionSwitch": true, "simulation": {"latencyMs": 3}, "cabinets": [
                {"cid": 1, "grayScaleSeries": 16, "chipEffectFlag": 2, "effectMode": 3},
                {"cid": "18446744073709551615"}]},
            {"id": "right", "type": "", "cabinets": []}]})"),
                                   error),
                 qPrintable(error));
        const auto left = ModelService::getDevice("left");
        QCOMPARE(left->getBase().getType(), std::string("G4"));
        QVERIFY(left->getConfiguration().getCapacity().getIsSupportBatchCorrectionSwitch());
        QVERIFY(
            !ModelService::getDevice("right")->getConfiguration().getCapacity().getIsSupportBatchCorrectionSwitch());
        const auto cabinet = ModelService::getCabByCid("left", 1, true);
        QCOMPARE(cabinet->getBase().getGrayScaleSeries(), 16);
        QCOMPARE(cabinet->getBase().getChipEffectFlag(), 2);
        QCOMPARE(cabinet->getDisplayEffectPara().getEffectMode(), 3u);
        QVERIFY(ModelService::getCabByCid("left", 18446744073709551615ULL, true));
        QVERIFY(!ModelService::getDevice("LEFT"));
        QVERIFY(!ModelService::getCabByCid("right", 1, true));
        QCOMPARE(ModelService::getCabByCid("right", 1, false), cabinet); // looked for under the other devices too
    }

    void aWrongDocumentIsRefusedWithItsPlace_data()
    {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QString>("reason");
        const auto device = [](const QByteArray& members) { return "{\"devices\": [{" + members + "}]}"; };
        const auto cabinet = [&](const QByteArray& members) {
            return device(R"("id": "a", "type": "G4", "cabinets": [{"cid": 1}, {)" + members + "}]");
        };
        QTest::newRow("not JSON") << QByteArray("{\n  \"devices\": [}\n") << "line 2, column 15: not JSON";
        QTest::newRow("empty") << QByteArray() << "not JSON";
        QTest::newRow("an array") << QByteArray("[]") << "expected an object, found an array";
        QTest::newRow("no devices") << QByteArray("{}") << "devices: expected an array, found nothing";
        QTest::newRow("device is a number")
            << QByteArray("{\"devices\": [4]}") << "devices[0]: expected an object, found 4";
        QTest::newRow("no identity") << device("\"type\": \"\", \"cabinets\": []")
                                     << "devices[0].id: expected a string, found nothing";
        QTest::newRow("empty identity") << device(R"("id": "", "type": "", "cabinets": [])")
                                        << "devices[0].id: an identity must not be empty";
        QTest::newRow("no type") << device(R"("id": "a", "cabinets": [])")
                                 << "devices[0].type: expected a string, found nothing";
        QTest::newRow("no cabinets") << device(R"("id": "a", "type": "")")
                                     << "devices[0].cabinets: expected an array, found nothing";
        QTest::newRow("batch is text")
            << device(R"("id": "a", "type": "", "batchCorrectionSwitch": "yes", "cabinets": [])")
            << "devices[0].batchCorrectionSwitch: expected true or false, found \"yes\"";
        QTest::newRow("same device twice")
            << QByteArray(
                   R"({"devices": [{"id": "a", "type": "", "cabinets": []}, {"id": "a", "type": "", "cabinets": []}]})")
            << "devices[1].id: device \"a\" is listed twice";
        QTest::newRow("same cabinet twice")
            << cabinet("\"cid\": 1") << "devices[0].cabinets[1].cid: cabinet 1 is listed twice";
        QTest::newRow("cabinet without identifier")
            << cabinet("") << "devices[0].cabinets[1].cid: expected an identifier";
        QTest::newRow("negative identifier") << cabinet("\"cid\": -1") << "found -1";
        QTest::newRow("fractional identifier") << cabinet("\"cid\": 1.5") << "found 1.5";
        QTest::newRow("number too large to be exact")
            << cabinet("\"cid\": 9007199254740992") << "found 9007199254740992";
        QTest::newRow("text over 64 bits")
            << cabinet("\"cid\": \"18446744073709551616\"") << "found \"18446744073709551616\"";
        QTest::newRow("depth is zero") << cabinet("\"cid\": 2, \"grayScaleSeries\": 0")
                                       << "grayScaleSeries: expected an integer of at least 1, found 0";
        QTest::newRow("mode over an int") << cabinet("\"cid\": 2, \"effectMode\": 2147483648")
                                          << "effectMode: expected an integer of at least 0, found 2147483648";
        QTest::newRow("simulation is a list") << device(R"("id": "a", "type": "", "simulation": [], "cabinets": [])")
                                              << "devices[0].simulation: expected an object, found an array";
    }

    void aWrongDocumentIsRefusedWithItsPlace()
    {
        QFETCH(QByteArray, content);
        QFETCH(QString, reason);
        QString error;
        QVERIFY(Service::loadWall(write(R"({"devices": [{"id": "kept", "type": "", "cabinets": []}]})"), error));
        const QString path = write(content);
        QVERIFY(!Service::loadWall(path, error));
        QVERIFY2(error.startsWith("wall document " + path + ": "), qPrintable(error));
        QVERIFY2(error.contains(reason), qPrintable(error));
        QVERIFY(ModelService::getDevice("kept")); // the registry is as it was
    }

    void anUnreadableFileIsRefused()
    {
        QString error;
        QVERIFY(!Service::readWall(m_folder.filePath("absent.json"), error));
        QVERIFY2(error.contains("absent.json: cannot be read: No such file"), qPrintable(error));
        QVERIFY(!Service::readWall(m_folder.path(), error)); // a folder
        QVERIFY2(error.contains("cannot be read"), qPrintable(error));
        const QString path = write({});
        QVERIFY(QFile::resize(path, 32 * 1024 * 1024 + 1));
        QVERIFY(!Service::readWall(path, error));
        QVERIFY2(error.endsWith("larger than 32 MiB"), qPrintable(error));
    }
};

QTEST_GUILESS_MAIN(WallDocumentTest)
#include "tst_walldocument.moc"
