#include "support/filesizelimit.h"
#include "support/testfiles.h"
#include <calibration/output.h>
#include <calibration/stagefolder.h>

#include <sys/stat.h>

#include <QTemporaryDir>
#include <QTest>

using namespace Calibration;
using Common::Fault;

class OutputsTest : public QObject
{
    Q_OBJECT

private:
    QString in(const QString& name) const { return m_folder->filePath(name); }
    QStringList names() const
    {
        return QDir(m_folder->path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    const QString m_unsayable = QString("name ") + QChar(QChar::ReplacementCharacter);

private Q_SLOTS:
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        writeFile(in("file"), "earlier");
        QVERIFY(QDir().mkdir(in("folder")) && ::mkfifo(qPrintable(in("pipe")), 0600) == 0);
        QVERIFY(QFile::link("file", in("link")) && QFile::link("nothing", in("dangling")));
    }

    void aFileIsMadeWhereThereIsRoom_data()
    {
        QTest::addColumn<bool>("isNew");
        QTest::addColumn<bool>("isForced"); ///< possible with force
        QTest::newRow("new") << true << true;
        QTest::newRow("file") << false << true;
        QTest::newRow("link") << false << true;
        QTest::newRow("dangling") << false << true;
        QTest::newRow("folder") << false << false;
        QTest::newRow("pipe") << false << false;
        QTest::newRow(qPrintable(m_unsayable)) << false << false;
        QTest::newRow("/dev/null") << true << true; // written through
    }

    void aFileIsMadeWhereThereIsRoom()
    {
        const QString tag = QString::fromUtf8(QTest::currentDataTag());
        const QString path = tag.startsWith('/') ? tag : in(tag);
        QFETCH(bool, isForced);
        QTEST(bool(requireNewFile(path, false)), "isNew");
        QCOMPARE(bool(requireNewFile(path, true)), isForced);
        const auto written = writeOutput(path, "new");
        QCOMPARE(bool(written), isForced);
        if (!isForced)
            QVERIFY(written.fault().kind == Fault::Kind::CannotCreate);
        else if (path != tag)
            QCOMPARE(readFile(path), QByteArray("new"));
        QCOMPARE(QFileInfo(in("link")).isSymLink() && QFileInfo(in("dangling")).isSymLink(), true);
        QCOMPARE(isRegularFile(in("pipe")), false);
    }

    void aFolderIsMadeWithItsParents()
    {
        QVERIFY(makeFolder(in("x/y/z")) && QFileInfo(in("x/y/z")).isDir() && makeFolder(in("folder")));
        QVERIFY(makeFolder("").fault().kind == Fault::Kind::Usage);
        QCOMPARE(makeFolder(in("file")).fault().message(), in("file") + ": expected a folder, found a file");
        QCOMPARE(makeFolder(in("file/x")).fault().message(), in("file/x") + ": the folder cannot be made");
        QVERIFY(makeFolder(in(m_unsayable)).fault().kind == Fault::Kind::CannotCreate);
    }

    void filesOfAFolderAreReplacedAllOrNone_data()
    {
        QTest::addColumn<QString>("second");
        QTest::addColumn<int>("room"); ///< bytes of a file
        QTest::newRow("both have a place") << "second" << 1000;
        QTest::newRow("no room for the second") << "second" << 100;
        QTest::newRow("a folder in its way") << "folder" << 1000;
    }

    void filesOfAFolderAreReplacedAllOrNone()
    {
        QFETCH(QString, second);
        QFETCH(int, room);
        const bool isPossible = second == "second" && room == 1000;
        const auto before = names();
        {
            const FileSizeLimit limit(static_cast<rlim_t>(room));
            const auto written = writeTogether(m_folder->path(), {{"file", "new"}, {second, QByteArray(500, 'x')}});
            QCOMPARE(bool(written), isPossible);
            QVERIFY(isPossible || written.fault().subject == in(second));
        }
        QCOMPARE(readFile(in("file")), QByteArray(isPossible ? "new" : "earlier"));
        QCOMPARE(names().size(), before.size() + (isPossible ? 1 : 0));
    }

    void aStageGoesWithItsOwnerAndWhatKilledOnesLeft()
    {
        writeFile(in(".qualityctl-1/part"), "left by a killed process");
        const auto before = names();
        {
            const auto stage = StageFolder::make(m_folder->path());
            const auto other = StageFolder::make(m_folder->path());
            QVERIFY(stage && other && QFileInfo((*stage)->path()).isDir()); // one at work is not taken for abandoned
            QVERIFY(!QFile::exists(in(".qualityctl-1")));
            QVERIFY((*stage)->makeFolder("x") && !(*stage)->makeFolder("x"));
        }
        QCOMPARE(names().size(), before.size() - 1);
        QVERIFY(StageFolder::make(in("absent")).fault().kind == Fault::Kind::InputOutput);
        QString kept;
        {
            const auto stage = StageFolder::make(m_folder->path());
            (*stage)->keep();
            kept = (*stage)->path();
        }
        QVERIFY(QFileInfo(kept).isDir() && QFileInfo(kept).fileName().startsWith("kept-"));
    }

    void movesAreTakenBackUnlessKept_data()
    {
        QTest::addColumn<QString>("place"); ///< in the folder
        QTest::addColumn<bool>("isKept");
        QTest::newRow("kept") << "" << true;
        QTest::newRow("taken back") << "" << false;
        QTest::newRow("a name with a place for arguments") << "50%2" << false;
    }

    void movesAreTakenBackUnlessKept()
    {
        QFETCH(QString, place);
        QFETCH(bool, isKept);
        const QString folder = in(place);
        const auto at = [&](const char* name) { return QDir(folder).filePath(name); };
        writeFile(at("file"), "earlier");
        QVERIFY(QFile::setPermissions(at("file"), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
        const auto mode = QFile::permissions(at("file"));
        {
            const auto stage = StageFolder::make(folder);
            NewFolders folders;
            folders.note(at("deep/er"));
            QVERIFY(stage && makeFolder(at("deep/er")));
            FileMoves moves(**stage);
            for (const char* name : {"file", "deep/er/new"})
                QVERIFY(moves.move(writeFile((*stage)->path() + "/made", "new"), at(name), true));
            const QString third = writeFile((*stage)->path() + "/made", "new");
            QVERIFY(!moves.move(third, at("file"), false) && !moves.move(third, at("deep"), true));
            if (isKept) {
                moves.keep();
                folders.keep();
            }
        }
        QCOMPARE(readFile(at("file")), QByteArray(isKept ? "new" : "earlier"));
        QCOMPARE(QFile::permissions(at("file")), mode);
        QCOMPARE(QFile::exists(at("deep/er/new")), isKept);
        QCOMPARE(QFile::exists(at("deep")), isKept);
    }
};

QTEST_GUILESS_MAIN(OutputsTest)
#include "tst_outputs.moc"
