#include "documentfile_p.h"
#include "finegrayconfig_p.h"
#include "graystate_p.h"
#include "jsonfields_p.h"
#include "magicgray_p.h"
#include <suite/model/finegray.h>

#include <array>

namespace FineGrayConfig {

namespace {

using JsonFields::PlainField;
using Model::FineGrayCoeffs;
using Support::latin1;

constexpr JsonColumn grayEffect{latin1("grayEffectPara"), JsonColumn::Type::Object};
constexpr JsonColumn grayDetail{latin1("grayDetailPara"), JsonColumn::Type::Object};
constexpr JsonColumn magicGraySection{latin1("mgData"), JsonColumn::Type::Object};

constexpr std::array<PlainField<Measures, QList<Model::LXY>>, 3> measureFields{{
    {latin1("rMeasure"), &Measures::red, 1},
    {latin1("gMeasure"), &Measures::green, 1},
    {latin1("bMeasure"), &Measures::blue, 1},
}};

constexpr std::array<PlainField<FineGrayCoeffs, std::vector<unsigned char>>, 4> coeffFields{{
    {redCoeffsKey, &FineGrayCoeffs::rGrayCoeffs, 2},
    {greenCoeffsKey, &FineGrayCoeffs::gGrayCoeffs, 2},
    {blueCoeffsKey, &FineGrayCoeffs::bGrayCoeffs, 2},
    {latin1("magnitudes"), &FineGrayCoeffs::magnitudes, 2},
}};

constexpr auto switchFields = std::make_tuple(PlainField<Switches, bool>{latin1("openGray"), &Switches::openGray},
                                              PlainField<Switches, bool>{latin1("openXbit"), &Switches::openXbit},
                                              PlainField<Switches, int>{latin1("xbitType"), &Switches::xbitType},
                                              PlainField<Switches, bool>{latin1("open18bit"), &Switches::open18bit});

QJsonObject toRoot(const Measures& measures, const FineGrayCoeffs& coeffs)
{
    QJsonObject root;
    writeMeasures(measures, root);
    JsonFields::write(coeffFields, coeffs, root);
    return root;
}

} // namespace

DocumentKind kind()
{
    const auto own = JsonFields::join({{grayEffect, GrayState::effectMembers()},
                                       {grayDetail, GrayState::detailMembers()},
                                       {magicGraySection, MagicGray::members()}},
                                      JsonFields::membersOf(switchFields));
    return {QStringLiteral("fine-gray configuration"),
            JsonFields::keysOf(JsonFields::join(JsonFields::membersOf(coeffFields), own)),
            JsonFields::join(commonMembers(), own)};
}

std::vector<JsonMember> measureMembers()
{
    return JsonFields::membersOf(measureFields);
}

std::vector<JsonMember> commonMembers()
{
    return JsonFields::membersOf(measureFields, coeffFields);
}

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
        root.insert(grayEffect.key, GrayState::toJson(effect));
        root.insert(grayDetail.key, GrayState::toJson(detail));
    });
}

bool updateMagicGray(const QString& path, const Model::MagicGrayCoeffs& coeffs)
{
    return update(path, [&](QJsonObject& root) { root.insert(magicGraySection.key, MagicGray::toJson(coeffs)); });
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
        readSection(root, grayEffect.key, [&](const QJsonObject& section) { GrayState::read(section, effect); });
        readSection(root, grayDetail.key, [&](const QJsonObject& section) { GrayState::read(section, detail); });
        readSection(root, magicGraySection.key,
                    [&](const QJsonObject& section) { MagicGray::read(section, magicGray, param); });
    });
}

} // namespace FineGrayConfig
