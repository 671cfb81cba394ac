// Every reader and updater on one document. What an updater leaves must be readable again.

#include "fuzzing.h"

#include <suite/model/colorgamutinfo.h>
#include <suite/model/finegray.h>
#include <suite/model/graydetailpara.h>
#include <suite/model/grayeffectpara.h>
#include <suite/model/magicgraycoeffs.h>
#include <suite/model/magicgrayparam.h>

#include <qualityutility/tool/file/picqualityfiletool.h>

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

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QString path = Fuzzing::instance().file("document", data, size);
    readAll(path);
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
