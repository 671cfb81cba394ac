// Files replaced whole, through whatever writes them: names, links, devices, permissions, owners.

#include "support/filesizelimit.h"
#include "support/logcapture.h"
#include "support/ordinaryuser.h"
#include "support/testfiles.h"
#include <qualityutility/support/wholefile_p.h>
#include <qualityutility/tool/file/picqualityfiletool.h>
#include <suite/model/finegray.h>
#include <suite/model/graydetailpara.h>
#include <suite/model/grayeffectpara.h>

#include <sys/stat.h>

#include <QDir>
#include <QFileInfo>
#include <QJsonDocument>
#include <QTemporaryDir>
#include <QTest>

#include <functional>
#include <optional>

using Tool = PicQualityFileTool;

namespace {

using Write = std::function<bool(const QString& path)>;

const Write update = [](const QString& path) { return Tool::updateGrayStateConfig(path, {}, {}); };
const Write rewrite = [](const QString& path) { return Tool::writeFineGrayCache(path, {}, {}, {}); };
const Write writeCard = [](const QString& path) { return Tool::writeRvcardConfig(path, "{}"); };

/// A copy of the file of the same name and ".source".
const Write copy = [](const QString& path) { return Tool::copyFile(path + ".source", path); };
const Write writeLink = [](const QString& path) { return rewrite(path + ".link"); };
const Write moveOver = [](const QString& path) {
    return Support::moveWholeFile(writeFile(path + ".finished", "{}"), path);
};

struct stat status(const QString& path)
{
    struct stat found
    {};
    if (lstat(qPrintable(path), &found) != 0)
        qFatal("%s is gone", qPrintable(path));
    return found;
}

void give(const QString& path, uid_t owner, gid_t group, mode_t mode)
{
    if ((geteuid() == 0 && chown(qPrintable(path), owner, group) != 0) || chmod(qPrintable(path), mode) != 0)
        qFatal("cannot give %s away", qPrintable(path));
}

} // namespace

Q_DECLARE_METATYPE(Write)

class WholeFileTest : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_folder;
    const QString m_path = m_folder.filePath("document.json");

