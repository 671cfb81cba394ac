#include "support/testfiles.h"
#include <qualityutility/resource/picqualitysettings.h>

#include <QSettings>
#include <QTemporaryDir>
#include <QTest>

class GainRangeTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theRangeIsSetWhole_data()
    {
        QTest::addColumn<QByteArray>("stored");
        QTest::addColumn<QPoint>("range");
        QTest::newRow("above the old maximum") << QByteArray("MinGain=300\nMaxGain=400\n") << QPoint(300, 400);
        QTest::newRow("only a minimum") << QByteArray("MinGain=7\n") << QPoint(7, 255);
        QTest::newRow("only a maximum") << QByteArray("MaxGain=7\n") << QPoint(0, 7);
        QTest::newRow("none") << QByteArray("MinGain=9\nMaxGain=8\n") << QPoint(0, 255);
    }

    void theRangeIsSetWhole()
    {
        QFETCH(QByteArray, stored);
        const QTemporaryDir folder;
        QSettings file(writeFile(folder.filePath("settings.ini"), "[MagicGray]\n" + stored), QSettings::IniFormat);
        PicQualitySettings settings;
        settings.read(file);
        QTEST(QPoint(settings.magicGray.getMinGain(), settings.magicGray.getMaxGain()), "range");
    }
};

QTEST_APPLESS_MAIN(GainRangeTest)
#include "tst_gainrange.moc"
