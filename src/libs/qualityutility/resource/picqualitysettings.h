#pragma once

#include <suite/model/magicgrayparam.h>

#include <QString>
#include <QStringList>

class QSettings;

/// The operator's settings of the picture-quality functions; docs/settings.md says what each means. The values here are
/// those that hold without a settings file.
struct PicQualitySettings
{
    QString lastOpenPath;               ///< the folder last opened
    bool grayAdvanceState = true;       ///< switch of the advanced gray calibration
    int grayMaxWCom = 4;                ///< white compensation at the brightest gray level
    bool customColorCoordinate = false; ///< whether `colorTemp` is used instead of the white point
    int colorTemp = 6500;               ///< kelvin, 1500 to 100000
    double xCom = 0.314;                ///< default white point, CIE 1931
    double yCom = 0.351;                ///< as xCom
    int freqMode = 4;                   ///< the colorimeter's number, passed through
    float freq = 60.0F;                 ///< the colorimeter's frequency, Hz
    int speed = 1;                      ///< the colorimeter's number, passed through
    int lvMode = 1;                     ///< the colorimeter's number of a luminance mode, passed through
    int displayMode = 0;                ///< the colorimeter's number, passed through
    int channelNo = 1;                  ///< the colorimeter's channel, passed through
    QStringList freqList;               ///< frequencies offered, each with " HZ" behind it
    bool magicGrayState = true;         ///< switch of magic gray
    int measureWaitTime = 130;          ///< between showing a level and measuring it, ms
    Model::MagicGrayParam magicGray;    ///< what magic gray is generated with
    int defaultMaxLum = 800;            ///< of a screen, cd/m2
    double peakBrightnessScale = 0.5;   ///< of the automatic brightness limitation
    float defaultCoeff = 0.8F;          ///< of the gamut; the calibration tools', passed through
    int customTimeout = 1;              ///< of the network, s

    /// Reads all keys; the codec is the caller's to set. A missing key leaves its value as it was, unless it has a
    /// default of its own; a value that does not convert becomes 0, false or empty, a temperature out of range 6500.
    void read(QSettings& file);
};
