#include "documentfile_p.h"
#include "finegrayconfig_p.h"
#include "graystate_p.h"
#include "jsonfields_p.h"
#include "magicgray_p.h"

#include <suite/model/finegray.h>

#include <array>

namespace FineGrayConfig {

namespace {

using JsonFields::Member;
using Model::FineGrayCoeffs;
using Support::latin1;

constexpr QLatin1String grayEffectKey = latin1("grayEffectPara");
constexpr QLatin1String grayDetailKey = latin1("grayDetailPara");
constexpr QLatin1String magicGrayKey = latin1("mgData");

constexpr std::array<Member<Measures, QList<Model::LXY>>, 3> measureFields{{
    {latin1("rMeasure"), &Measures::red},
    {latin1("gMeasure"), &Measures::green},
    {latin1("bMeasure"), &Measures::blue},
}};

constexpr std::array<Member<FineGrayCoeffs, std::vector<unsigned char>>, 4> coeffFields{{
    {redCoeffsKey, &FineGrayCoeffs::rGrayCoeffs},
    {greenCoeffsKey, &FineGrayCoeffs::gGrayCoeffs},
    {blueCoeffsKey, &FineGrayCoeffs::bGrayCoeffs},
    {latin1("magnitudes"), &FineGrayCoeffs::magnitudes},
}};

constexpr auto switchFields = std::make_tuple(Member<Switches, bool>{latin1("openGray"), &Switches::openGray},
                                              Member<Switches, bool>{latin1("openXbit"), &Switches::openXbit},
                                              Member<Switches, int>{latin1("xbitType"), &Switches::xbitType},
                                              Member<Switches, bool>{latin1("open18bit"), &Switches::open18bit});

QJsonObject toRoot(const Measures& measures, const FineGrayCoeffs& coeffs)
{
    QJsonObject root;
    writeMeasures(measures, root);
    JsonFields::write(coeffFields, coeffs, root);
    return root;
}

} // namespace

void writeMeasures(const Measures& measures, QJsonObject& root)
{
    JsonFields::write(measureFields, measures, root);
}

void readMeasures(const QJsonObject& root, Measures& measures)
{
    JsonFields::read(measureFields, root, measures);
}

bool write(const QString& path, const Measures& measures, const FineGrayCoeffs& coeffs)
{
    return DocumentFile::write(path, toRoot(measures, coeffs));
}

bool update(const QString& path, const std::function<void(QJsonObject& root)>& change)
{
    return DocumentFile::update(path, toRoot({}, {}), change);
}

bool updateGrayState(const QString& path, const Model::GrayEffectPara& effect, const Model::GrayDetailPara& detail)
{
    return update(path, [&](QJsonObject& root) {
        root.insert(grayEffectKey, GrayState::toJson(effect));
        root.insert(grayDetailKey, GrayState::toJson(detail));
    });
}

bool updateMagicGray(const QString& path, const Model::MagicGrayCoeffs& coeffs)
{
    return update(path, [&](QJsonObject& root) { root.insert(magicGrayKey, MagicGray::toJson(coeffs)); });
}

bool read(const QString& path, Measures& measures, FineGrayCoeffs& coeffs, Switches& switches)
{
    return DocumentFile::read(path, [&](const QJsonObject& root) {
        readMeasures(root, measures);
        JsonFields::read(coeffFields, root, coeffs);
        JsonFields::read(switchFields, root, switches);
    });
}

bool read(const QString& path, Measures& measures, FineGrayCoeffs& coeffs, Model::GrayEffectPara& effect,
          Model::GrayDetailPara& detail, Model::MagicGrayCoeffs& magicGray, Model::MagicGrayParam& param)
{
    using JsonFields::readSection;
    return DocumentFile::read(path, [&](const QJsonObject& root) {
        readMeasures(root, measures);
        JsonFields::read(coeffFields, root, coeffs);
        readSection(root, grayEffectKey, [&](const QJsonObject& section) { GrayState::read(section, effect); });
        readSection(root, grayDetailKey, [&](const QJsonObject& section) { GrayState::read(section, detail); });
        readSection(root, magicGrayKey,
                    [&](const QJsonObject& section) { MagicGray::read(section, magicGray, param); });
    });
}

} // namespace FineGrayConfig
