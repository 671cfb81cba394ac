#include "documentfile_p.h"
#include "finegraycache_p.h"
#include "jsonfields_p.h"
#include "magicgray_p.h"

#include <suite/model/finegray.h>
#include <suite/model/magicgrayparam.h>

#include <algorithm>
#include <array>

namespace FineGrayCache {

namespace {

using Model::FineGrayAdvanceParam;
using Support::latin1;
using Number = JsonFields::Member<FineGrayAdvanceParam, int>;
using Points = JsonFields::Member<FineGrayAdvanceParam, std::vector<Model::LXY>>;
using Bytes = JsonFields::Member<FineGrayAdvanceParam, std::vector<unsigned char>>;
using Numbers = JsonFields::Member<FineGrayAdvanceParam, std::vector<double>>;

constexpr QLatin1String advanceKey = latin1("grayAdvance");

/// Where earlier white measurements are kept.
constexpr std::array<QLatin1String, 9> keptWhiteKeys{
    latin1("wMeasure1"), latin1("wMeasure2"), latin1("wMeasure3"), latin1("wMeasure4"), latin1("wMeasure5"),
    latin1("wMeasure6"), latin1("wMeasure7"), latin1("wMeasure8"), latin1("wMeasure9"),
};

constexpr Points whiteField{latin1("wMeasure"), &FineGrayAdvanceParam::wMeasure};

constexpr std::array<Bytes, 3> coeffFields{{
    {FineGrayConfig::redCoeffsKey, &FineGrayAdvanceParam::rGrayCoeffs},
    {FineGrayConfig::greenCoeffsKey, &FineGrayAdvanceParam::gGrayCoeffs},
    {FineGrayConfig::blueCoeffsKey, &FineGrayAdvanceParam::bGrayCoeffs},
}};

constexpr std::array<Numbers, 3> targetFields{{
    {latin1("rLumTarget"), &FineGrayAdvanceParam::rLumTarget},
    {latin1("gLumTarget"), &FineGrayAdvanceParam::gLumTarget},
    {latin1("bLumTarget"), &FineGrayAdvanceParam::bLumTarget},
}};

constexpr auto advanceFields = std::make_tuple(
    Number{latin1("maxNum"), &FineGrayAdvanceParam::maxNum}, Number{latin1("caliNum"), &FineGrayAdvanceParam::caliNum},
    whiteField, Number{latin1("caliLength"), &FineGrayAdvanceParam::caliLength},
    JsonFields::Section<decltype(coeffFields)>{latin1("coeffs"), coeffFields},
    JsonFields::Section<decltype(targetFields)>{latin1("targetLum"), targetFields},
    Bytes{latin1("magBits"), &FineGrayAdvanceParam::magBits});

} // namespace

bool write(const QString& path, const Measures& measures)
{
    QJsonObject root;
    FineGrayConfig::writeMeasures(measures, root);
    return DocumentFile::write(path, root);
}

bool update(const QString& path, const FineGrayAdvanceParam& advance)
{
    return FineGrayConfig::update(path, [&](QJsonObject& root) {
        const QJsonObject section = toJson(advance);
        keepWhiteMeasures(root, section);
        root.insert(advanceKey, section);
    });
}

bool update(const QString& path, const Model::MagicGrayCoeffs& magicGray)
{
    return FineGrayConfig::update(path, [&](QJsonObject& root) { MagicGray::writeMeasures(magicGray, root); });
}

bool read(const QString& path, Measures& measures, FineGrayAdvanceParam& advance, Model::MagicGrayCoeffs* magicGray)
{
    return DocumentFile::read(path, [&](const QJsonObject& root) {
        FineGrayConfig::readMeasures(root, measures);
        JsonFields::readSection(root, advanceKey, [&](const QJsonObject& section) { read(section, advance); });
        Model::MagicGrayParam unused; // the cache holds measurements only
        if (magicGray)
            MagicGray::read(root, *magicGray, unused);
    });
}

QJsonObject toJson(const FineGrayAdvanceParam& advance)
{
    QJsonObject object;
    JsonFields::write(advanceFields, advance, object);
    return object;
}

void read(const QJsonObject& object, FineGrayAdvanceParam& advance)
{
    JsonFields::read(advanceFields, object, advance);
}

void keepWhiteMeasures(QJsonObject& root, const QJsonObject& advance)
{
    const QJsonObject stored = qAsConst(root).value(advanceKey).toObject();
    if (!stored.contains(whiteField.key) || !advance.contains(whiteField.key))
        return;
    const QJsonArray old = stored.value(whiteField.key).toArray();
    if (old.size() <= advance.value(whiteField.key).toArray().size())
        return;
    const auto isFree = [&root](QLatin1String key) { return !root.contains(key); };
    const auto* const key = std::find_if(keptWhiteKeys.begin(), keptWhiteKeys.end(), isFree);
    if (key != keptWhiteKeys.end())
        root.insert(*key, old);
}

} // namespace FineGrayCache
