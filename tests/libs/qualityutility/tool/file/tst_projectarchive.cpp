#include "support/logcapture.h"
#include "support/testfiles.h"
#include "support/zipwriter.h"

#include <sys/resource.h>

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>
#include <qualityutility/tool/file/picqualityfiletool.h>

#include <csignal>

using Tool = PicQualityFileTool;

namespace {

ZipEntry entry(const QByteArray& name, const QByteArray& content = "x")
{
    return {name, content};
}

struct Unpacked
{
    bool isDone = false;
    QString nicc = "before";
    QString gray = "before";
    QString config = "before";
    QStringList others{"before"};
};

Unpacked unpack(const QString& archive)
{
    Unpacked result;
    result.isDone = Tool::unpackProConfig(archive, result.nicc, result.gray, result.config, result.others);
    return result;
}

} // namespace

class ProjectArchiveTest : public QObject
{
    Q_OBJECT

private:
    QString path(const QString& name) const { return m_folder->filePath(name); }
    /// A path in the temporary location, which is inside the test's folder.
    QString temp(const QString& name = {}) const { return path("tmp/" + name); }

    /// Every file below the test's folder with its content; links with their targets.
    QMap<QString, QByteArray> everything() const
    {
        QMap<QString, QByteArray> result;
        QDirIterator it(m_folder->path(), QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                        QDirIterator::Subdirectories);
        while (it.hasNext()) {
            it.next();
            const QFileInfo info = it.fileInfo();
            result.insert(info.filePath(), info.isSymLink() ? info.symLinkTarget().toUtf8()
                                           : info.isFile()  ? readFile(info.filePath())
                                                            : QByteArray("folder"));
        }
        return result;
    }

    /// What a program prints; it must succeed.
    QByteArray output(const QString& program, const QStringList& arguments) const
    {
        QProcess process;
        process.setWorkingDirectory(m_folder->path());
        process.start(program, arguments);
        if (!process.waitForFinished() || process.exitCode() != 0)
            qFatal("%s failed", qPrintable(program));
        return process.readAllStandardOutput();
    }

    void makeWithPython(const QString& archive, const QString& statements) const
    {
        output("python3", {"-c", "import zipfile,warnings\nwarnings.simplefilter('ignore')\nz = zipfile.ZipFile('" +
                                     archive + "', 'w', zipfile.ZIP_DEFLATED)\n" + statements + "\nz.close()"});
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<LogCapture> m_log;
    QTemporaryDir m_elsewhere;
    const QByteArray m_outside = m_elsewhere.filePath("escaped").toUtf8();

private Q_SLOTS:
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        QVERIFY(QDir().mkpath(temp()));
        qputenv("TMPDIR", temp().toLocal8Bit());
        m_log = std::make_unique<LogCapture>();
    }

    void cleanup()
    {
        m_log.reset();
        qunsetenv("TMPDIR");
    }

    void whatIsPackedComesBackInItsRoles()
    {
        for (const char* name : {"a.nicc", "b.gray", "c.nrf", "d.txt"})
            writeFile(path(name), QByteArray(name) + QByteArray(100000, 'x'));
        QVERIFY(Tool::packProConfig(path("site.backup.zip"), path("a.nicc"), path("b.gray"), path("c.nrf"),
                                    {path("absent"), path("d.txt")}));
        // Other implementations find it good, in the order of packing.
        QCOMPARE(output("python3", {"-c",
                                    "import sys,zipfile\nz=zipfile.ZipFile(sys.argv[1])\n"
                                    "print(z.testzip(),z.namelist())",
                                    path("site.backup.zip")}),
                 QByteArray("None ['a.nicc', 'c.nrf', 'b.gray', 'd.txt']\n"));
        QVERIFY(output("unzip", {"-tq", path("site.backup.zip")}).startsWith("No errors detected"));

        QVERIFY(QDir().mkpath(temp("site")));
        writeFile(temp("site/old.txt"), "of an earlier unpacking");
        const Unpacked found = unpack(path("site.backup.zip"));
        QVERIFY(found.isDone);
        QCOMPARE(found.nicc, temp("site/a.nicc"));
        QCOMPARE(found.gray, temp("site/b.gray"));
        QCOMPARE(found.config, temp("site/c.nrf"));
        QCOMPARE(found.others, (QStringList{"before", temp("site/d.txt")}));
        QCOMPARE(readFile(found.gray), readFile(path("b.gray")));
        QCOMPARE(QDir(temp("site")).entryList(QDir::Files).size(), 4);
        QCOMPARE(QDir(temp()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot), QStringList{"site"});
        const auto others = QFile::ReadGroup | QFile::WriteGroup | QFile::ExeGroup | QFile::ReadOther |
                            QFile::WriteOther | QFile::ExeOther;
        QVERIFY((QFile::permissions(temp("site")) & others) == 0);
        QCOMPARE(m_log->take(), QStringList());

        QVERIFY(Tool::removeTempProConfig(path("site.backup.zip")));
        QVERIFY(!QFile::exists(temp("site")));
        QVERIFY(Tool::removeTempProConfig(path("site.backup.zip")));
    }

