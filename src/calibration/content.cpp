#include "content.h"

#include <calibration/figures.h>
#include <calibration/gamut.h>
#include <calibration/graytable.h>
#include <calibration/target.h>

namespace Calibration {

namespace {

Result<Measurement> readLabelled(const ContentNames& names)
{
    auto measurement = readMeasured(names.measured);
    if (!measurement || names.force)
        return measurement;
    const auto labelled = requireLabels(measurement->gamut, measurement->subject);
    if (!labelled)
        return labelled.fault();
    return measurement;
}

} // namespace

Result<GamutPair> readGamuts(const ContentNames& names)
{
    const auto measurement = readLabelled(names);
    if (!measurement)
        return measurement.fault();
    const auto measured = withWhite(*measurement, names.white);
    if (!measured)
        return measured.fault();
    const auto target = readTarget(names.target, names.force);
    if (!target)
        return target.fault();
    const auto gamut = onWall(*target, *measured);
    if (!gamut)
        return gamut.fault();
    GamutPair pair{*measurement, *measured, *gamut, warningsOf(*measurement, names.white), {}};
    const auto labelled = requireLabels(*gamut, QStringLiteral("target %1").arg(names.target));
    if (!labelled)
        pair.warnings << labelled.fault().message();
    for (const auto& file : {measurement->file, target->file}) {
        if (file)
            pair.files.push_back(*file);
    }
    return pair;
}

Result<Measurement> readMeasuredToSend(const ContentNames& names)
{
    auto measurement = readLabelled(names);
    if (!measurement)
        return measurement;
    const auto known = requireLuminance(measurement->gamut, measurement->subject, names.measured);
    if (!known)
        return known.fault();
    return measurement;
}

Result<Model::ColorGamutInfo> readTargetToSend(const ContentNames& names)
{
    if (!names.measured.isEmpty()) {
        const auto gamuts = readGamuts(names);
        if (!gamuts)
            return gamuts.fault();
        const auto figures = computeFigures(gamuts->measured, gamuts->target);
        return figures ? Result<Model::ColorGamutInfo>(figures->target) : figures.fault();
    }
    const auto target = readTarget(names.target, names.force);
    if (!target)
        return target.fault();
    const QString subject = QStringLiteral("target %1").arg(names.target);
    if (target->isNative)
        return Fault{Fault::Kind::BadData, subject, QStringLiteral("a measured gamut beside it"),
                     QStringLiteral("none")};
    const auto known = requireLuminance(target->gamut, subject, names.target);
    if (!known)
        return known.fault();
    return target->gamut;
}

Result<Content> readContent(const ContentNames& names)
{
    Content content;
    const auto gamuts = readGamuts(names);
    if (!gamuts)
        return gamuts.fault();
    const auto known = requireLuminance(gamuts->measured, gamuts->measurement.subject, names.measured);
    if (!known)
        return known.fault();
    content.measurement = gamuts->measurement;
    content.white = names.white;
    content.measured = gamuts->measured;
    content.target = gamuts->target;
    content.files = gamuts->files;
    content.warnings = gamuts->warnings;
    content.table.freq = names.frequency;
    if (!names.table.isEmpty()) {
        const auto table = readGrayTable(names.table, names.frequency);
        if (!table)
            return table.fault();
        content.tableFile = table->file;
        content.files.push_back(table->file.digest());
        content.table = table->table;
    }
    if (!names.binary.isEmpty()) {
        const auto binary = readInput(names.binary, QStringLiteral("binary"));
        if (!binary)
            return binary.fault();
        content.binary = *binary;
        content.files.push_back(binary->digest());
    }
    return content;
}

std::vector<Step> stepsOf(const Content& content)
{
    std::vector<Step> steps;
    if (content.binary)
        steps.push_back(binaryStep(content.binary->bytes, content.binary->name));
    if (content.tableFile)
        steps.push_back(grayStep(content.table, content.tableFile->name));
    steps.push_back(measureStep(content.measured));
    steps.push_back(gamutStep(content.target));
    steps.push_back(coefficientsStep(content.target.coeff.getCoeffs()));
    steps.push_back(modeStep(true, true));
    return steps;
}

} // namespace Calibration
