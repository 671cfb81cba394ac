#include "support/logcapture.h"
#include "support/testfiles.h"
#include <qualityutility/resource/picqualityresource.h>

#include <sys/resource.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QResource>
#include <QTemporaryDir>
#include <QTest>
#include <QTextCodec>

#include <csignal>

using Resource = PicQualityResource;

namespace {

constexpr char hostArgument[] = "--host";
constexpr char writerArgument[] = "--writer";

/// What a host in miniature does: starts, writes back what it is told, and prints what it holds. Log lines go to its
/// stderr.
int runHost(const QStringList& arguments)
{
    const QString ownResources = qEnvironmentVariable("HOST_RESOURCES");
    if (!ownResources.isEmpty())
        QResource::registerResource(ownResources);
    Resource& resource = *Resource::getInstance();
    if (const int limit = qEnvironmentVariableIntValue("FILE_SIZE_LIMIT")) {
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit full{static_cast<rlim_t>(limit), RLIM_INFINITY};
        setrlimit(RLIMIT_FSIZE, &full);
    }
    if (arguments.size() > 0)
        resource.setFreq(arguments.at(0).toFloat());
    if (arguments.size() > 1)
        resource.setLastOpenPath(arguments.at(1));
    bool isCustom = false;
    int kelvin = 0;
    resource.getCusColorT(isCustom, kelvin);
    const bool isLoaded = resource.initResourceFile();
    const QJsonObject state{{"freq", static_cast<double>(resource.getFreq())},
                            {"path", resource.getLastOpenPath()},
                            {"grayMaxWCom", resource.getGrayMaxWCom()},
                            {"kelvin", kelvin},
                            {"speed", resource.settings().speed},
                            {"loaded", isLoaded},
                            {"whiteNumbers", resource.whiteGrayTable().size()},
                            {"cache", resource.getFineGrayCacheFile()}};
    std::fputs(QJsonDocument(state).toJson().constData(), stdout);
    Resource::releaseInstance();
    if (!ownResources.isEmpty())
        QResource::unregisterResource(ownResources);
    return 0;
}

/// A host that writes one key back many times and looks for it in the file each time. Gives how often it was not there.
int runWriter(const QString& key)
{
    Resource& resource = *Resource::getInstance();
    int lost = 0;
    for (int i = 1; i <= 40; ++i) {
        const bool isFreq = key == "Freq";
        if (isFreq)
            resource.setFreq(static_cast<float>(i));
        else
            resource.setLastOpenPath(QString::number(i));
        const QString line = QString("%1=%2%3\n").arg(key).arg(i).arg(isFreq ? ".00" : "");
        lost += readFile(resource.getSettingsFile()).contains(line.toLatin1()) ? 0 : 1;
    }
    return lost;
}

struct Started
{
    int exitCode = -1;
    QJsonObject state;
    QString log;
};

} // namespace

class PicQualityResourceTest : public QObject
{
    Q_OBJECT

private:
    QString inHost(const QString& path) const { return m_folder->filePath("host/" + path); }
    QString inData(const QString& path) const { return m_folder->filePath("company/qualityadjust/data/" + path); }
    QString settingsFile() const { return inHost("qualityadjust_config/picqualityconfigfile.ini"); }

    /// Starts a host in a folder of its own.
    Started start(const QStringList& arguments = {}, int fileSizeLimit = 0) const
    {
        QProcess process;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("SUITE_COMPANY_DIR", m_folder->filePath("company"));
        environment.insert("LC_ALL", "C.UTF-8"); // arguments may be Chinese
        if (fileSizeLimit > 0)
            environment.insert("FILE_SIZE_LIMIT", QString::number(fileSizeLimit));
        process.setProcessEnvironment(environment);
        process.start(inHost("app"), QStringList(hostArgument) + arguments);
        if (!process.waitForFinished(30000))
            qFatal("the host does not end");
        const bool isNormal = process.exitStatus() == QProcess::NormalExit;
        return {isNormal ? process.exitCode() : -1, QJsonDocument::fromJson(process.readAllStandardOutput()).object(),
                QString::fromUtf8(process.readAllStandardError())};
    }