private Q_SLOTS:
    void whatALinkLeadsToIsUpdatedButNeverReplaced_data()
    {
        QTest::addColumn<Write>("write");
        QTest::addColumn<bool>("isFollowed");
        QTest::newRow("updater") << update << true;
        QTest::newRow("writer") << rewrite << false;
        QTest::newRow("card file") << writeCard << false;
        QTest::newRow("copy") << copy << false;
        QTest::newRow("finished file") << moveOver << false;
    }

    void whatALinkLeadsToIsUpdatedButNeverReplaced()
    {
        QFETCH(Write, write);
        QFETCH(bool, isFollowed);
        const QByteArray before("{\"a\": 1}");
        writeFile(m_path, before);
        writeFile(m_folder.filePath("link.json.source"), "{}");
        QVERIFY(QFile::setPermissions(m_path, QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup));
        const QString link = m_folder.filePath("link.json");
        QFile::remove(link);
        QVERIFY(QFile::link("document.json", link)); // a relative one
        QVERIFY(write(link));
        QCOMPARE(QFileInfo(link).isSymLink(), isFollowed);
        QCOMPARE(readFile(m_path) != before, isFollowed);
        QVERIFY(readFile(link) != before);
        QCOMPARE(QFile::permissions(m_path) & (QFile::ReadGroup | QFile::WriteGroup | QFile::ReadOther),
                 QFile::Permissions(QFile::ReadGroup));
    }

    void aNameIsTakenWholeOrNotAtAll_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("isTaken");
        QTest::newRow("as long as names can be") << m_folder.filePath(QString(255, 'n')) << true;
        QTest::newRow("longer") << m_folder.filePath(QString(256, 'n')) << false;
        QTest::newRow("empty") << QString() << false;
        QTest::newRow("with a NUL") << m_folder.filePath(QString("cut") + QChar::Null + "here") << false;
    }

    void aNameIsTakenWholeOrNotAtAll()
    {
        QFETCH(QString, name);
        QFETCH(bool, isTaken);
        LogCapture log;
        QCOMPARE(rewrite(name), isTaken);
        const QStringList lines = log.take();
        QCOMPARE(!lines.isEmpty() && lines.last().endsWith("\" open failed!!!"), !isTaken);
        QCOMPARE(update(name), isTaken);
        QVERIFY(Tool::copyFile(writeFile(m_path, "{}"), name) == isTaken);
        QVERIFY(!QFile::exists(m_folder.filePath("cut")));
    }

    void onlyFilesAreReplaced_data()
    {
        QTest::addColumn<int>("type");
        QTest::newRow("pipe") << int{S_IFIFO};
        QTest::newRow("device") << int{S_IFCHR};
    }

    void onlyFilesAreReplaced()
    {
        QFETCH(int, type);
        const QString node = m_folder.filePath("node");
        QFile::remove(node);
        struct stat null
        {};
        QCOMPARE(stat("/dev/null", &null), 0);
        if (mknod(qPrintable(node), static_cast<mode_t>(type) | 0600, null.st_rdev) != 0)
            return QTest::qSkip("only root makes devices", __FILE__,
                                __LINE__); // QSKIP is variadic, with nothing to vary
        const QString link = m_folder.filePath("link");
        QFile::remove(link);
        QVERIFY(QFile::link(node, link));
        const QString source = writeFile(m_folder.filePath("source"), "{}");
        LogCapture log;
        const bool isWritten = type == S_IFCHR; // what is written to a device is its own
        for (const QString& path : {node, link}) {
            QCOMPARE(rewrite(path), isWritten);
            QCOMPARE(writeCard(path), isWritten);
            QVERIFY(!Tool::copyFile(source, path) && !moveOver(path));
            QVERIFY(!update(path));
            QCOMPARE(log.take().last(), "critical default: file \"" + path + "\" open failed!!!");
            QCOMPARE(int(status(node).st_mode & S_IFMT), type);
            QCOMPARE(int(status(link).st_mode & S_IFMT), int{S_IFLNK});
        }
    }

    void aClosedFolderOrFileIsWrittenWhereTheOldContentIsSafe_data()
    {
        QTest::addColumn<Write>("write");
        QTest::addColumn<int>("fileMode");
        QTest::addColumn<int>("folderMode");
        QTest::addColumn<int>("limit");     ///< of the disk
        QTest::addColumn<int>("modeAfter"); ///< -1: refused
        const int room = 1000000;
        QTest::newRow("a read-only file is replaced") << rewrite << 0444 << 0755 << room << 0644;
        QTest::newRow("by a card file too") << writeCard << 0440 << 0755 << room << 0640;
        QTest::newRow("and by a copy") << copy << 0444 << 0755 << room << 0604;
        QTest::newRow("but not updated") << update << 0444 << 0755 << room << -1;
        QTest::newRow("in a closed folder a file is updated in place") << update << 0664 << 0555 << room << 0664;
        QTest::newRow("and written") << rewrite << 0600 << 0555 << room << 0600;
        QTest::newRow("but a copy needs the folder") << copy << 0644 << 0555 << room << -1;
        QTest::newRow("a copy leaves a read-only file so") << copy << 0444 << 0555 << room << -1;
        QTest::newRow("and a link cannot give way") << writeLink << 0644 << 0555 << room << -1;
        QTest::newRow("nothing is open") << rewrite << 0444 << 0555 << room << -1;
        QTest::newRow("no room to update in place") << update << 0644 << 0555 << 60 << -1;
    }

    void aClosedFolderOrFileIsWrittenWhereTheOldContentIsSafe()
    {
        QFETCH(Write, write);
        QFETCH(int, fileMode);
        QFETCH(int, folderMode);
        QFETCH(int, limit);
        QFETCH(int, modeAfter);
        const QByteArray before(limit == 60 ? 50 : 5000, 'x'); // longer than what is written, or shorter
        QTemporaryDir open;
        const QString folder = open.filePath("closed");
        const QString path = writeFile(folder + "/document.json", before);
        give(open.path(), ordinaryUser, ordinaryUser, 0755);
        give(writeFile(path + ".source", "{}"), ordinaryUser, ordinaryUser, 0604);
        QVERIFY(QFile::link(path, path + ".link"));
        give(path, ordinaryUser, ordinaryUser, static_cast<mode_t>(fileMode));
        give(folder, ordinaryUser, ordinaryUser, static_cast<mode_t>(folderMode));
        bool isWritten = false;
        {
            const OrdinaryUser user;
            const LogCapture log;
            const FileSizeLimit disk(static_cast<rlim_t>(limit));
            isWritten = write(path);
        }
        QCOMPARE(isWritten, modeAfter >= 0);
        QCOMPARE(int(status(path).st_mode & 0777), isWritten ? modeAfter : fileMode);
        give(folder, ordinaryUser, ordinaryUser, 0755);
        QCOMPARE(QDir(folder).entryList(QDir::Files | QDir::Hidden | QDir::NoSymLinks),
                 QStringList({"document.json", "document.json.source"}));
        give(path, ordinaryUser, ordinaryUser, 0644);
        QCOMPARE(readFile(path) == before, !isWritten);
        QCOMPARE(QJsonDocument::fromJson(readFile(path)).isObject(), isWritten);
    }

    void aFileStaysWhoseItWas_data()
    {
        QTest::addColumn<Write>("write");
        QTest::addColumn<bool>("asRoot");
        QTest::addColumn<bool>("isMember"); ///< of the file's group
        QTest::addColumn<int>("mode");
        QTest::addColumn<int>("modeAfter");
        QTest::newRow("root updates") << update << true << false << 0640 << 0640;
        QTest::newRow("root writes") << rewrite << true << false << 0460 << 0660;
        QTest::newRow("root moves a finished file there") << moveOver << true << false << 0640 << 0640;
        QTest::newRow("a member updates") << update << false << true << 0664 << 0664;
        QTest::newRow("a stranger to whom it is closed writes") << rewrite << false << false << 0640 << 0600;
        QTest::newRow("a stranger writes what the group may not read") << rewrite << false << false << 0604 << 0600;
        QTest::newRow("a stranger updates what is open to all") << update << false << false << 0666 << 0666;
    }

    void aFileStaysWhoseItWas()
    {
        QFETCH(Write, write);
        QFETCH(bool, asRoot);
        QFETCH(bool, isMember);
        QFETCH(int, mode);
        if (geteuid() != 0)
            return QTest::qSkip("only root gives files away", __FILE__,
                                __LINE__); // QSKIP is variadic, with nothing to vary
        constexpr uid_t owner = ordinaryUser - 1;
        constexpr gid_t group = ordinaryUser - 2;
        const QTemporaryDir folder;
        give(folder.path(), 0, 0, 0777);
        const QString path = writeFile(folder.filePath("document.json"), "{}");
        give(path, owner, group, static_cast<mode_t>(mode));
        std::optional<OrdinaryUser> user;
        if (!asRoot)
            user.emplace(QString(), std::vector<gid_t>(isMember ? 1 : 0, group));
        QVERIFY(write(path));
        const struct stat after = status(path);
        QCOMPARE(after.st_uid, asRoot ? owner : ordinaryUser);
        QCOMPARE(after.st_gid, asRoot || isMember ? group : gid_t{ordinaryUser});
        QTEST(int(after.st_mode & 0777), "modeAfter");
    }
};

QTEST_GUILESS_MAIN(WholeFileTest)
#include "tst_wholefile.moc"
