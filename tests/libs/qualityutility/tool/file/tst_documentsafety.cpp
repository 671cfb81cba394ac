// What happens to documents when things go wrong outside: kills, full disks, hostile content, closed folders, pipes.

#include "support/logcapture.h"
#include "support/ordinaryuser.h"
#include "support/testfiles.h"

#include <suite/model/finegray.h>
#include <suite/model/graydetailpara.h>
#include <suite/model/grayeffectpara.h>
#include <suite/model/magicgraycoeffs.h>
#include <suite/model/magicgrayparam.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QJsonDocument>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>
#include <qualityutility/tool/file/filefailures.h>
#include <qualityutility/tool/file/picqualityfiletool.h>

#include <csignal>
#include <cstdio>
#include <random>

using Tool = PicQualityFileTool;
using Model::LXY;

namespace {

constexpr char loopArgument[] = "--update-forever";
constexpr int pointsOfAMegabyte = 6000; // per channel

QList<LXY> manyPoints(int count)
{
    QList<LXY> list;
    for (int i = 0; i < count; ++i)
        list.append({i + 0.123456789, 0.1 + 1e-6 * i, 0.2 + 1e-6 * i, {}});
    return list;
}

/// What the killed process does: updates the document, each time with other values. It ends by itself if nobody kills
/// it.
int updateForever(const QString& path)
{
    Model::FineGrayAdvanceParam param;
    std::puts("ready");
    std::fflush(stdout);
    QElapsedTimer timer;
    timer.start();
    while (timer.elapsed() < 60000) {
        ++param.maxNum;
        if (!Tool::updateFineGrayCache(path, param))
            return 1;
    }
    return 0;
}

/// A limit on the size of files that this process writes, while it lives: a disk that is full.
class FileSizeLimit
{
public:
    explicit FileSizeLimit(rlim_t bytes)
    {
        std::signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &m_before);
        const rlimit limit{bytes, m_before.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit() { setrlimit(RLIMIT_FSIZE, &m_before); }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

private:
    rlimit m_before{};
};

using Write = std::function<bool(const QString& path)>;

const Write update = [](const QString& path) { return Tool::updateGrayStateConfig(path, {}, {}); };
const Write rewrite = [](const QString& path) { return Tool::writeFineGrayCache(path, {}, {}, {}); };
const Write writeCard = [](const QString& path) { return Tool::writeRvcardConfig(path, "{}"); };

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

class DocumentSafetyTest : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_folder;
    const QString m_path = m_folder.filePath("document.json");

private Q_SLOTS:
    void aKilledUpdateLeavesAWholeDocument()
    {
        const int kills = qEnvironmentVariableIsSet("QUALITYUTILITY_KILLS")
                              ? qEnvironmentVariableIntValue("QUALITYUTILITY_KILLS")
                              : 30;
        const auto points = manyPoints(pointsOfAMegabyte);
        QVERIFY(Tool::writeFineGrayCache(m_path, points, points, points));
        QVERIFY(QFile(m_path).size() > 1000000);
        QElapsedTimer timer;
        timer.start();
        QVERIFY(Tool::updateFineGrayCache(m_path, Model::FineGrayAdvanceParam()));
        // Moments spread over the first three updates of each process, however fast this machine and build are.
        std::mt19937 random(20261121);
        std::uniform_int_distribution<int> moment(1, 3 * static_cast<int>(timer.elapsed()));
        int updates = 0;
        for (int i = 0; i < kills; ++i) {
            QProcess process;
            process.start(QCoreApplication::applicationFilePath(), {loopArgument, m_path});
            QVERIFY(process.waitForReadyRead());
            QTest::qSleep(moment(random)); // the moment of the kill is what is tested
            process.kill();
            QVERIFY(process.waitForFinished());
            QJsonParseError error;
            const auto document = QJsonDocument::fromJson(readFile(m_path), &error).object();
            QCOMPARE(error.error, QJsonParseError::NoError);
            QCOMPARE(document["rMeasure"].toArray().size(), pointsOfAMegabyte);
            updates = qMax(updates, document["grayAdvance"]["maxNum"].toInt());
        }
        QVERIFY2(updates > 4, "no update ever came through: the kills proved nothing");
    }

    void aFullDiskLeavesTheOldDocument_data()
    {
        QTest::addColumn<int>("limit");
        for (const int limit : {0, 1, 4096, 16384, 16385, 100000, 1000000})
            QTest::newRow(qPrintable(QString::number(limit))) << limit;
    }

