#include "support/calibrationsetup.h"
#include "support/filesizelimit.h"
#include <calibration/graycalibration.h>

#include <sys/stat.h>

#include <QTemporaryDir>
#include <QTest>

#include <thread>

using namespace Calibration;

class InputsTest : public QObject
{
    Q_OBJECT

private:
    /// An input that never was a file.
    static Input input(const QByteArray& bytes) { return {"table", "p%1%2", bytes, {}}; }

    QTemporaryDir m_folder;

private Q_SLOTS:
    void initTestCase() { QVERIFY(QDir::setCurrent(EXAMPLES)); }

    void anInputIsReadWholeWithItsDigest()
    {
        const QString path = writeFile(m_folder.filePath("input"), "abc");
        const Input read = good(readInput(path, "binary", 3));
        QCOMPARE(read.bytes, QByteArray("abc"));
        QCOMPARE(read.sha256, QString("ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad"));
        QCOMPARE(faultText(readInput(path, "binary", 2)), "BadData: binary " + path + ": larger than 0 MiB");
        QCOMPARE(faultText(readInput("absent", "binary")), QString("NoInput: binary absent: no such file"));
        QCOMPARE(faultText(readInput("..", "binary")), QString("NoInput: binary ..: expected a file, found a folder"));
        QVERIFY(std::freopen(qPrintable(path), "r", stdin) != nullptr);
        QCOMPARE(good(readInput("-", "binary")).bytes, QByteArray("abc"));
    }

    void aPipeIsReadOnceSomebodyWritesIntoIt()
    {
        const QString pipe = m_folder.filePath("pipe");
        QCOMPARE(::mkfifo(qPrintable(pipe), 0600), 0);
        const QByteArray content(200000, 'x'); // more than a pipe holds
        std::thread writer([&] { writeFile(pipe, content); });
        const auto read = readInput(pipe, "document");
        writer.join();
        QVERIFY(read && read->bytes == content);
        QCOMPARE(faultText(readInput(pipe, "document")),
                 "NoInput: document " + pipe + ": a pipe that nobody writes into");
    }

    void whatIsNoGrayTableIsRefusedByLine_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<QString>("fault");
        const auto row = [](const char* name, const QByteArray& text, const char* fault) {
            QTest::newRow(name) << text << QString("BadData: table p%1%2") + fault;
        };
        const char* const columns = ", line 1: expected 4 columns (red, green, blue, magnitude), found 5";
        row("five columns", "1,2,3,4,5\n", columns);
        row("after a comment", "r g b m\n# a\n1 2 3 256\n",
            ", line 3: expected an integer from 0 to 255, found \"256\"");
        row("negative", "1 2 3 -1\n", ", line 1: expected an integer from 0 to 255, found \"-1\"");
        row("quoted numbers are no heading", "\"1\",\"2\",\"3\",\"4\"\n",
            ", line 1: expected an integer from 0 to 255, found \"\"1\"\"");
        row("a long line", "1 2 3 4" + QByteArray(2000, ' ') + "5\n",
            ", line 1: expected at most 1024 characters, found 2008");
        row("too many levels", QByteArray("1 2 3 4\n").repeated(65537), ", line 65537: more than 65536 gray levels");
        row("no level", "# nothing\n", ": no gray levels");
    }

    void whatIsNoGrayTableIsRefusedByLine()
    {
        QFETCH(QByteArray, text);
        QTEST(faultText(parseGrayTable(input(text), 60)), "fault");
    }

    void aGrayTableIsReadWhateverSeparatesItsColumns()
    {
        const auto table = good(parseGrayTable(input("r;g;b;m\r\n\n0,1,2,3\n# c\n 4;5 ;6;7\n8\t9  10 255"), 50));
        QVERIFY((table == Action::GrayTable{{0, 4, 8}, {1, 5, 9}, {2, 6, 10}, {3, 7, 255}, 50}));
        QCOMPARE(good(parseGrayTable(input(QByteArray("1 2 3 4\n").repeated(65536)), 60)).blue.size(), size_t{65536});
    }

    void whatIsNoGrayCalibrationIsRefusedByPath_data()
    {
        QTest::addColumn<QByteArray>("from");
        QTest::addColumn<QByteArray>("to");
        QTest::addColumn<QString>("fault");
        QTest::newRow("no red") << QByteArray("\"red\"") << QByteArray("\"rot\"")
                                << "red: expected an array, found nothing";
        QTest::newRow("two numbers") << QByteArray("[0.02, 0.686, 0.302]") << QByteArray("[0.02, 0.686]")
                                     << "red[0]: expected [luminance, x, y], found an array";
        QTest::newRow("a level below 0") << QByteArray("\"peakWanted\": ") << QByteArray("\"peakWanted\": -")
                                         << "peakWanted: expected an integer of at least 0, found -2800";
    }

    void whatIsNoGrayCalibrationIsRefusedByPath()
    {
        QFETCH(QByteArray, from);
        QFETCH(QByteArray, to);
        QFETCH(QString, fault);
        const QByteArray text = readFile("gray-calibration.json").replace(from, to);
        QCOMPARE(faultText(parseGrayCalibration(input(text))), "BadData: table p%1%2: " + fault);
    }

    void aGrayCalibrationIsWrittenAndReadBack()
    {
        QByteArray text = readFile("gray-calibration.json");
        const auto documents = good(writeGrayDocuments(m_folder.path(), good(parseGrayCalibration(input(text)))));
        QVERIFY(documents[0].isEqual && documents[1].isEqual);
        const auto contents = [&] { return readFile(documents[0].path) + readFile(documents[1].path); };
        const QByteArray before = contents();
        QCOMPARE(qint64{before.size()}, documents[0].bytes + documents[1].bytes);
        const auto other = good(parseGrayCalibration(input(text.replace("0.02", "0.03"))));
        const FileSizeLimit full(static_cast<rlim_t>(before.size() / 2)); // room for one of them
        QVERIFY(faultText(writeGrayDocuments(m_folder.path(), other)).startsWith("InputOutput: "));
        QCOMPARE(contents(), before);
    }
};

QTEST_GUILESS_MAIN(InputsTest)
#include "tst_inputs.moc"
