#pragma once

#include <suite/model/finegray.h>
#include <suite/model/graydetailpara.h>
#include <suite/model/grayeffectpara.h>
#include <suite/model/magicgraycoeffs.h>

#include <QList>
#include <QString>

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

/// Reads a calibration from JSON; examples/gray-calibration.json shows one. Points are arrays [lum, x, y]. Throws
/// CommandError: no input, or bad data with the member's path.
GrayCalibration readGrayCalibration(const QString& path);
