#pragma once

#include <suite/model/magicgrayparam.h>

#include <QString>
#include <QStringList>

class QSettings;

/// The operator's settings of the picture-quality functions; docs/settings.md says what each means. The values here are
/// those that hold without a settings file.
struct PicQualitySettings
{
    QString lastOpenPath;
    bool grayAdvanceState = true;
    int grayMaxWCom = 4;
    bool customColorCoordinate = false;
    int colorTemp = 6500; ///< kelvin
    double xCom = 0.314;  ///< default white point, CIE 1931
    double yCom = 0.351;
    int freqMode = 4;
    float freq = 60.0F; ///< Hz
    int speed = 1;
    int lvMode = 1;
    int displayMode = 0;
    int channelNo = 1;
    QStringList freqList; ///< each with " HZ" behind it
    bool magicGrayState = true;
    int measureWaitTime = 130; ///< ms
    Model::MagicGrayParam magicGray;
    int defaultMaxLum = 800; ///< cd/m2
    double peakBrightnessScale = 0.5;
    float defaultCoeff = 0.8F;
    int customTimeout = 1; ///< s

    /// Reads all keys. A missing key leaves its value as it was, where it has no default of its own; a value that does
    /// not convert becomes 0, false or empty.
    void read(QSettings& file);
};