    /// The settings after reading `content` as a settings file, from the initial values.
    PicQualitySettings settingsOf(const QByteArray& content)
    {
        Resource::releaseInstance();
        const QString path = m_folder->filePath("settings.ini");
        writeFile(path, content);
        if (!Resource::getInstance()->parsePicqualityConfigFile(path))
            qFatal("the settings were not read");
        return Resource::getInstance()->settings();
    }

    QScopedPointer<QTemporaryDir> m_folder;
    QScopedPointer<LogCapture> m_log; // keeps the many lines of loading off the terminal

private Q_SLOTS:
    void init()
    {
        m_folder.reset(new QTemporaryDir);
        m_log.reset(new LogCapture);
        qputenv("SUITE_COMPANY_DIR", m_folder->filePath("company-here").toLocal8Bit());
        writeFile(inHost("qualityadjust/defaultcolorgamut.cfg"), "gamuts 1");
        QVERIFY(QFile::copy(QCoreApplication::applicationFilePath(), inHost("app")));
    }

    void cleanup()
    {
        Resource::releaseInstance();
        m_log.reset();
    }

    void aStartPreparesTheDataFolder()
    {
        const Started first = start();
        QCOMPARE(first.exitCode, 0);
        QCOMPARE(first.state["cache"].toString(), inData("grayCache.gray"));
        QVERIFY(first.state["loaded"].toBool());
        QVERIFY2(first.log.contains("file " + settingsFile() + " not exist!!!"), qPrintable(first.log));
        QCOMPARE(readFile(inData("defaultcolorgamut.cfg")), QByteArray("gamuts 1"));

        const QStringList transfers{"niccpath.nicc", "graypath.gray", "rvCardConfig.nrf", "coeffsPackConfig.nrf"};
        for (const QString& name : transfers)
            writeFile(inData(name), "stale");
        writeFile(inData("grayCache.gray"), "kept");
        writeFile(inData("grayCachetemp.gray"), "kept");
        writeFile(inHost("qualityadjust/defaultcolorgamut.cfg"), "gamuts 2");
        QCOMPARE(start().exitCode, 0);
        for (const QString& name : transfers)
            QVERIFY2(!QFile::exists(inData(name)), qPrintable(name));
        QCOMPARE(readFile(inData("grayCache.gray")), QByteArray("kept"));
        QCOMPARE(readFile(inData("grayCachetemp.gray")), QByteArray("kept"));
        QCOMPARE(readFile(inData("defaultcolorgamut.cfg")), QByteArray("gamuts 1"));
    }

    void aHostileStartIsSurvived_data()
    {
        QTest::addColumn<QString>("path"); ///< in the test's folder; ending in "/": a folder
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<int>("speed");
        QTest::addColumn<bool>("isLogged");
        const QString settings = "host/qualityadjust_config/picqualityconfigfile.ini";
        QByteArray garbage;
        for (int i = 0; i < 100000; ++i)
            garbage.append(static_cast<char>(i * 7919 % 251));
        QTest::newRow("nothing there") << "other" << QByteArray() << 1 << true;
        QTest::newRow("data folder's place is a file") << "company" << QByteArray("x") << 1 << true;
        QTest::newRow("settings are a folder") << settings + "/x/" << QByteArray() << 1 << true;
        QTest::newRow("garbage") << settings << garbage << 1 << false;
        QTest::newRow("10 MB of one line") << settings << QByteArray(10000000, 'x') << 1 << false;
        QTest::newRow("a line without =")
            << settings << QByteArray("[Colorimeter410]\nnonsense\nSpeed=7\n") << 7 << false;
        QTest::newRow("does not convert") << settings << QByteArray("[Colorimeter410]\nSpeed=fast\n") << 0 << false;
    }

