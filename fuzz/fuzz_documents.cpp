// Every reader and updater on one document, and the check. What an updater leaves must be readable again. Some changes
// put a number at the edge of a type in the place of another: changing digits one by one hardly ever leads there.

#include "fuzzing.h"
#include <qualityutility/tool/file/documentcheck.h>
#include <qualityutility/tool/file/picqualityfiletool.h>
#include <suite/model/colorgamutinfo.h>
#include <suite/model/finegray.h>
#include <suite/model/graydetailpara.h>
#include <suite/model/grayeffectpara.h>
#include <suite/model/magicgraycoeffs.h>
#include <suite/model/magicgrayparam.h>

#include <QJsonDocument>

#include <algorithm>
#include <array>
#include <random>
#include <string>
#include <string_view>

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t maxSize);

namespace {

using Tool = PicQualityFileTool;

void readAll(const QString& path)
{
    QList<Model::LXY> red;
    QList<Model::LXY> green;
    QList<Model::LXY> blue;
    Model::FineGrayCoeffs coeffs;
    Model::FineGrayAdvanceParam advance;
    Model::GrayEffectPara effect;
    Model::GrayDetailPara detail;
    Model::MagicGrayCoeffs magicGray;
    Model::MagicGrayParam param;
    bool flags[3] = {};
    int type = 0;
    Tool::readFineGrayConfig(path, red, green, blue, coeffs, flags[0], flags[1], type, flags[2]);
    Tool::readFineGrayConfig(path, red, green, blue, coeffs, effect, detail, magicGray, param);
    Tool::readFineGrayCache(path, red, green, blue, advance, magicGray);
    Model::ColorGamutInfo led;
    Model::ColorGamutInfo target;
    Tool::readNiccConfig(path, led, target, flags[0], flags[1]);
    std::string name;
    int temperature = 0;
    int fromInput = 0;
    Tool::readNewNicc(path, name, temperature, fromInput);
}

constexpr std::array<std::string_view, 10> edges{
    "2147483647", "-2147483648", "2147483648",        "4294967295", "9007199254740993",
    "1e308",      "5e-324",      "-9007199254740993", "255.5",      "-1",
};

/// The document with another number in the place of the first one at or after a place; itself without one.
std::string withNumber(const std::string& document, std::size_t from, std::string_view number)
{
    const std::size_t begin = document.find_first_of("-0123456789", from);
    if (begin == std::string::npos)
        return document;
    const std::size_t end = document.find_first_not_of("-+.eE0123456789", begin);
    return document.substr(0, begin) + std::string(number) + document.substr(std::min(end, document.size()));
}

} // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t maxSize,
                                               unsigned int seed)
{
    std::mt19937 random(seed);
    if (size == 0 || random() % 2 == 0)
        return LLVMFuzzerMutate(data, size, maxSize);
    const std::string document(data, data + size);
    const std::string changed = withNumber(document, random() % size, edges[random() % edges.size()]);
    if (changed.size() > maxSize)
        return LLVMFuzzerMutate(data, size, maxSize);
    std::copy(changed.begin(), changed.end(), data);
    return changed.size();
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QString path = Fuzzing::instance().file("document", data, size);
    readAll(path);
    const QByteArray content(reinterpret_cast<const char*>(data), static_cast<int>(size));
    DocumentCheck::check(QJsonDocument::fromJson(content).object());
    Model::FineGrayAdvanceParam advance;
    advance.wMeasure.resize(1);
    const bool isUpdated = Tool::updateGrayStateConfig(path, {}, {}) && Tool::updateMGGrayConfig(path, {}, {}) &&
                           Tool::updateFineGrayCache(path, advance) && Tool::updateNiccOpenConfig(path, true);
    if (isUpdated != (size > 0))
        qFatal("an updater failed, or took an empty document");
    readAll(path);
    bool isOpen = false;
    bool changed = false;
    Model::ColorGamutInfo gamut;
    if (isUpdated && !(Tool::readNiccConfig(path, gamut, gamut, isOpen, changed)))
        qFatal("what an updater wrote is not readable");
    return 0;
}
