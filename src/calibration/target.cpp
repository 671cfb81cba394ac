#include "target.h"

#include <calibration/gamut.h>
#include <calibration/gamutrequest.h>
#include <calibration/measurement.h>

namespace Calibration {

namespace {

constexpr Colour::Chromaticity d65{0.3127, 0.3290};

/// The name with what was asked for beside it.
QString nameWith(const QString& name, const GamutRequest& request)
{
    return request.whiteName.isEmpty() ? name : QStringLiteral("%1, white %2").arg(name, request.whiteName);
}

Target nativeTarget(const GamutRequest& request)
{
    Target target;
    target.isNative = true;
    const auto white = request.white.value_or(d65);
    target.gamut.wLxy = {0.0, white.x, white.y, {}};
    target.gamut.name = QStringLiteral("%1, white %2")
                            .arg(request.primaries.toLower(), request.white ? request.whiteName : QStringLiteral("D65"))
                            .toStdString();
    return target;
}

/// Of primaries that are known by name or typed.
Target targetOf(Colour::Primaries primaries, const GamutRequest& request, const QString& name)
{
    Target target;
    primaries.white = request.white.value_or(primaries.white);
    target.gamut = gamutOf(primaries, request.luminance.value_or(0.0));
    target.gamut.name = name.toStdString();
    return target;
}

Result<Target> fromFile(const GamutRequest& request)
{
    const auto input = readInput(request.primaries, QStringLiteral("target"));
    if (!input)
        return input.fault();
    const auto gamut = parseTargetGamut(*input);
    if (!gamut)
        return gamut.fault();
    GamutRequest whole = request;
    if (!whole.luminance && gamut->wLxy.lum > 0.0)
        whole.luminance = gamut->wLxy.lum;
    Target target = targetOf(primariesOf(*gamut), whole, nameWith(nameOf(*gamut), request));
    target.file = input->digest();
    return target;
}

Result<Target> fromRequest(const GamutRequest& request)
{
    if (request.isFile)
        return fromFile(request);
    if (request.isNative())
        return nativeTarget(request);
    if (const auto* standard = standardGamut(request.primaries))
        return targetOf(standard->primaries, request, nameWith(QString::fromLatin1(standard->name), request));
    const auto typed = typedPrimaries(request);
    if (!typed)
        return typed.fault();
    return *typed ? Result<Target>(targetOf(**typed, request, request.text)) : unknownGamut(request);
}

} // namespace

Result<Target> readTarget(const QString& text, bool force)
{
    const auto request = parseGamutRequest(text);
    if (!request)
        return request.fault();
    auto target = fromRequest(*request);
    if (!target)
        return target;
    target->text = text;
    target->gamut.wLxy.lum = request->luminance.value_or(target->gamut.wLxy.lum);
    if (target->isNative)
        return target;
    const auto made = requireGamut(target->gamut, request->subject());
    if (!made)
        return made.fault();
    const auto labelled = force ? Result<void>() : requireLabels(target->gamut, request->subject());
    if (!labelled)
        return labelled.fault();
    return target;
}

Result<Model::ColorGamutInfo> onWall(const Target& target, const Model::ColorGamutInfo& measured)
{
    Model::ColorGamutInfo gamut = target.gamut;
    Colour::Primaries driven = primariesOf(measured);
    driven.white = primariesOf(gamut).white;
    if (!Colour::showsWhite(driven))
        return Fault{Fault::Kind::BadData, QStringLiteral("target %1").arg(target.text),
                     QStringLiteral("a white inside the triangle of %1").arg(nameOf(measured)), hiddenWhite(driven)};
    if (target.isNative) {
        gamut = gamutOf(driven, gamut.wLxy.lum);
        gamut.name = target.gamut.name;
    }
    return gamut;
}

} // namespace Calibration