    void aHostileStartIsSurvived()
    {
        QFETCH(QString, path);
        QFETCH(QByteArray, content);
        QFETCH(bool, isLogged);
        if (path.endsWith('/'))
            QVERIFY(QDir().mkpath(m_folder->filePath(path)));
        else
            writeFile(m_folder->filePath(path), content);
        const Started host = start({"50"});
        QCOMPARE(host.exitCode, 0);
        QCOMPARE(host.state["freq"].toDouble(), 50.0);
        QTEST(host.state["speed"].toInt(), "speed");
        QVERIFY(host.state["loaded"].toBool());
        QCOMPARE(host.log.contains("not exist!!!"), isLogged);
        if (isLogged)
            QVERIFY(!QFileInfo(settingsFile()).isFile()); // not made by the write-back
    }

    void writeBackKeepsWhatItDoesNotKnow()
    {
        const QByteArray chinese = QTextCodec::codecForName("GB2312")->fromUnicode(QString::fromUtf8("屏幕"));
        const QByteArray before = "; kept\n[Unknown]\nName=" + chinese + "\nList=1, 2\n[Colorimeter410]\nFreq=";
        const QByteArray after = " ; Hz\nSpeed=7\n\n";
        writeFile(settingsFile(), before + "50" + after);
        const QString path = QString::fromUtf8("/数据/图像, 1");
        QCOMPARE(start({"59.996", path}).exitCode, 0);
        QCOMPARE(readFile(settingsFile()),
                 before + "60.00" + after + "\n[LastOpenPath]\nOpenPath=\"/" +
                     QTextCodec::codecForName("GB2312")->fromUnicode(QString::fromUtf8("数据/图像, 1\"\n")));
        const Started again = start();
        QCOMPARE(again.state["freq"].toDouble(), 60.0);
        QCOMPARE(again.state["path"].toString(), path);
        QCOMPARE(again.state["speed"].toInt(), 7);
    }

    void twoProcessesLoseNothingOfEachOther()
    {
        writeFile(settingsFile(), "[Colorimeter410]\nFreq=0\n[LastOpenPath]\nOpenPath=0\n");
        QProcess writers[2];
        for (QProcess& writer : writers)
            writer.start(inHost("app"), {writerArgument, &writer == writers ? "Freq" : "OpenPath"});
        for (QProcess& writer : writers) {
            QVERIFY(writer.waitForFinished(30000));
            QCOMPARE(writer.exitStatus(), QProcess::NormalExit);
            QCOMPARE(writer.exitCode(), 0);
            QVERIFY(!writer.readAllStandardError().contains("write failed"));
        }
        QCOMPARE(readFile(settingsFile()), QByteArray("[Colorimeter410]\nFreq=40.00\n[LastOpenPath]\nOpenPath=40\n"));
        QCOMPARE(QFileInfo(settingsFile()).dir().entryList(QDir::Files | QDir::Hidden).size(), 1);
    }

    void aFullDiskLeavesTheSettings_data()
    {
        QTest::addColumn<int>("limit");
        for (const int limit : {1, 100, 4096, 16384})
            QTest::newRow(qPrintable(QString::number(limit))) << limit;
    }

    void aFullDiskLeavesTheSettings()
    {
        QFETCH(int, limit);
        QByteArray content = "[Colorimeter410]\nFreq=50\n[Unknown]\n";
        for (int i = 0; i < 2000; ++i)
            content += "Key" + QByteArray::number(i) + "=value\n";
        writeFile(settingsFile(), content);
        const Started host = start({"75"}, limit);
        QCOMPARE(host.exitCode, 0);
        QCOMPARE(host.state["freq"].toDouble(), 75.0);
        QCOMPARE(readFile(settingsFile()), content);
        QVERIFY2(host.log.contains("file \"" + settingsFile() + "\" write failed!!!"), qPrintable(host.log));
        QCOMPARE(QFileInfo(settingsFile()).dir().entryList(QDir::Files | QDir::Hidden),
                 QStringList("picqualityconfigfile.ini"));
    }

