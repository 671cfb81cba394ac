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
using Number = JsonFields::PlainField<FineGrayAdvanceParam, int>;
using Points = JsonFields::PlainField<FineGrayAdvanceParam, std::vector<Model::LXY>>;
using Bytes = JsonFields::PlainField<FineGrayAdvanceParam, std::vector<unsigned char>>;
using Numbers = JsonFields::PlainField<FineGrayAdvanceParam, std::vector<double>>;

constexpr JsonColumn advanceSection{latin1("grayAdvance"), JsonColumn::Type::Object};

/// Where earlier white measurements are kept.
constexpr JsonColumn keptWhite(QLatin1String key)
{
    return columnOf<std::vector<Model::LXY>>(key);
}

constexpr std::array<JsonColumn, 9> keptWhites{
    keptWhite(latin1("wMeasure1")), keptWhite(latin1("wMeasure2")), keptWhite(latin1("wMeasure3")),
    keptWhite(latin1("wMeasure4")), keptWhite(latin1("wMeasure5")), keptWhite(latin1("wMeasure6")),
    keptWhite(latin1("wMeasure7")), keptWhite(latin1("wMeasure8")), keptWhite(latin1("wMeasure9")),
};

constexpr Points whiteField{latin1("wMeasure"), &FineGrayAdvanceParam::wMeasure};

constexpr std::array<Bytes, 3> coeffFields{{
    {FineGrayConfig::redCoeffsKey, &FineGrayAdvanceParam::rGrayCoeffs, 1},
    {FineGrayConfig::greenCoeffsKey, &FineGrayAdvanceParam::gGrayCoeffs, 1},
    {FineGrayConfig::blueCoeffsKey, &FineGrayAdvanceParam::bGrayCoeffs, 1},
}};

constexpr std::array<Numbers, 3> targetFields{{
    {latin1("rLumTarget"), &FineGrayAdvanceParam::rLumTarget, 1},
    {latin1("gLumTarget"), &FineGrayAdvanceParam::gLumTarget, 1},
    {latin1("bLumTarget"), &FineGrayAdvanceParam::bLumTarget, 1},
}};

constexpr auto advanceFields = std::make_tuple(
    Number{latin1("maxNum"), &FineGrayAdvanceParam::maxNum}, Number{latin1("caliNum"), &FineGrayAdvanceParam::caliNum},
    whiteField, Number{latin1("caliLength"), &FineGrayAdvanceParam::caliLength},
    JsonFields::Section<decltype(coeffFields)>{latin1("coeffs"), coeffFields},
    JsonFields::Section<decltype(targetFields)>{latin1("targetLum"), targetFields},
    Bytes{latin1("magBits"), &FineGrayAdvanceParam::magBits});

std::vector<JsonMember> ownMembers()
{
    return JsonFields::join(
        JsonFields::join({{advanceSection, JsonFields::membersOf(advanceFields)}}, JsonFields::membersOf(keptWhites)),
        MagicGray::measureMembers());
}

} // namespace

DocumentKind kind()
{
    return {QStringLiteral("fine-gray cache"), JsonFields::keysOf(ownMembers()),
            JsonFields::join(FineGrayConfig::commonMembers(), ownMembers())};
}

DocumentKind kindOfMeasuresAlone()
{
    DocumentKind alone = kind();
    alone.signs = JsonFields::keysOf(FineGrayConfig::measureMembers());
    return alone;
}

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
        root.insert(advanceSection.key, section);
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
        JsonFields::readSection(root, advanceSection.key, [&](const QJsonObject& section) { read(section, advance); });
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
    const QJsonObject stored = qAsConst(root).value(advanceSection.key).toObject();
    if (!stored.contains(whiteField.key) || !advance.contains(whiteField.key))
        return;
    const QJsonArray old = stored.value(whiteField.key).toArray();
    if (old.size() <= advance.value(whiteField.key).toArray().size())
        return;
    const auto isFree = [&root](const JsonColumn& column) { return !root.contains(column.key); };
    const auto* const free = std::find_if(keptWhites.begin(), keptWhites.end(), isFree);
    if (free != keptWhites.end())
        root.insert(free->key, old);
}

} // namespace FineGrayCache
