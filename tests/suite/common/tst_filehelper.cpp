#include "support/ordinaryuser.h"
#include <suite/common/filehelper.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using Common::FileHelper;

class FileHelperTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void foldersAreMadeAndDeletedWhole()
    {
        const QTemporaryDir folder;
        const QString deep = folder.filePath("a/b/c");
        QVERIFY(FileHelper::createDir(deep));
        QVERIFY(FileHelper::createDir(deep));
        QFile hidden(deep + "/.hidden");
        QVERIFY(hidden.open(QIODevice::WriteOnly));
        QVERIFY(FileHelper::deleteDir(folder.filePath("a/")));
        QVERIFY(!QFile::exists(folder.filePath("a")));
        QVERIFY(FileHelper::deleteDir(folder.filePath("a")));
    }

    void linksAreDeletedAndNotFollowed()
    {
        const QTemporaryDir folder;
        QVERIFY(QDir().mkpath(folder.filePath("victim/kept")) && QDir().mkpath(folder.filePath("d")));
        QVERIFY(QFile::link(folder.filePath("victim"), folder.filePath("d/inner")));
        QVERIFY(QFile::link(folder.filePath("victim"), folder.filePath("link")));
        QVERIFY(QFile::link(folder.filePath("absent"), folder.filePath("dangling")));
        for (const char* name : {"d", "link/", "dangling"})
            QVERIFY(FileHelper::deleteDir(folder.filePath(name)));
        QCOMPARE(QDir(folder.path()).entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot),
                 QStringList{"victim"});
        QVERIFY(QFile::exists(folder.filePath("victim/kept")));
    }

    void foldersClosedToTheirOwnerAreDeletedToo()
    {
        const QTemporaryDir folder;
        const OrdinaryUser user(folder.path());
        const QString closed = folder.filePath("a/closed");
        QVERIFY(QDir().mkpath(closed + "/b") && QFile::link(folder.path(), closed + "/link"));
        QVERIFY(QFile::setPermissions(closed, QFile::ReadOwner) && QFile::setPermissions(folder.filePath("a"), {}));
        QVERIFY(FileHelper::deleteDir(folder.filePath("a")));
        QVERIFY(!QFile::exists(folder.filePath("a")) && QFile::exists(folder.path()));
    }

    void whatIsNoFolderIsRefused()
    {
        const QTemporaryDir folder;
        QFile file(folder.filePath("file"));
        QVERIFY(file.open(QIODevice::WriteOnly));
        QVERIFY(!FileHelper::deleteDir(file.fileName()) && file.exists());
        QVERIFY(!FileHelper::deleteDir({}) && !FileHelper::deleteDir("/"));
        QVERIFY(!FileHelper::createDir({}) && !FileHelper::createDir(folder.filePath("file/inside")));
    }
};

QTEST_APPLESS_MAIN(FileHelperTest)
#include "tst_filehelper.moc"
