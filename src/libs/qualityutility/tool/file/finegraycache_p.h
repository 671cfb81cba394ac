#pragma once

#include "finegrayconfig_p.h"

namespace Model {
struct FineGrayAdvanceParam;
}

/// The fine-gray cache: measurements, the parameters of a calibration in progress, earlier white measurements and
/// magic-gray measurements.
namespace FineGrayCache {

using FineGrayConfig::Measures;

DocumentKind kind();
/// The same document when it holds no more than measurements yet.
DocumentKind kindOfMeasuresAlone();

bool write(const QString& path, const Measures& measures);
bool update(const QString& path, const Model::FineGrayAdvanceParam& advance);
bool update(const QString& path, const Model::MagicGrayCoeffs& magicGray);
/// `magicGray` may be null.
bool read(const QString& path, Measures& measures, Model::FineGrayAdvanceParam& advance,
          Model::MagicGrayCoeffs* magicGray);

QJsonObject toJson(const Model::FineGrayAdvanceParam& advance);
void read(const QJsonObject& object, Model::FineGrayAdvanceParam& advance);
/// Keeps the white measurements stored in `root` when `advance`, which is to replace them, has fewer.
void keepWhiteMeasures(QJsonObject& root, const QJsonObject& advance);

} // namespace FineGrayCache
