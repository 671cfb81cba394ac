#include "support/logcapture.h"
#include "support/testfiles.h"
#include "support/threadedinstances.h"
#include <qualityutility/data/niccdata.h>
#include <qualityutility/data/picqualitydata.h>
#include <qualityutility/data/rvcardconfigdatamodel.h>
#include <qualityutility/resource/picqualityresource.h>
#include <qualityutility/tool/file/picqualityfiletool.h>

#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

using ReceivingCard::RvCardConfigDataModel;
using RxCardPicQuality::PicqualityData;

namespace {

const QList<Model::LXY> points{{1, 0.3, 0.3, {}}, {2, 0.31, 0.32, {}}, {3, 0.3, 0.4, {}}};

QStringList measureLines(const QStringList& log)
{
    return log.filter("155---");
}

} // namespace

class PicqualityDataTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        m_folder = std::make_unique<QTemporaryDir>();
        qputenv("SUITE_COMPANY_DIR", m_folder->path().toLocal8Bit());
        m_log = std::make_unique<LogCapture>();
    }

    void cleanup()
    {
        PicqualityData::releaseInstance();
        RvCardConfigDataModel::releaseInstance();
        PicQualityResource::releaseInstance();
        m_log.reset();
    }

    void niccDataStartsWithVersionAndToday()
    {
        const QDate before = QDate::currentDate();
        NICCData& data = *NICCData::getInstance();
        QCOMPARE(data.getVersion(), QString("2.0"));
        QVERIFY(data.getManageDate() >= before && data.getManageDate() <= QDate::currentDate());
        data.setVersion("3");
        data.setManageDate(QDate(2020, 2, 29));
        QCOMPARE(NICCData::getInstance()->getVersion(), QString("3"));
        QCOMPARE(NICCData::getInstance()->getManageDate(), QDate(2020, 2, 29));
        NICCData::releaseInstance();
        NICCData::releaseInstance();
        QCOMPARE(NICCData::getInstance()->getVersion(), QString("2.0"));
        NICCData::releaseInstance();
    }

    void itFillsItselfFromSettingsModelAndCache()
    {
        const QString settings =
            writeFile(m_folder->filePath("settings.ini"),
                      "[MaxWCom]\nGrayMaxWCom=9\nCustomColorCoordinate=1\nColorTemp=7200\nxCom=0.29\nyCom=0.31\n");
        PicQualityResource& resource = *PicQualityResource::getInstance();
        QVERIFY(resource.parsePicqualityConfigFile(settings));
        RvCardConfigDataModel::getInstance()->brightness()->colorTemperturePara().gCx = 0.2;
        Model::MagicGrayCoeffs magicGray;
        magicGray.getACRMeasures()[0] = {points.begin(), points.end()};
        Model::FineGrayAdvanceParam advance;
        advance.caliLength = 77;
        QVERIFY(PicQualityFileTool::writeFineGrayCache(resource.getFineGrayCacheFile(), points, {}, points));
        QVERIFY(PicQualityFileTool::updateFineGrayCache(resource.getFineGrayCacheFile(), advance));
        QVERIFY(PicQualityFileTool::updateFineGrayCache(resource.getFineGrayCacheFile(), magicGray));
        m_log->take();

        const PicqualityData& data = *PicqualityData::getInstance();
        QVERIFY(data.isFineGrayCacheLoaded());
        QCOMPARE(measureLines(m_log->take()), QStringList{"info default: 155---------------------------- 3 0 3"});
        QCOMPARE(data.getFineGrayAdvanceParam().caliLength, 77);
        QCOMPARE(data.getMagicGrayCoeffs().getACRMeasures().at(0).size(), std::size_t(3));
        const Model::FineGrayColorTem& white = data.getFineGrayCoeffs().colorTem;
        QVERIFY(white.getCustomColorTemperature());
        QCOMPARE(white.getColorTemperature(), 7200);
        QCOMPARE(white.getNColorxCom(), 0.29);
        QCOMPARE(white.getNColoryCom(), 0.31);
        QCOMPARE(data.getOrgColorGamut().gLxy, (Model::LXY{1796.57, 0.2, 0.73, {}}));
        QCOMPARE(data.getOrgColorGamut().wLxy, (Model::LXY{3120.0, 0.2863, 0.2949, {}}));
        QVERIFY(!resource.workingGrayTable().isEmpty()); // the tables were loaded on the way

        QFile::remove(resource.getFineGrayCacheFile());
        PicqualityData::releaseInstance();
        const PicqualityData& fresh = *PicqualityData::getInstance();
        QVERIFY(!fresh.isFineGrayCacheLoaded());
        QCOMPARE(fresh.getFineGrayAdvanceParam().maxNum, 9);
        QCOMPARE(fresh.getFineGrayAdvanceParam().caliNum, 1);
        QCOMPARE(fresh.getFineGrayAdvanceParam().caliLength, 1021);
        QVERIFY(fresh.getMagicGrayCoeffs().getACRMeasures().empty());
        QCOMPARE(measureLines(m_log->take()), QStringList());
    }

    void measurementsReplaceTheGamutOrAreOnlyCounted()
    {
        PicqualityData& data = *PicqualityData::getInstance();
        Model::ColorGamutInfo measured;
        measured.name = "measured";
        data.setColourGamutMeasure(measured);
        m_log->take();
        data.setGrayMeasure(points, {}, points + points.mid(0, 2));
        QCOMPARE(m_log->take(), QStringList{"info default: 155---------------------------- 3 0 5"});
        QCOMPARE(data.getOrgColorGamut(), measured);
        data.setLastOpenPath("/somewhere");
        QCOMPARE(PicQualityResource::getInstance()->getLastOpenPath(), QString("/somewhere"));
    }

    void aHandlerThatRunsDuringCreationMayAskForIt()
    {
        PicqualityData* seen = nullptr;
        QTimer::singleShot(0, this, [&seen] { seen = PicqualityData::getInstance(); });
        PicqualityData* data = PicqualityData::getInstance();
        QCoreApplication::processEvents();
        QCOMPARE(seen, data);
    }

    void threadsGetOneInstance()
    {
        QCOMPARE(threadedInstances(NICCData::getInstance).size(), std::size_t(1));
        NICCData::releaseInstance();
        QVERIFY(PicQualityResource::getInstance()->initResourceFile());
        QCOMPARE(threadedInstances(PicqualityData::getInstance).size(), std::size_t(1));
    }

private:
    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<LogCapture> m_log;
};

QTEST_GUILESS_MAIN(PicqualityDataTest)
#include "tst_picqualitydata.moc"