    void missingFilesAreNamed()
    {
        QVERIFY(Tool::packProConfig(path("empty.zip"), "n", "g", "c", {"o"}));
        QCOMPARE(m_log->take(),
                 (QStringList{"info default: nicc not find \"n\"", "info default: cab config not find \"c\"",
                              "info default: gray not find \"g\""}));
        const Unpacked empty = unpack(path("empty.zip")); // an archive without files, or none at all
        QVERIFY(empty.isDone && empty.nicc == "before" && empty.others.size() == 1);
        m_log->take();
        QVERIFY(!unpack(path("absent.zip")).isDone);
        QVERIFY(QDir().mkpath(temp("absent")));
        QVERIFY(!Tool::removeTempProConfig(path("absent.zip")));
        QVERIFY(QFile::exists(temp("absent")));
        const QString line = QString("critical default: file \"%1\" can not find!!!").arg(path("absent.zip"));
        QCOMPARE(m_log->take(), (QStringList{line, line}));
    }

    void aPackThatFailsKeepsTheEarlierArchive()
    {
        writeFile(path("a.nicc"), "first");
        QVERIFY(Tool::packProConfig(path("p.zip"), path("a.nicc"), {}, {}, {}));
        const QByteArray first = readFile(path("p.zip"));
        QByteArray noise(300000, 0);
        quint32 state = 1;
        for (char& c : noise)
            c = static_cast<char>((state = state * 1664525 + 1013904223) >> 24);
        writeFile(path("big.nicc"), noise);
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit full{4096, RLIM_INFINITY};
        setrlimit(RLIMIT_FSIZE, &full);
        Tool::packProConfig(path("p.zip"), path("big.nicc"), {}, {}, {});
        const rlimit free{RLIM_INFINITY, RLIM_INFINITY};
        setrlimit(RLIMIT_FSIZE, &free);
        QCOMPARE(readFile(path("p.zip")), first);
        QVERIFY(m_log->take().last().contains("write failed!!!"));
        QCOMPARE(QDir(m_folder->path()).entryList(QDir::Hidden | QDir::AllEntries | QDir::NoDotAndDotDot),
                 (QStringList{"a.nicc", "big.nicc", "p.zip", "tmp"}));
    }

    void whatIsPackedCanBeUnpacked()
    {
        writeFile(path("real.nicc"), "content");
        QVERIFY(QFile::link(path("real.nicc"), path("link.nicc")));
        const QString archive = path("deep/er/p.zip");
        for (int i = 0; i < 2; ++i) // the second time the archive is there
            QVERIFY(Tool::packProConfig(archive, path("link.nicc"), {}, {}, {archive}));
        const Unpacked found = unpack(archive);
        QVERIFY(found.isDone && found.others.size() == 1);
        QCOMPARE(readFile(temp("p/link.nicc")), QByteArray("content"));
        const QByteArray before = readFile(archive);
        writeFile(path("back\\slash"), "x");
        m_log->take();
        Tool::packProConfig(archive, path("back\\slash"), path("real.nicc"), path("real.nicc"), {});
        QCOMPARE(readFile(archive), before);
        QVERIFY(m_log->take().first().contains("refused: not a relative path"));
    }