    void everyKeyReachesItsValue()
    {
        const PicQualitySettings s = settingsOf(
            "[NetWorkTimeOut]\nCustomTimeout=2\n[LastOpenPath]\nOpenPath=/x\n[FineGray]\nGrayAdvanceState=false\n"
            "[MaxWCom]\nGrayMaxWCom=5\nCustomColorCoordinate=true\nColorTemp=7000\nxCom=0.3\nyCom=0.4\n"
            "[Colorimeter410]\nFreqMode=6\nFreq=59.5\nSpeed=7\nLvMode=8\nDisplayMode=9\nChannelNO=10\nFreqList=50, 60\n"
            "[MagicGray]\nMagicGrayState=false\nMinGain=11\nMaxGain=12\nGainConfigUse=true\nLCCPWMComGainLUTLayerNum="
            "13\n"
            "CurrentControlPWMRangeBit=14\nDataOutputlength=15\nLimitMinRatio=0.16\nMinPos=17\nPowerPara=1.8\nKPara=1."
            "9\n"
            "ColorCorrentEn=20\nColorCorr_Mode=21\nBaseScaleBit=22\nCompenCoefBit=23\nWCompLUTLimitLength=24\n"
            "CurrentLimitLength=25\nRGBCompLUTLimitLength=26\nMeasureWaitTime=27\nWhiteCTCEN=28\nCTCnums="
            "29\nCTCstepWei=30\n"
            "MinLayerSet=31\n[ABLParam]\nDefaultMAXLum=900\nPeakBrightnessScale=0.25\n[ColourGamut]\nDefaultCoeff=0."
            "5\n");
        QCOMPARE(s.customTimeout, 2);
        QCOMPARE(s.lastOpenPath, "/x");
        QVERIFY(!s.grayAdvanceState && s.customColorCoordinate && !s.magicGrayState && s.magicGray.getGainConfigUse());
        QCOMPARE(QList<int>({s.grayMaxWCom, s.colorTemp, s.freqMode, s.speed, s.lvMode, s.displayMode, s.channelNo,
                             s.measureWaitTime, s.defaultMaxLum}),
                 QList<int>({5, 7000, 6, 7, 8, 9, 10, 27, 900}));
        QCOMPARE(QList<double>({s.xCom, s.yCom, static_cast<double>(s.freq), s.peakBrightnessScale,
                                static_cast<double>(s.defaultCoeff)}),
                 QList<double>({0.3, 0.4, 59.5, 0.25, 0.5}));
        QCOMPARE(s.freqList, QStringList({"50 HZ", "60 HZ"}));
        const Model::MagicGrayParam& m = s.magicGray;
        QCOMPARE(QList<int>({m.getMinGain(), m.getMaxGain(), m.getPWMLutLayerNum(), m.getPWMRangeBit(), m.getDataLen(),
                             m.getMinPos(), m.getColorCorrentEn(), m.getColorCorrMode(), m.getBaseScaleBit(),
                             m.getCompenCoefBit(), m.getWCompLUTLimitLength(), m.getCurrentLimitLength(),
                             m.getRGBCompLUTLimitLength(), m.getWhiteCTCEN(), m.getCTCnums(), m.getCTCstepWei(),
                             m.getMinLayerSet()}),
                 QList<int>({11, 12, 13, 14, 15, 17, 20, 21, 22, 23, 24, 25, 26, 28, 29, 30, 31}));
        QCOMPARE(QList<double>({m.getLimitMinRatio(), m.getPowerPara(), m.getKPara()}),
                 QList<double>({0.16, 1.8, 1.9}));
    }

    void aMissingKeyKeepsItsValueExceptWhereItHasADefault()
    {
        PicQualitySettings first = settingsOf(
            "[FineGray]\nGrayAdvanceState=false\n[NetWorkTimeOut]\nCustomTimeout=9\n[ABLParam]\nDefaultMAXLum=5\n");
        QVERIFY(!first.grayAdvanceState);
        const QString path = m_folder->filePath("second.ini");
        writeFile(path, "[MaxWCom]\nxCom=0.31\n");
        QVERIFY(Resource::getInstance()->parsePicqualityConfigFile(path));
        const PicQualitySettings& second = Resource::getInstance()->settings();
        QVERIFY(second.grayAdvanceState);
        QCOMPARE(second.customTimeout, 1);
        QCOMPARE(second.defaultMaxLum, 5);
        QCOMPARE(second.xCom, 0.31);
        QVERIFY(!second.lastOpenPath.isEmpty());
        QVERIFY(second.freqList.isEmpty());
    }

