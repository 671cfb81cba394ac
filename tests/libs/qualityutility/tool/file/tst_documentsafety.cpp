// What happens to documents when things go wrong outside: kills, full disks, hostile content.

#include "support/filesizelimit.h"
#include "support/grayrecords.h"
#include "support/logcapture.h"
#include "support/testfiles.h"
#include <qualityutility/tool/file/filefailures.h>
#include <qualityutility/tool/file/picqualityfiletool.h>
#include <suite/model/finegray.h>
#include <suite/model/graydetailpara.h>
#include <suite/model/grayeffectpara.h>
#include <suite/model/magicgraycoeffs.h>
#include <suite/model/magicgrayparam.h>

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QJsonDocument>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

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

} // namespace

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
        QVERIFY(QDir(m_folder.path()).entryList(QDir::Files | QDir::Hidden).size() <= 2); // one is cleared by the next
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

    void aDocumentBeyondTheLimitIsLeftAlone()
    {
        const QString path = writeFile(m_folder.filePath("large.json"), "{}");
        constexpr qint64 limit = qint64{256} * 1024 * 1024;
        QVERIFY(QFile::resize(path, limit + 1)); // a hole: it takes no room
        QList<LXY> list = pointList(2, 5);
        Model::FineGrayAdvanceParam param;
        LogCapture log;
        QVERIFY(!Tool::readFineGrayCache(path, list, list, list, param));
        QVERIFY(!Tool::updateFineGrayCache(path, advance(1)));
        const QString line = "critical default: file \"" + path + "\"  invalid!!!";
        QCOMPARE(log.take(), QStringList({line, line}));
        QCOMPARE(QFileInfo(path).size(), limit + 1);
        QVERIFY(QFile::resize(path, 100));
        QVERIFY(Tool::readFineGrayCache(path, list, list, list, param));
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
