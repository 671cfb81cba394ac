#pragma once

#include "jsoncolumn_p.h"
#include <qualityutility/support/latin1_p.h>

#include <QJsonObject>
#include <QList>
#include <QString>

#include <functional>

namespace Model {
struct FineGrayCoeffs;
class GrayDetailPara;
class GrayEffectPara;
class MagicGrayCoeffs;
class MagicGrayParam;
} // namespace Model

/// The fine-gray configuration, and what its cache has in common with it.
namespace FineGrayConfig {

/// Of the correction tables, here and in the cache's parameters.
constexpr QLatin1String redCoeffsKey = Support::latin1("rGrayCoeffs");
constexpr QLatin1String greenCoeffsKey = Support::latin1("gGrayCoeffs");
constexpr QLatin1String blueCoeffsKey = Support::latin1("bGrayCoeffs");

/// Measurements per gray level.
struct Measures
{
    QList<Model::LXY> red;
    QList<Model::LXY> green;
    QList<Model::LXY> blue;
};

/// They come from other producers; this library never writes them.
struct Switches
{
    bool openGray = false;
    bool openXbit = false;
    int xbitType = 0;
    bool open18bit = false;
};

DocumentKind kind();
/// Of a configuration and a cache: the measurements alone, and with the correction tables.
std::vector<JsonMember> measureMembers();
std::vector<JsonMember> commonMembers();

void writeMeasures(const Measures& measures, QJsonObject& root);
void readMeasures(const QJsonObject& root, Measures& measures);

bool write(const QString& path, const Measures& measures, const Model::FineGrayCoeffs& coeffs);
/// Lets `change` work on the root of a configuration or a cache. A missing file begins as the empty configuration.
bool update(const QString& path, const std::function<void(QJsonObject& root)>& change);
bool updateGrayState(const QString& path, const Model::GrayEffectPara& effect, const Model::GrayDetailPara& detail);
bool updateMagicGray(const QString& path, const Model::MagicGrayCoeffs& coeffs);

bool read(const QString& path, Measures& measures, Model::FineGrayCoeffs& coeffs, Switches& switches);
bool read(const QString& path, Measures& measures, Model::FineGrayCoeffs& coeffs, Model::GrayEffectPara& effect,
          Model::GrayDetailPara& detail, Model::MagicGrayCoeffs& magicGray, Model::MagicGrayParam& param);

} // namespace FineGrayConfig
