#include "support/archivefolder.h"
#include "support/ordinaryuser.h"
#include <qualityutility/tool/file/projectarchive_p.h>
#include <qualityutility/tool/file/temporaryfolder_p.h>

#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <QCryptographicHash>
#include <QDir>
#include <QProcess>

#include <csignal>
#include <future>

using Tool = PicQualityFileTool;

namespace {

/// An archive with a comment of the greatest length, in which there is what looks like an end record.
QByteArray commented(QByteArray archive)
{
    archive.replace(archive.size() - 2, 2, "\xff\xff");
    return archive + zipArchive({}) + QByteArray(0xffff - 22, '-');
}

mode_t modeOf(const QString& path)
{
    struct stat info
    {};
    return ::stat(QFile::encodeName(path).constData(), &info) == 0 ? info.st_mode & 07777 : 0;
}

} // namespace

class ProjectArchiveTest : public QObject, private ArchiveFolder
{
    Q_OBJECT

private:
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

private Q_SLOTS:
    void init() { makeFolder(); }
    void cleanup() { removeFolder(); }

    void whatIsPackedComesBackInItsRoles()
    {
        const QString further = QString::fromUtf8("测.txt");
        for (const QString& name : {QString("a.nicc"), QString("b.gray"), QString("c.nrf"), further})
            writeFile(path(name), name.toUtf8() + QByteArray(100000, 'x'));
        QVERIFY(Tool::packProConfig(path("site.backup.zip"), path("a.nicc"), path("b.gray"), path("c.nrf"),
                                    {path("absent"), path(further)}));
        // Other implementations find it good, in the order of packing.
        QCOMPARE(output("python3", {"-c",
                                    "import sys,zipfile\nz=zipfile.ZipFile(sys.argv[1])\n"
                                    "print(z.testzip(),ascii(z.namelist()))",
                                    path("site.backup.zip")}),
                 QByteArray("None ['a.nicc', 'c.nrf', 'b.gray', '\\u6d4b.txt']\n"));
        QVERIFY(output("unzip", {"-tq", path("site.backup.zip")}).startsWith("No errors detected"));

        QVERIFY(QDir().mkpath(temp("site")));
        writeFile(temp("site/old.txt"), "of an earlier unpacking");
        const Unpacked found = unpack(path("site.backup.zip"));
        QVERIFY(found.isDone);
        QCOMPARE(found.nicc, temp("site/a.nicc"));
        QCOMPARE(found.gray, temp("site/b.gray"));
        QCOMPARE(found.config, temp("site/c.nrf"));
        QCOMPARE(found.others, (QStringList{"before", temp("site/" + further)}));
        QCOMPARE(readFile(found.gray), readFile(path("b.gray")));
        QCOMPARE(QDir(temp("site")).entryList(QDir::Files).size(), 4);
        QCOMPARE(QDir(temp()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot), QStringList{"site"});
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
        QVERIFY(QDir(temp()).removeRecursively()); // of which Qt makes the root
        QVERIFY(!unpack(path("empty.zip")).isDone && !Tool::removeTempProConfig(path("empty.zip")));
        QCOMPARE(m_log->take().filter("no temporary folder can be made").size(), 2);
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
        const QString name(251, 'n'); // with its suffix as long as a name can be
        const QString archive = path("deep/er/" + name + ".zip");
        for (int i = 0; i < 2; ++i) { // the second time the archive is there, and private
            QVERIFY(Tool::packProConfig(archive, path("link.nicc"), {}, {}, {archive}));
            QCOMPARE(modeOf(archive), i == 0 ? modeOf(path("real.nicc")) : mode_t{0600});
            QVERIFY(QFile::setPermissions(archive, QFile::ReadOwner | QFile::WriteOwner));
        }
        const Unpacked found = unpack(archive);
        QVERIFY(found.isDone && found.others.size() == 1);
        QCOMPARE(readFile(temp(name + "/link.nicc")), QByteArray("content"));
        const QByteArray before = readFile(archive);
        writeFile(path("back\\slash"), "x");
        m_log->take();
        Tool::packProConfig(archive, path("back\\slash"), path("real.nicc"), path("real.nicc"), {});
        QCOMPARE(readFile(archive), before);
        QVERIFY(m_log->take().first().contains("write failed!!! not a relative path entry \"back"));
    }