    void aFullDiskLeavesTheOldDocument()
    {
        QFETCH(int, limit);
        QDir(m_folder.path()).removeRecursively();
        QVERIFY(QDir().mkpath(m_folder.path()));
        const auto points = manyPoints(pointsOfAMegabyte);
        QVERIFY(Tool::writeFineGrayCache(m_path, points, points, points));
        const QByteArray before = readFile(m_path);
        LogCapture log;
        const FileFailures failures;
        {
            const FileSizeLimit full(static_cast<rlim_t>(limit));
            QVERIFY(!Tool::updateFineGrayCache(m_path, Model::FineGrayAdvanceParam()));
            QVERIFY(!Tool::writeFineGrayConfig(m_path, points, points, points, {}));
        }
        const QString line = "critical default: file \"" + m_path + "\" write failed!!!";
        QCOMPARE(log.take(), QStringList({line, line}));
        QCOMPARE(failures.list().size(), 2);
        QCOMPARE(failures.list().last().kind, FileFailure::Kind::WriteFailed);
        QCOMPARE(failures.list().last().reason, QString("File too large"));
        QCOMPARE(readFile(m_path), before);
        QCOMPARE(QDir(m_folder.path()).entryList(QDir::Files | QDir::Hidden), QStringList("document.json"));
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
            QSKIP("only root makes devices");
        const QString link = m_folder.filePath("link");
        QFile::remove(link);
        QVERIFY(QFile::link(node, link));
        const QString source = writeFile(m_folder.filePath("source"), "{}");
        LogCapture log;
        const bool isWritten = type == S_IFCHR; // what is written to a device is its own
        for (const QString& path : {node, link}) {
            QCOMPARE(rewrite(path), isWritten);
            QCOMPARE(writeCard(path), isWritten);
            QVERIFY(!Tool::copyFile(source, path));
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
        const Write copy = [](const QString& path) { return Tool::copyFile(QFileInfo(path).path() + ".source", path); };
        const int room = 1000000;
        QTest::newRow("a read-only file is replaced") << rewrite << 0444 << 0755 << room << 0644;
        QTest::newRow("by a card file too") << writeCard << 0440 << 0755 << room << 0640;
        QTest::newRow("and by a copy") << copy << 0444 << 0755 << room << 0604;
        QTest::newRow("but not updated") << update << 0444 << 0755 << room << -1;
        QTest::newRow("in a closed folder a file is updated in place") << update << 0664 << 0555 << room << 0664;
        QTest::newRow("and written") << rewrite << 0600 << 0555 << room << 0600;
        QTest::newRow("but a copy needs the folder") << copy << 0644 << 0555 << room << -1;
        QTest::newRow("a copy leaves a read-only file so") << copy << 0444 << 0555 << room << -1;
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
        give(writeFile(folder + ".source", "{}"), ordinaryUser, ordinaryUser, 0604);
        give(path, ordinaryUser, ordinaryUser, static_cast<mode_t>(fileMode));
        give(folder, ordinaryUser, ordinaryUser, static_cast<mode_t>(folderMode));
        const bool isWritten = asOrdinaryUser({}, [&] {
            const LogCapture log;
            const FileSizeLimit disk(static_cast<rlim_t>(limit));
            return write(path);
        });
        QCOMPARE(isWritten, modeAfter >= 0);
        QCOMPARE(int(status(path).st_mode & 0777), isWritten ? modeAfter : fileMode);
        give(folder, ordinaryUser, ordinaryUser, 0755);
        QCOMPARE(QDir(folder).entryList(QDir::Files | QDir::Hidden), QStringList("document.json"));
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
            QSKIP("only root gives files away");
        constexpr uid_t owner = ordinaryUser - 1;
        constexpr gid_t group = ordinaryUser - 2;
        const QTemporaryDir folder;
        give(folder.path(), 0, 0, 0777);
        const QString path = writeFile(folder.filePath("document.json"), "{}");
        give(path, owner, group, static_cast<mode_t>(mode));
        QVERIFY(asRoot ? write(path)
                       : asOrdinaryUser(isMember ? QList<gid_t>{group} : QList<gid_t>(), [&] { return write(path); }));
        const struct stat after = status(path);
        QCOMPARE(after.st_uid, asRoot ? owner : ordinaryUser);
        QCOMPARE(after.st_gid, asRoot || isMember ? group : gid_t{ordinaryUser});
        QTEST(int(after.st_mode & 0777), "modeAfter");
    }

    void nastyContentPassesEveryReaderAndUpdater_data()
    {
        QTest::addColumn<QByteArray>("nasty");
        QTest::addColumn<int>("red"); ///< points that the readers find; -1: the content is not taken for JSON
        const QByteArray good = R"("rMeasure": [{"lum": 1, "x": 0.3, "y": 0.3}])";
        QTest::newRow("1000 levels") << "{" + good + ", \"a\": " + QByteArray(1000, '[') + QByteArray(1000, ']') + "}"
                                     << 1;
        QTest::newRow("100000 levels") << "{" + good + ", \"a\": " + QByteArray(100000, '[') + QByteArray(100000, ']') +
                                              "}"
                                       << -1;
        QTest::newRow("unclosed levels") << QByteArray(100000, '[') << -1;
        QTest::newRow("NUL inside") << "{" + good + QByteArray(",\0\"a\": 1}", 9) << -1;
        QTest::newRow("NUL behind") << "{" + good + "}" + QByteArray(1, '\0') << -1;
        QTest::newRow("byte-order mark") << "\xEF\xBB\xBF{" + good + "}" << 1;
        QTest::newRow("invalid UTF-8") << "{" + good + ", \"a\": \"\xC3\x28\"}" << -1;
        QTest::newRow("duplicate keys") << "{\"rMeasure\": [], " + good + "}" << 1;
        QTest::newRow("huge numbers") << QByteArray(
                                             R"({"rMeasure": [{"lum": 1e308, "x": 123456789012345678901234567890}],
            "xbitType": 1e300, "magnitudes": [1e300, -1e300, 99999999999]})")
                                      << 1;
        QTest::newRow("number beyond double") << QByteArray(R"({"rMeasure": [{"lum": 1e400}]})") << -1;
        QTest::newRow("sections of other types")
            << "{" + good + R"(, "grayEffectPara": [], "grayDetailPara": 1, "mgData": "x", "grayAdvance": null})" << 1;
        QTest::newRow("a string") << QByteArray("\"text\"") << -1;
        QTest::newRow("100 MB") << "{" + good + ", \"a\": \"" + QByteArray(100 * 1000 * 1000, 'x') + "\"}" << 1;
    }