    void archivesOfOthersUnpack_data()
    {
        QTest::addColumn<QString>("python"); ///< statements on the archive z; or bytes
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QString>("nicc");
        QTest::addColumn<QStringList>("others");
        const QByteArray gbk = QByteArray::fromHex("b2e2cad4"); // "test" in Chinese
        QTest::newRow("upper-case suffixes") << "z.writestr('a.nicc', '1'); z.writestr('b.NICC', '2')" << QByteArray()
                                             << "a.nicc" << QStringList{"b.NICC"};
        QTest::newRow("folders, stored") << "z.writestr('f/'  , ''); z.writestr('f/g/a.nicc', '1', zipfile.ZIP_STORED)"
                                         << QByteArray() << "f/g/a.nicc" << QStringList{"f/"};
        QTest::newRow("a folder with a suffix") << "z.writestr('a.nicc', '1'); z.writestr('z.nicc/', '')"
                                                << QByteArray() << "a.nicc" << QStringList{"z.nicc/"};
        QTest::newRow("doubled slash, colon") << "z.writestr('f//a.nicc', '1'); z.writestr('1:b', '2')" << QByteArray()
                                              << "f/a.nicc" << QStringList{"1:b"};
        QTest::newRow("dots in names")
            << "z.writestr('a.b.nicc', '1'); z.writestr('...', '2'); z.writestr('.nicc.x', '')" << QByteArray()
            << "a.b.nicc" << QStringList{"...", ".nicc.x"};
        QTest::newRow("several of a role")
            << "z.writestr('a.nicc', '1'); z.writestr('b.nicc', '2')" << QByteArray() << "b.nicc" << QStringList();
        QTest::newRow("duplicate names") << "z.writestr('a.txt', '1'); z.writestr('a.txt', 'longer')" << QByteArray()
                                         << "" << QStringList{"a.txt", "a.txt"};
        QTest::newRow("UTF-8 names") << QString::fromUtf8("z.writestr('测试.nicc', '1')") << QByteArray()
                                     << QString::fromUtf8("测试.nicc") << QStringList();
        QTest::newRow("UTF-8 names without the flag")
            << "" << zipArchive({entry("\xe6\xb5\x8b.nicc")}) << QString::fromUtf8("测.nicc") << QStringList();
        QTest::newRow("GBK names") << "" << zipArchive({entry(gbk + ".nicc")}) << QString::fromUtf8("测试.nicc")
                                   << QStringList();
        QTest::newRow("no entries") << "" << zipArchive({}) << "" << QStringList();
    }

    void archivesOfOthersUnpack()
    {
        QFETCH(QString, python);
        QFETCH(QByteArray, bytes);
        QFETCH(QString, nicc);
        QFETCH(QStringList, others);
        if (python.isEmpty())
            writeFile(path("o.zip"), bytes);
        else
            makeWithPython("o.zip", python);
        const Unpacked found = unpack(path("o.zip"));
        QVERIFY(found.isDone);
        QCOMPARE(found.nicc, nicc.isEmpty() ? QString("before") : temp("o/" + nicc));
        for (QString& other : others)
            other = temp("o/" + other);
        QCOMPARE(found.others.mid(1), others);
        for (const QString& file : found.others.mid(1) + (nicc.isEmpty() ? QStringList() : QStringList{found.nicc}))
            QVERIFY2(QFile::exists(file), qPrintable(file));
        QCOMPARE(m_log->take(), QStringList());
    }

    void anArchiveOfTheZipCommandUnpacks()
    {
        writeFile(path("f/a.nicc"), "1");
        writeFile(path("f/deep/B.Gray"), "2");
        output("zip", {"-qr", "z.zip", "f"});
        const Unpacked found = unpack(path("z.zip"));
        QVERIFY(found.isDone);
        QCOMPARE(found.nicc, temp("z/f/a.nicc"));
        QVERIFY(found.others.contains(temp("z/f/deep/B.Gray")));
        QCOMPARE(readFile(temp("z/f/deep/B.Gray")), QByteArray("2"));
    }

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
        QTest::newRow("bomb") << zipArchive(bomb) << "over 256 MiB unpacked entry \"bomb2\"";
        QList<ZipEntry> many;
        for (int i = 0; i < 10'000; ++i)
            many << entry(QByteArray::number(i));
        QTest::newRow("ten thousand entries") << zipArchive(many) << "10000 entries, over 4096";
        const QByteArray whole = zipArchive({good, entry("b"), entry("c")});
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

    void aReceivingCardFileIsReplacedWhole()
    {
        QVERIFY(Tool::writeRvcardConfig(path("card.nrf"), "a longer first content"));
        QVERIFY(Tool::writeRvcardConfig(path("card.nrf"), QByteArray("b\0c", 3)));
        QCOMPARE(readFile(path("card.nrf")), QByteArray("b\0c", 3));
        QVERIFY(!Tool::writeRvcardConfig(temp(), "a folder"));
        QVERIFY(!Tool::writeRvcardConfig(path("absent/card.nrf"), "x"));
    }
};

QTEST_GUILESS_MAIN(ProjectArchiveTest)
#include "tst_projectarchive.moc"
