#include "sendsteps.h"

#include "graytablefile.h"
#include "inputfile.h"

#include <qualityutility/tool/sender4th/cabinetsender.h>

namespace {

using CabinetSenderSpace::CabinetSender;
using CabinetSenderSpace::CabinetTargetMap;
using Simulator::CabinetState;

bool holdsPoints(const std::shared_ptr<const Model::ColorGamutInfo>& held, const Model::ColorGamutInfo& sent)
{
    return held && held->rLxy == sent.rLxy && held->gLxy == sent.gLxy && held->bLxy == sent.bLxy &&
           held->wLxy == sent.wLxy;
}

QString pointsText(const Model::ColorGamutInfo& gamut)
{
    const auto point = [](const Model::LXY& p) { return QStringLiteral("(%1, %2)").arg(p.x).arg(p.y); };
    return QStringLiteral("R%1 G%2 B%3 W%4")
        .arg(point(gamut.rLxy), point(gamut.gLxy), point(gamut.bLxy), point(gamut.wLxy));
}

} // namespace

SendStep grayStep(const QString& path, int frequency)
{
    const auto table = std::make_shared<const GrayTableFile>(readGrayTable(path));
    SendStep step;
    step.name = QStringLiteral("gray");
    step.summary = QStringLiteral("gray table %1, %2 levels, %3 Hz").arg(path).arg(table->red.size()).arg(frequency);
    step.send = [table, frequency](const CabinetTargetMap& targets) {
        return CabinetSender::setGrayScaleTable(targets, table->red, table->green, table->blue, table->magnitude,
                                                frequency);
    };
    step.hasArrived = [table, frequency](const CabinetState&, const CabinetState& now) {
        const auto equal = [](const QList<unsigned char>& sent, const std::vector<unsigned char>& held) {
            return std::equal(sent.begin(), sent.end(), held.begin(), held.end());
        };
        return now.grayTable && now.grayTable->freq == frequency && equal(table->red, now.grayTable->red) &&
               equal(table->green, now.grayTable->green) && equal(table->blue, now.grayTable->blue) &&
               equal(table->magnitude, now.grayTable->magnitude);
    };
    return step;
}

SendStep gamutStep(const Model::ColorGamutInfo& gamut)
{
    SendStep step;
    step.name = QStringLiteral("gamut");
    step.summary = QStringLiteral("target gamut %1, %2").arg(QString::fromStdString(gamut.name), pointsText(gamut));
    step.send = [gamut](const CabinetTargetMap& targets) { return CabinetSender::uploadNiccData(targets, gamut); };
    step.hasArrived = [gamut](const CabinetState&, const CabinetState& now) {
        return holdsPoints(now.targetGamut, gamut) && now.targetGamut->name == gamut.name;
    };
    return step;
}

SendStep measureStep(const Model::ColorGamutInfo& gamut)
{
    SendStep step;
    step.name = QStringLiteral("measure");
    step.summary = QStringLiteral("measured gamut %1").arg(pointsText(gamut));
    step.send = [gamut](const CabinetTargetMap& targets) { return CabinetSender::uploadNiccMeasure(targets, gamut); };
    step.hasArrived = [gamut](const CabinetState&, const CabinetState& now) {
        return holdsPoints(now.measuredGamut, gamut);
    };
    return step;
}

SendStep coefficientsStep(const std::vector<unsigned short>& bits)
{
    Model::ColorGamutInfo gamut;
    gamut.coeff.setCoeffs(bits);
    SendStep step;
    step.name = QStringLiteral("coefficients");
    step.summary = QStringLiteral("9 correction coefficients");
    step.send = [gamut](const CabinetTargetMap& targets) { return CabinetSender::setColorManageMode(targets, gamut); };
    step.hasArrived = [bits](const CabinetState&, const CabinetState& now) { return now.coefficients == bits; };
    return step;
}

SendStep modeStep(bool isOn, bool keepOthers)
{
    SendStep step;
    step.name = QStringLiteral("mode");
    step.summary = QStringLiteral("gamut correction %1%2")
                       .arg(isOn ? QStringLiteral("on") : QStringLiteral("off"),
                            keepOthers ? QString() : QStringLiteral(", all other corrections off"));
    step.send = [isOn, keepOthers](const CabinetTargetMap& targets) {
        return CabinetSender::gamutCorrectEffectMode(targets, isOn, keepOthers);
    };
    step.hasArrived = [isOn, keepOthers](const CabinetState& before, const CabinetState& now) {
        const int others = keepOthers ? before.mode & ~gamutCorrectionBit : 0;
        return now.mode == (others | (isOn ? gamutCorrectionBit : 0));
    };
    // One call gives all its cabinets the mode that follows from the first one's: cabinets that differ get calls of
    // their own.
    step.groupBy = [](const Model::Cabinet& cabinet) {
        return static_cast<int>(cabinet.getDisplayEffectPara().getEffectMode());
    };
    return step;
}

SendStep binStep(const QString& path)
{
    requireReadableFile(path, QStringLiteral("binary")); // the library reads it once more
    const QByteArray content = readInputFile(path, QStringLiteral("binary"));
    SendStep step;
    step.name = QStringLiteral("bin");
    step.summary = QStringLiteral("receiving-card binary %1, %2 bytes").arg(path).arg(content.size());
    step.send = [path](const CabinetTargetMap& targets) { return CabinetSender::sendRvcardBin(targets, path); };
    step.hasArrived = [content](const CabinetState&, const CabinetState& now) {
        return now.binary && *now.binary == content;
    };
    return step;
}