    void nastyContentPassesEveryReaderAndUpdater()
    {
        QFETCH(QByteArray, nasty);
        QFETCH(int, red);
        LogCapture log;
        writeFile(m_path, nasty);
        Model::FineGrayCoeffs tables;
        Model::GrayEffectPara effect;
        Model::GrayDetailPara detail;
        Model::MagicGrayCoeffs magic;
        Model::MagicGrayParam param;
        Model::FineGrayAdvanceParam advance;
        const auto readers = {
            std::function<bool(QList<LXY>&)>([&](QList<LXY>& list) {
                QList<LXY> other;
                return Tool::readFineGrayConfig(m_path, list, other, other, tables);
            }),
            std::function<bool(QList<LXY>&)>([&](QList<LXY>& list) {
                QList<LXY> other;
                return Tool::readFineGrayConfig(m_path, list, other, other, tables, effect, detail, magic, param);
            }),
            std::function<bool(QList<LXY>&)>([&](QList<LXY>& list) {
                QList<LXY> other;
                return Tool::readFineGrayCache(m_path, list, other, other, advance, magic);
            }),
        };
        for (const auto& read : readers) {
            QList<LXY> list = manyPoints(3);
            QVERIFY(read(list));
            QCOMPARE(list.size(), red < 0 ? 3 : red);
        }
        const auto updaters = {
            std::function<bool()>([&] { return Tool::updateGrayStateConfig(m_path, {}, {}); }),
            std::function<bool()>([&] { return Tool::updateMGGrayConfig(m_path, {}, {}); }),
            std::function<bool()>([&] { return Tool::updateFineGrayCache(m_path, Model::FineGrayAdvanceParam()); }),
            std::function<bool()>([&] { return Tool::updateFineGrayCache(m_path, Model::MagicGrayCoeffs()); }),
        };
        for (const auto& update : updaters)
            QVERIFY(update());
        const QJsonObject after = QJsonDocument::fromJson(readFile(m_path)).object();
        QCOMPARE(after.contains("rMeasure"), red >= 0); // what could not be read begins anew
        QVERIFY(after.contains("mgData") && after.contains("grayAdvance") && after.contains("wMGMeasure"));
        QCOMPARE(log.take(), QStringList());
    }
};

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    if (argc == 3 && qstrcmp(argv[1], loopArgument) == 0)
        return updateForever(QString::fromLocal8Bit(argv[2]));
    DocumentSafetyTest test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_documentsafety.moc"