    void colourTemperatureIsKeptInRange_data()
    {
        QTest::addColumn<QByteArray>("stored");
        QTest::addColumn<int>("kelvin");
        QTest::newRow("1499") << QByteArray("1499") << 6500;
        QTest::newRow("1500") << QByteArray("1500") << 1500;
        QTest::newRow("100000") << QByteArray("100000") << 100000;
        QTest::newRow("100001") << QByteArray("100001") << 6500;
        QTest::newRow("negative") << QByteArray("-1") << 6500;
        QTest::newRow("text") << QByteArray("warm") << 6500;
    }

    void colourTemperatureIsKeptInRange()
    {
        QFETCH(QByteArray, stored);
        QTEST(settingsOf("[MaxWCom]\nColorTemp=" + stored + "\n").colorTemp, "kelvin");
    }

    void grayNumbersConvertLineByLine_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<QList<int>>("narrow");
        QTest::addColumn<QList<int>>("wide");
        const auto row = [](const char* name, const QByteArray& text, const QList<int>& narrow,
                            const QList<int>& wide) { QTest::newRow(name) << text << narrow << wide; };
        row("numbers and none", "0\nx\n\n65535", {0, 0, 0, 65535}, {0, 0, 0, 65535});
        row("too large for 16 bits", "65536\n99999\n", {0, 0}, {65536, 99999});
        row("too large for 32 bits", "2147483647\n2147483648\n", {0, 0}, {2147483647, 0});
        row("blanks", " 42 \n\t7\n8 9\n", {42, 7, 0}, {42, 7, 0});
        row("carriage returns", "1\r\n2\r\n3", {1, 2, 3}, {1, 2, 3});
        row("signs and leading zeros", "+5\n-1\n00012\n", {5, 0, 12}, {5, -1, 12});
        row("hexadecimal and fractions", "0x10\n1.5\n1e3\n", {0, 0, 0}, {0, 0, 0});
        row("only a line feed", "\n", {0}, {0});
        row("nothing", "", {}, {});
    }

    void grayNumbersConvertLineByLine()
    {
        QFETCH(QByteArray, text);
        const QString path = m_folder->filePath("table.txt");
        writeFile(path, text);
        const auto toInts = [](const auto& list) {
            QList<int> result;
            for (const auto value : list)
                result << static_cast<int>(value);
            return result;
        };
        QList<unsigned short> narrow;
        QList<unsigned int> wide;
        Resource& resource = *Resource::getInstance();
        m_log->take();
        QVERIFY(resource.parseGrayFromFile(path, narrow) && resource.parseGrayFromFile(path, wide));
        QTEST(toInts(narrow), "narrow");
        QTEST(toInts(wide), "wide");
        QCOMPARE(m_log->take().last(), QString("info default: read done, list size is %1").arg(wide.size()));
        const int before = narrow.size();
        QVERIFY(resource.parseGrayFromFile(path, narrow)); // appended
        QCOMPARE(narrow.size(), 2 * before);
        QVERIFY(!resource.parseGrayFromFile(m_folder->filePath("absent"), narrow));
        QCOMPARE(m_log->take().last(), "critical default: file " + m_folder->filePath("absent") + " not exist!!!");
        QCOMPARE(narrow.size(), 2 * before);
    }

    void aHostsOwnTablesComeFirst()
    {
        QCOMPARE(start().state["whiteNumbers"].toInt(), 256);
        qputenv("HOST_RESOURCES", HOST_RESOURCES);
        QCOMPARE(start().state["whiteNumbers"].toInt(), 2);
        qunsetenv("HOST_RESOURCES");
    }
};

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.value(1) == hostArgument)
        return runHost(arguments.mid(2));
    if (arguments.value(1) == writerArgument)
        return runWriter(arguments.value(2));
    PicQualityResourceTest test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_picqualityresource.moc"
