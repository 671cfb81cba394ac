#include "steps.h"

#include <qualityutility/tool/sender4th/cabinetsender.h>

namespace Calibration {

namespace {

using Action::CabinetState;
using CabinetSenderSpace::CabinetSender;
using CabinetSenderSpace::CabinetTargetMap;
using Gamut = Model::ColorGamutInfo;

bool holdsPoints(const std::shared_ptr<const Gamut>& held, const Gamut& sent)
{
    return held && held->rLxy == sent.rLxy && held->gLxy == sent.gLxy && held->bLxy == sent.bLxy &&
           held->wLxy == sent.wLxy;
}

QString pointsText(const Gamut& gamut)
{
    const auto point = [](const Model::LXY& p) { return QStringLiteral("(%1, %2)").arg(p.x).arg(p.y); };
    return QStringLiteral("R%1 G%2 B%3 W%4")
        .arg(point(gamut.rLxy), point(gamut.gLxy), point(gamut.bLxy), point(gamut.wLxy));
}

} // namespace

Step grayStep(const Action::GrayTable& content, const QString& name)
{
    const auto table = std::make_shared<const Action::GrayTable>(content);
    Step step;
    step.name = QStringLiteral("gray");
    step.summary = QStringLiteral("gray table %1, %2 levels, %3 Hz")
                       .arg(name, QString::number(table->red.size()), QString::number(table->freq));
    step.send = [table](const CabinetTargetMap& targets) {
        return CabinetSender::setGrayScaleTable(targets, table->red, table->green, table->blue, table->magnitude,
                                                table->freq);
    };
    step.hasArrived = [table](const CabinetState&, const CabinetState& now) {
        return now.grayTable && *now.grayTable == *table;
    };
    return step;
}

Step gamutStep(const Gamut& gamut)
{
    Step step;
    step.name = QStringLiteral("gamut");
    step.summary = QStringLiteral("target gamut %1, %2").arg(QString::fromStdString(gamut.name), pointsText(gamut));
    step.send = [gamut](const CabinetTargetMap& targets) { return CabinetSender::uploadNiccData(targets, gamut); };
    step.hasArrived = [gamut](const CabinetState&, const CabinetState& now) {
        return holdsPoints(now.targetGamut, gamut) && now.targetGamut->name == gamut.name;
    };
    return step;
}

Step measureStep(const Gamut& gamut)
{
    Step step;
    step.name = QStringLiteral("measure");
    step.summary = QStringLiteral("measured gamut %1").arg(pointsText(gamut));
    step.send = [gamut](const CabinetTargetMap& targets) { return CabinetSender::uploadNiccMeasure(targets, gamut); };
    step.hasArrived = [gamut](const CabinetState&, const CabinetState& now) {
        return holdsPoints(now.measuredGamut, gamut);
    };
    return step;
}

Step coefficientsStep(const std::vector<unsigned short>& bits)
{
    Gamut gamut;
    gamut.coeff.setCoeffs(bits);
    Step step;
    step.name = QStringLiteral("coefficients");
    step.summary = QStringLiteral("9 correction coefficients");
    step.send = [gamut](const CabinetTargetMap& targets) { return CabinetSender::setColorManageMode(targets, gamut); };
    step.hasArrived = [bits](const CabinetState&, const CabinetState& now) { return now.coefficients == bits; };
    return step;
}

Step modeStep(bool isOn, bool keepOthers)
{
    Step step;
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

Step binaryStep(const QByteArray& content, const QString& name)
{
    Step step;
    step.name = QStringLiteral("binary");
    step.summary = QStringLiteral("receiving-card binary %1, %2 bytes").arg(name, QString::number(content.size()));
    step.send = [content](const CabinetTargetMap& targets) {
        return CabinetSender::sendRvcardContent(targets, content);
    };
    step.hasArrived = [content](const CabinetState&, const CabinetState& now) {
        return now.binary && *now.binary == content;
    };
    return step;
}

} // namespace Calibration
