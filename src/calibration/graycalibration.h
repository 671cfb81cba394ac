#pragma once

#include <calibration/input.h>
#include <suite/model/finegray.h>
#include <suite/model/graydetailpara.h>
#include <suite/model/grayeffectpara.h>
#include <suite/model/magicgraycoeffs.h>

#include <QList>

namespace Calibration {

/// A gray calibration as measured and computed: what fine-gray documents are made of.
struct GrayCalibration
{
    QList<Model::LXY> red;
    QList<Model::LXY> green;
    QList<Model::LXY> blue;
    Model::FineGrayCoeffs coeffs;
    Model::FineGrayAdvanceParam advance;
    Model::GrayEffectPara effect;
    Model::GrayDetailPara detail;
    Model::MagicGrayCoeffs magicGray;
};

/// Reads a calibration from JSON; examples/gray-calibration.json shows one. Points are arrays [lum, x, y]. Fault: bad
/// data with the member's path.
Result<GrayCalibration> parseGrayCalibration(const Input& input);

/// A document that was written, and whether what is read back is what was to be kept.
struct GrayDocument
{
    QString path;
    qint64 bytes = 0;
    bool isEqual = false;
};

/// The names of a calibration's documents in `folder`: the fine-gray configuration and the cache.
QStringList grayDocumentPaths(const QString& folder);

/// Writes a calibration as both documents, or none, and reads them back. Faults: cannot create; input/output.
Result<QList<GrayDocument>> writeGrayDocuments(const QString& folder, const GrayCalibration& calibration);

} // namespace Calibration
