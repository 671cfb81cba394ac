#include "graycalibration.h"

#include <calibration/output.h>
#include <qualityutility/tool/file/picqualityfiletool.h>
#include <suite/common/jsonreader.h>
#include <suite/model/magicgrayparam.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <cmath>

namespace Calibration {

namespace {

using Common::JsonReader;
using Tool = PicQualityFileTool;

QList<Model::LXY> points(const JsonReader& array)
{
    QList<Model::LXY> list;
    const int count = array.count();
    for (int i = 0; i < count && !array.hasFault(); ++i) {
        const JsonReader point = array.element(i);
        if (point.value().toArray().size() != 3)
            point.expect(QStringLiteral("[luminance, x, y]"));
        list.append({point.element(0).number(), point.element(1).number(), point.element(2).number(), {}});
    }
    return list;
}

std::vector<unsigned char> bytes(const JsonReader& array)
{
    std::vector<unsigned char> list;
    const int count = array.count();
    for (int i = 0; i < count && !array.hasFault(); ++i)
        list.push_back(static_cast<unsigned char>(array.element(i).integer(0, 255)));
    return list;
}

int level(const JsonReader& value)
{
    return value.integer(0, std::numeric_limits<int>::max());
}

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
    for (int i = 0; i < measured.size(); ++i)
        result.push_back(measured.last().lum * std::pow(static_cast<double>(i) / last, gamma));
    return result;
}

/// What follows from what was read.
void complete(GrayCalibration& calibration)
{
    Model::FineGrayAdvanceParam& advance = calibration.advance;
    advance.rGrayCoeffs = calibration.coeffs.rGrayCoeffs;
    advance.gGrayCoeffs = calibration.coeffs.gGrayCoeffs;
    advance.bGrayCoeffs = calibration.coeffs.bGrayCoeffs;
    advance.magBits = calibration.coeffs.magnitudes;
    advance.rLumTarget = targets(calibration.red);
    advance.gLumTarget = targets(calibration.green);
    advance.bLumTarget = targets(calibration.blue);
    calibration.effect.setFineGraySwitch(true);
    calibration.detail.setPeakValid(true);
    // A gray calibration measures every level once: its points are the first series of a magic-gray calibration too.
    calibration.magicGray.getFirstRMeasures() = toVector(calibration.red);
    calibration.magicGray.getFirstGMeasures() = toVector(calibration.green);
    calibration.magicGray.getFirstBMeasures() = toVector(calibration.blue);
    calibration.magicGray.getWhiteMeasures() = {{0, advance.wMeasure}};
}

bool writeConfiguration(const QString& path, const GrayCalibration& calibration)
{
    return Tool::writeFineGrayConfig(path, calibration.red, calibration.green, calibration.blue, calibration.coeffs) &&
           Tool::updateGrayStateConfig(path, calibration.effect, calibration.detail) &&
           Tool::updateMGGrayConfig(path, calibration.magicGray, {});
}

bool writeCache(const QString& path, const GrayCalibration& calibration)
{
    return Tool::writeFineGrayCache(path, calibration.red, calibration.green, calibration.blue) &&
           Tool::updateFineGrayCache(path, calibration.advance) &&
           Tool::updateFineGrayCache(path, calibration.magicGray);
}

bool haveEqualMeasures(const GrayCalibration& a, const GrayCalibration& b)
{
    return a.red == b.red && a.green == b.green && a.blue == b.blue && a.magicGray == b.magicGray;
}

bool configurationHolds(const QString& path, const GrayCalibration& calibration)
{
    GrayCalibration back;
    Model::MagicGrayParam param;
    return Tool::readFineGrayConfig(path, back.red, back.green, back.blue, back.coeffs, back.effect, back.detail,
                                    back.magicGray, param) &&
           haveEqualMeasures(back, calibration) && back.coeffs == calibration.coeffs &&
           back.effect == calibration.effect && back.detail == calibration.detail;
}

bool cacheHolds(const QString& path, const GrayCalibration& calibration)
{
    GrayCalibration back;
    back.magicGray.getCurrentLUTs() = calibration.magicGray.getCurrentLUTs(); // the cache keeps no tables
    return Tool::readFineGrayCache(path, back.red, back.green, back.blue, back.advance, back.magicGray) &&
           haveEqualMeasures(back, calibration) && back.advance == calibration.advance;
}

} // namespace

Result<GrayCalibration> parseGrayCalibration(const Input& input)
{
    const auto object = jsonObject(input);
    if (!object)
        return object.fault();
    std::optional<Fault> fault;
    const JsonReader root(*object, fault);
    GrayCalibration calibration;
    calibration.red = points(root.member("red"));
    calibration.green = points(root.member("green"));
    calibration.blue = points(root.member("blue"));
    calibration.coeffs.rGrayCoeffs = bytes(root.member("redCoefficients"));
    calibration.coeffs.gGrayCoeffs = bytes(root.member("greenCoefficients"));
    calibration.coeffs.bGrayCoeffs = bytes(root.member("blueCoefficients"));
    calibration.coeffs.magnitudes = bytes(root.member("magnitudes"));
    calibration.advance.wMeasure = toVector(points(root.member("white")));
    calibration.detail.setPeakMeasure(level(root.member("peakMeasured")));
    calibration.detail.setPeakLum(level(root.member("peakWanted")));
    calibration.detail.setMaxLum(level(root.member("maximum")));
    if (fault)
        return Fault{Fault::Kind::BadData, input.subject(), {}, fault->message()};
    complete(calibration);
    return calibration;
}

QStringList grayDocumentPaths(const QString& folder)
{
    const QDir place(folder);
    return {place.filePath(QStringLiteral("fine-gray.gray")), place.filePath(QStringLiteral("grayCache.gray"))};
}

Result<QList<GrayDocument>> writeGrayDocuments(const QString& folder, const GrayCalibration& calibration)
{
    // A document takes several steps to write, so both are made elsewhere.
    const QTemporaryDir own;
    const QStringList made = grayDocumentPaths(own.path());
    if (!own.isValid() || !writeConfiguration(made.at(0), calibration) || !writeCache(made.at(1), calibration))
        return Fault{
            Fault::Kind::InputOutput, QDir::tempPath(), {}, QStringLiteral("the documents cannot be written there")};
    QList<NewFile> files;
    for (const QString& path : made) {
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly))
            return Fault{Fault::Kind::InputOutput, path, {}, file.errorString()};
        files.append({QFileInfo(path).fileName(), file.readAll()});
    }
    const auto placed = writeTogether(folder, files);
    if (!placed)
        return placed.fault();
    const QStringList paths = grayDocumentPaths(folder);
    return QList<GrayDocument>{{paths.at(0), files.at(0).content.size(), configurationHolds(paths.at(0), calibration)},
                               {paths.at(1), files.at(1).content.size(), cacheHolds(paths.at(1), calibration)}};
}

} // namespace Calibration
