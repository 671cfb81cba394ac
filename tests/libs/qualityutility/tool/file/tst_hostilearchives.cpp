#include "support/archivefolder.h"

#include <QDir>

using Tool = PicQualityFileTool;

namespace {

/// An archive whose end record counts other than the entries.
QByteArray counting(QByteArray archive, char entries)
{
    constexpr int fromEnd = 14; // first those on this disk, then all
    archive[archive.size() - fromEnd] = archive[archive.size() - fromEnd + 2] = entries;
    return archive;
}

} // namespace

class HostileArchivesTest : public QObject, private ArchiveFolder
{
    Q_OBJECT

private:
    QTemporaryDir m_elsewhere;
    const QByteArray m_outside = m_elsewhere.filePath("escaped").toUtf8();

private Q_SLOTS:
    void init() { makeFolder(); }
    void cleanup() { removeFolder(); }

    void hostileArchivesAreRefusedAndChangeNothing_data()
    {
        QTest::addColumn<QByteArray>("archive");
        QTest::addColumn<QString>("reason");
        const ZipEntry good = entry("a.nicc", QByteArray(5000, 'a'));
        const auto bad = [&](const char* name, const ZipEntry& wrong, const char* reason) {
            QTest::newRow(name) << zipArchive({good, wrong, entry("z.txt")}) << reason;
        };
        bad("path upwards", entry("../escaped"), "entry \"../escaped\"");
        bad("path upwards inside", entry("f/../../escaped"), "a path that leaves the folder");
        bad("absolute path", entry(m_outside), "not a relative path");
        bad("backslashes", entry("..\\escaped"), "not a relative path");
        bad("drive letter", entry("C:escaped"), "not a relative path");
        bad("drive letter in a folder", entry("\xef\xbf\xbd/C:a"), "not a relative path");
        bad("empty name", entry(""), "an empty name");
        bad("newline in a name", entry("a\n2026 critical: forged"), "entry \"a\\n2026 critical: forged\"");
        bad("escape in a name", entry("a\x1b[2J"), "control characters");
        bad("zero in a name", entry(QByteArray("a\0b", 3)), "control characters");
        bad("name over 255 bytes", entry(QByteArray(256, 'n')), "a name over 255 bytes");
        bad("symbolic link", {"link", m_outside, 0, 0, 0120777}, "a symbolic link entry \"link\"");
        bad("encrypted", {"e", "x", 1}, "encrypted");
        bad("unknown method", {"m", "x", 0, 14}, "an unknown compression method");
        bad("wrong checksum", {"c", "content", 0, 8, 0100644, 1}, "damaged");
        bad("larger than it says", {"l", QByteArray(100000, '\0'), 0, 8, 0100644, 0, quint32(-99990)}, "damaged");
        bad("smaller than it says", {"s", "content", 0, 8, 0100644, 0, 1000}, "damaged");
        bad("a file where a folder is", entry("a.nicc/inside"), "damaged");
        QList<ZipEntry> bomb;
        for (int i = 0; i < 3; ++i)
            bomb << ZipEntry{"bomb" + QByteArray::number(i), "b", 0, 8, 0100644, 0, 100'000'000};
        QTest::newRow("bomb") << zipArchive(bomb) << "286 MiB unpacked, over 200 times the archive's size";
        QList<ZipEntry> many;
        for (int i = 0; i < 10'000; ++i)
            many << entry(QByteArray::number(i));
        QTest::newRow("ten thousand entries") << zipArchive(many) << "10000 entries, over 4096";
        const QByteArray whole = zipArchive({good, entry("b"), entry("c")});
        QTest::newRow("one entry not counted") << counting(whole, 2) << "longer than the 2 entries";
        QTest::newRow("no entry counted") << counting(whole, 0) << "longer than the 0 entries";
        QTest::newRow("names in no encoding") << zipArchive({entry("\xff.txt"), entry("\xfe.txt")}) << "two names";
        QTest::newRow("truncated") << whole.left(whole.size() - 30) << "truncated";
        QTest::newRow("no archive") << QByteArray("hello") << "not a zip archive";
        QTest::newRow("a torn end") << QByteArray("PK\x05\x06junk") << "not a zip archive";
        QTest::newRow("nothing") << QByteArray() << "not a zip archive";
        QByteArray list = whole;
        list[whole.lastIndexOf("PK\x01\x02")] = 'X';
        QTest::newRow("damaged list") << list << "damaged list";
        QByteArray data = zipArchive({{"d", QByteArray(5000, 'd'), 0, 8}});
        data.replace(40, 4, "????");
        QTest::newRow("damaged data") << data << "damaged";
    }

    void hostileArchivesAreRefusedAndChangeNothing()
    {
        QFETCH(QByteArray, archive);
        QFETCH(QString, reason);
        writeFile(path("h.zip"), archive);
        writeFile(path("tmp/escaped"), "earlier");
        QVERIFY(QDir().mkpath(temp("h")));
        writeFile(temp("h/a.nicc"), "of an earlier unpacking");
        const auto before = everything();
        const Unpacked found = unpack(path("h.zip"));
        QVERIFY(!found.isDone);
        QCOMPARE(found.nicc, QString("before"));
        QCOMPARE(found.others.size(), 1);
        QCOMPARE(everything(), before);
        QVERIFY(!QFile::exists(m_outside));
        const QStringList log = m_log->take().filter("critical default:");
        QCOMPARE(log.size(), 1);
        QVERIFY2(log.first().contains(reason) && log.first().contains("refused:"), qPrintable(log.first()));
    }

    void foldersThatAreNotTheArchivesOwnAreLeftAlone_data()
    {
        QTest::addColumn<QString>("archive");
        QTest::newRow("empty base name") << ".zip";
        QTest::newRow("two dots") << "..zip";
        QTest::newRow("three dots") << "...zip";
        QTest::newRow("inside its own folder") << "tmp/own/own.zip";
    }

    void foldersThatAreNotTheArchivesOwnAreLeftAlone()
    {
        QFETCH(QString, archive);
        QVERIFY(QDir().mkpath(temp("own")));
        writeFile(path(archive), zipArchive({entry("a.nicc")}));
        writeFile(temp("precious"), "p");
        const auto before = everything();
        QVERIFY(!unpack(path(archive)).isDone);
        QVERIFY(!Tool::removeTempProConfig(path(archive)));
        QCOMPARE(everything(), before);
        QCOMPARE(m_log->take().filter("refused:").size(), 2);
    }

    void aPlantedLinkIsReplacedAndItsTargetKept()
    {
        QVERIFY(QDir().mkpath(path("victim")));
        writeFile(path("victim/precious"), "p");
        writeFile(path("l.zip"), zipArchive({entry("a.nicc", "new")}));
        QVERIFY(QFile::link(path("victim"), temp("l")));
        QVERIFY(unpack(path("l.zip")).isDone);
        QVERIFY(!QFileInfo(temp("l")).isSymLink());
        QCOMPARE(QDir(path("victim")).entryList(QDir::Files), QStringList{"precious"});
        QVERIFY(Tool::removeTempProConfig(path("l.zip")));
        QVERIFY(QFile::link(path("victim"), temp("l")));
        QVERIFY(Tool::removeTempProConfig(path("l.zip")));
        QCOMPARE(readFile(path("victim/precious")), QByteArray("p"));
    }
};

QTEST_GUILESS_MAIN(HostileArchivesTest)
#include "tst_hostilearchives.moc"
