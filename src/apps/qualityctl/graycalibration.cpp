#include "graycalibration.h"

#include "inputfile.h"
#include "output.h"

#include <QJsonArray>

#include <cmath>

namespace {

/// Reads members of a calibration file and refuses it with the member's path.
class CalibrationReader
{
public:
    explicit CalibrationReader(const QString& path)
        : m_path(path), m_root(readJsonObject(path, QStringLiteral("gray calibration")))
    {}

    QList<Model::LXY> points(const QString& key) const
    {
        QList<Model::LXY> list;
        for (const QJsonValue value : array(key)) {
            const QJsonArray point = value.toArray();
            if (point.size() != 3 || !point.at(0).isDouble() || !point.at(1).isDouble() || !point.at(2).isDouble())
                refuse(QStringLiteral("%1[%2]: expected [luminance, x, y]").arg(key).arg(list.size()));
            list.append({point.at(0).toDouble(), point.at(1).toDouble(), point.at(2).toDouble(), {}});
        }
        return list;
    }

    std::vector<unsigned char> bytes(const QString& key) const
    {
        std::vector<unsigned char> list;
        for (const QJsonValue value : array(key)) {
            const int byte = value.toInt(-1);
            if (byte < 0 || byte > 255)
                refuse(QStringLiteral("%1[%2]: expected an integer from 0 to 255").arg(key).arg(list.size()));
            list.push_back(static_cast<unsigned char>(byte));
        }
        return list;
    }

    int integer(const QString& key) const
    {
        const QJsonValue value = m_root.value(key);
        const int number = value.toInt(-1);
        if (number < 0)
            refuse(QStringLiteral("%1: expected an integer of at least 0").arg(key));
        return number;
    }

private:
    [[noreturn]] void refuse(const QString& reason) const
    {
        throw CommandError{ExitCode::BadData, QStringLiteral("gray calibration %1: %2").arg(m_path, reason)};
    }

    QJsonArray array(const QString& key) const
    {
        if (!m_root.value(key).isArray())
            refuse(QStringLiteral("%1: expected an array").arg(key));
        return m_root.value(key).toArray();
    }

    QString m_path;
    QJsonObject m_root;
};

std::vector<Model::LXY> toVector(const QList<Model::LXY>& list)
{
    return {list.begin(), list.end()};
}

/// Luminances that the corrected screen should have: those of an ideal gamma 2.8 up to the brightest measured level.
std::vector<double> targets(const QList<Model::LXY>& measured)
{
    constexpr double gamma = 2.8;
    std::vector<double> result;
    const int last = qMax(1, measured.size() - 1);
    for (int level = 0; level < measured.size(); ++level)
        result.push_back(measured.last().lum * std::pow(static_cast<double>(level) / last, gamma));
    return result;
}

} // namespace

GrayCalibration readGrayCalibration(const QString& path)
{
    const CalibrationReader file(path);
    GrayCalibration calibration;
    calibration.red = file.points(QStringLiteral("red"));
    calibration.green = file.points(QStringLiteral("green"));
    calibration.blue = file.points(QStringLiteral("blue"));
    calibration.coeffs.rGrayCoeffs = file.bytes(QStringLiteral("redCoefficients"));
    calibration.coeffs.gGrayCoeffs = file.bytes(QStringLiteral("greenCoefficients"));
    calibration.coeffs.bGrayCoeffs = file.bytes(QStringLiteral("blueCoefficients"));
    calibration.coeffs.magnitudes = file.bytes(QStringLiteral("magnitudes"));

    calibration.advance.wMeasure = toVector(file.points(QStringLiteral("white")));
    calibration.advance.rGrayCoeffs = calibration.coeffs.rGrayCoeffs;
    calibration.advance.gGrayCoeffs = calibration.coeffs.gGrayCoeffs;
    calibration.advance.bGrayCoeffs = calibration.coeffs.bGrayCoeffs;
    calibration.advance.magBits = calibration.coeffs.magnitudes;
    calibration.advance.rLumTarget = targets(calibration.red);
    calibration.advance.gLumTarget = targets(calibration.green);
    calibration.advance.bLumTarget = targets(calibration.blue);

    calibration.effect.setFineGraySwitch(true);
    calibration.detail.setPeakValid(true);
    calibration.detail.setPeakMeasure(file.integer(QStringLiteral("peakMeasured")));
    calibration.detail.setPeakLum(file.integer(QStringLiteral("peakWanted")));
    calibration.detail.setMaxLum(file.integer(QStringLiteral("maximum")));

    // A gray calibration measures every level once: its points are the first series of a magic-gray calibration too.
    calibration.magicGray.getFirstRMeasures() = toVector(calibration.red);
    calibration.magicGray.getFirstGMeasures() = toVector(calibration.green);
    calibration.magicGray.getFirstBMeasures() = toVector(calibration.blue);
    calibration.magicGray.getWhiteMeasures() = {{0, calibration.advance.wMeasure}};
    return calibration;
}