    void sizeIsLimitedByTheDiskAndByTheArchive()
    {
        const QString archive = path("p.zip");
        const QStringList files{writeFile(path("zeros.nicc"), QByteArray(500'000, '\0'))};
        ArchiveLimits limits;
        limits.freeBytes = 400'000;
        const auto refusal = ProjectArchive::pack(archive, files, limits);
        QVERIFY(refusal && refusal->reason.contains("do not fit into the archive's folder"));
        QVERIFY(!QFile::exists(archive));
        QVERIFY(!ProjectArchive::pack(archive, files)); // no limit of its own
        QFile packed(archive);
        QVERIFY(packed.open(QIODevice::ReadOnly));
        ArchiveListing listing;
        QVERIFY(checkArchive(packed, listing, limits)->reason.contains("do not fit into the temporary folder"));
        limits = {};
        limits.harmlessBytes = 400'000;
        QVERIFY(checkArchive(packed, listing, limits)->reason.contains("over 200 times"));
        packed.close();
        QVERIFY(!ProjectArchive::pack(archive, files, limits)); // whoever packs it can unpack it
        QVERIFY(packed.open(QIODevice::ReadOnly));
        QVERIFY(!checkArchive(packed, listing, limits));
        QCOMPARE(listing.sizes.value("zeros.nicc"), quint64{500'000});
    }

    void whatKilledProcessesLeftGoes()
    {
        const QString beside =
            temp(".unpacking-" + QCryptographicHash::hash("o", QCryptographicHash::Sha1).toHex()); // of o.zip
        writeFile(beside + "-abc123/a.nicc", "half");
        writeFile(beside + "-old/a.nicc", "earlier");
        writeFile(temp(".unpacking-ff.lock"), {}); // of another archive
        writeFile(temp(".unpacking-ff-abc123/a.nicc"), "half");
        const QString locked = writeFile(path(".packing-000000"), "at work");
        QFile owner(locked);
        QVERIFY(owner.open(QIODevice::ReadOnly) && ::flock(owner.handle(), LOCK_EX) == 0);
        for (const char* name : {".packing-abc123", ".packing-of-mine"})
            writeFile(path(name), "left");
        writeFile(path("o.zip"), "no archive");
        QVERIFY(!unpack(path("o.zip")).isDone);
        const auto all = QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot;
        QCOMPARE(QDir(temp()).entryList(all), QStringList{"o"});
        QCOMPARE(readFile(temp("o/a.nicc")), QByteArray("earlier"));
        QVERIFY(Tool::packProConfig(path("o.zip"), {}, {}, {}, {}));
        QCOMPARE(QDir(m_folder->path()).entryList(all),
                 (QStringList{".packing-000000", ".packing-of-mine", "o.zip", "tmp"}));
    }

    void oneUnpackingOfANameAtATime()
    {
        writeFile(path("o.zip"), zipArchive({entry("a.nicc")}));
        {
            const TemporaryFolder held(temp("o"), 0);
            QVERIFY(!ProjectArchive::unpack(path("o.zip"), 0));
            QVERIFY(m_log->take().first().contains("another process is using"));
            QVERIFY(ProjectArchive::unpack(writeFile(path("p.zip"), zipArchive({})), 0));
        }
        const auto unpackIt = [this] { return unpack(path("o.zip")).isDone; };
        auto other = std::async(std::launch::async, unpackIt);
        const bool isDone = unpackIt();
        QVERIFY(other.get() && isDone);
        QCOMPARE(QDir(temp("o")).entryList(QDir::Files), QStringList{"a.nicc"});
        QCOMPARE(m_log->take(), QStringList());
    }

    void permissionsAreThoseOfNewFilesAtMost_data()
    {
        QTest::addColumn<quint32>("packed");
        QTest::addColumn<quint32>("mask");
        QTest::addColumn<quint32>("found");
        QTest::newRow("write only") << 0222u << 022u << 0600u;
        QTest::newRow("execute only") << 0111u << 022u << 0600u;
        QTest::newRow("for everybody") << 0777u << 077u << 0600u;
        QTest::newRow("as usual") << 0644u << 022u << 0644u;
        QTest::newRow("private") << 0600u << 022u << 0600u;
        QTest::newRow("nothing said") << 0u << 022u << 0644u;
    }

    void permissionsAreThoseOfNewFilesAtMost()
    {
        QFETCH(quint32, packed);
        QFETCH(quint32, mask);
        QFETCH(quint32, found);
        const QByteArray archive = zipArchive({{"f/", "", 0, 0, 0040555},
                                               {"f/a.nicc", "1", 0, 0, packed == 0 ? 0 : 0100000 | packed},
                                               {"f/a.nicc", "2", 0, 0, packed == 0 ? 0 : 0100000 | packed}});
        const QString file = writeFile(path("o.zip"), archive);
        QVERIFY(::chmod(QFile::encodeName(m_folder->path()).constData(), 0711) == 0);
        const OrdinaryUser user(temp());
        const mode_t earlier = ::umask(mask);
        const bool isDone = unpack(file).isDone && unpack(file).isDone;
        ::umask(earlier);
        QVERIFY2(isDone, qPrintable(m_log->take().join(QChar(10))));
        QCOMPARE(modeOf(temp("o/f/a.nicc")), found);
        QCOMPARE(readFile(temp("o/f/a.nicc")), QByteArray("2"));
        QVERIFY(Tool::removeTempProConfig(file));
        QCOMPARE(m_log->take(), QStringList());
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
        QTest::newRow("a comment of 64 KiB")
            << "" << commented(zipArchive({entry("a.nicc")})) << "a.nicc" << QStringList();
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
