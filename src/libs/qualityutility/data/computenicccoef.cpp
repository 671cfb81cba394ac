#include "computenicccoef.h"

#include <QDebug>
#include <QLoggingCategory>

namespace {

AdapterQuali iccObject; // not const: a host's own colour library need not be

void logInput(double whiteLumRatio, const ColorGamutPARM& target, const ColorGamutPARM& source,
              const OnePointLxy& targetWhite, const OnePointLxy& sourceWhite)
{
    if (!QLoggingCategory::defaultCategory()->isInfoEnabled())
        return;
    const std::pair<const char*, double> items[] = {
        {"whitelumratio", whiteLumRatio},      {"targetTemp blue x", target.blueX},
        {"targetTemp blue y", target.blueY},   {"targetTemp green x", target.greenX},
        {"targetTemp green y", target.greenY}, {"targetTemp red x", target.redX},
        {"targetTemp red y", target.redY},     {"orgTemp blue x", source.blueX},
        {"orgTemp blue y", source.blueY},      {"orgTemp green x", source.greenX},
        {"orgTemp green y", source.greenY},    {"orgTemp red x", source.redX},
        {"orgTemp red y", source.redY},        {"whiteLxy x", targetWhite.x},
        {"whiteLxy y", targetWhite.y},         {"whiteLxy l", targetWhite.L},
        {"orgWhiteLxy x", sourceWhite.x},      {"orgWhiteLxy y", sourceWhite.y},
        {"orgWhiteLxy l", sourceWhite.L},
    };
    QDebug line = qInfo() << "input";
    for (const auto& [name, value] : items)
        line << name << QString::number(value, 'g', 6);
}

void logOutput(const std::vector<short>& coefficients)
{
    if (!QLoggingCategory::defaultCategory()->isInfoEnabled())
        return;
    QDebug line = qInfo() << "output";
    for (const short coefficient : coefficients)
        line << QString::number(coefficient);
}

/// Zeros turn a wall dark, and a row that sums to zero or less, which a host's own colour library may give, takes a
/// primary out of white: neither goes out in silence.
void logWhatCannotBeShown(const std::vector<short>& coefficients, const QString& target)
{
    for (std::size_t row = 0; row < coefficients.size(); row += 3) {
        if (coefficients[row] + coefficients[row + 1] + coefficients[row + 2] > 0)
            continue;
        qCritical() << "no gamut correction for" << target
                    << ": a gamut's points make no RGB system, or a white cannot be shown by the primaries";
        return;
    }
}

} // namespace

bool ComputeNICCCoef::createCoef(const Model::ColorGamutInfo& source, Model::ColorGamutInfo& target)
{
    computeSingleCoef(target, 0.0, ColorGamutTransform(source), GetWhiteLxy(source));
    return true;
}

ColorGamutPARM ComputeNICCCoef::ColorGamutTransform(const Model::ColorGamutInfo& info)
{
    return {info.rLxy.x, info.rLxy.y, info.gLxy.x, info.gLxy.y, info.bLxy.x, info.bLxy.y};
}

OnePointLxy ComputeNICCCoef::GetWhiteLxy(const Model::ColorGamutInfo& info)
{
    return {info.wLxy.lum, info.wLxy.x, info.wLxy.y};
}

void ComputeNICCCoef::computeSingleCoef(Model::ColorGamutInfo& target, double whiteLumRatio,
                                        const ColorGamutPARM& source, OnePointLxy sourceWhite)
{
    const ColorGamutPARM targetPrimaries = ColorGamutTransform(target);
    const OnePointLxy targetWhite = GetWhiteLxy(target);
    std::vector<short> coefficients(9, 0);
    logInput(whiteLumRatio, targetPrimaries, source, targetWhite, sourceWhite);
    iccObject.MICCMatrixCoef(coefficients.data(), &whiteLumRatio, targetPrimaries, source, targetWhite, sourceWhite);
    logOutput(coefficients);
    logWhatCannotBeShown(coefficients, QString::fromStdString(target.name));
    target.coeff.setCoeffs(std::vector<unsigned short>(coefficients.begin(), coefficients.end()));

    double first = 0.0;
    double second = 0.0;
    iccObject.MICCGamutCoverge(&first, &second, source, targetPrimaries);
    target.cover = second;
    target.orgCover = first;
}
