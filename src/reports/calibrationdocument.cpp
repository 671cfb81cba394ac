#include "calibrationdocument.h"

#include <calibration/gamut.h>
#include <reports/calibrationreport.h>
#include <reports/figuresreport.h>
#include <reports/measurementreport.h>
#include <reports/sendreport.h>
#include <reports/verificationreport.h>

#include <algorithm>

namespace Reports {

namespace {

using Calibration::DeviceRecord;
using Calibration::Known;
using Calibration::RunResult;

Mark markOf(const Calibration::Verdict& verdict)
{
    if (verdict.isPassed())
        return Mark::Good;
    return verdict.kind == Calibration::Verdict::Kind::Interrupted ? Mark::Open : Mark::Bad;
}

Verdict headOf(const Calibration::Verdict& verdict)
{
    return {markOf(verdict), verdict.result(), verdict.details()};
}

Facts occasionOf(const RunResult& result, const ReportDetails& details)
{
    const bool isSimulated = result.verification.verdict.isSimulated;
    Facts facts;
    facts.pairs = {{QStringLiteral("Devices"), isSimulated ? QStringLiteral("simulated: no light was seen")
                                                           : QStringLiteral("not simulated by this program")},
                   {QStringLiteral("Wall or hub"), result.destination},
                   {QStringLiteral("Report of"), details.time.toString(QStringLiteral("yyyy-MM-dd HH:mm t"))}};
    facts.pairs.insert(facts.pairs.end(), details.notes.begin(), details.notes.end());
    facts.pairs.push_back({QStringLiteral("Made by"), details.generator});
    return facts;
}

/// What the wall shows for white; its luminance is known where the measured white's is.
Model::LXY shownWhite(const Calibration::Figures& figures)
{
    const auto& xyz = figures.corners.corners[Colour::judgedWhite].shown;
    const auto white = Colour::chromaticity(xyz).value_or(Colour::Chromaticity{});
    return {figures.corners.whiteKept * figures.measured.wLxy.lum, white.x, white.y, {}};
}

Table whiteTable(const RunResult& result, const Calibration::Content& content)
{
    const Calibration::Figures& figures = result.figures;
    Table table = colourTable();
    addColour(table, QStringLiteral("before"), figures.measured.wLxy, true,
              content.white == Calibration::WhiteSource::Sum ? QStringLiteral("sum of red, green and blue")
                                                             : content.measurement.known());
    addColour(table, QStringLiteral("target"), figures.target.wLxy, true, QStringLiteral("wanted"));
    addColour(table, QStringLiteral("corrected"), shownWhite(figures), true, wordOf(Known::Computed));
    for (const HeldFigures& held : heldFigures(result.verification))
        addColour(table, QStringLiteral("on %1").arg(Calibration::cabinetsText(held.cabinets)),
                  shownWhite(*held.figures), true, heldWord(held.known));
    return table;
}

Table inputTable(const Calibration::Content& content)
{
    Table table({{{}, QStringLiteral("input")}, {{}, QStringLiteral("file")}, {{}, QStringLiteral("SHA-256")}});
    for (const Calibration::InputDigest& file : content.files)
        table.add({file.role, file.name, file.sha256});
    return table;
}

void append(std::vector<Block>& blocks, const std::vector<Block>& more)
{
    blocks.insert(blocks.end(), more.begin(), more.end());
}

/// What speaks against trusting the figures, if anything does.
std::vector<Block> warningsOf(const RunResult& result, const Calibration::Content& content)
{
    constexpr int maxFaults = 5;
    const QStringList& faults = result.verification.faults;
    std::vector<Block> blocks;
    for (const QString& fault : faults.mid(0, maxFaults))
        blocks.push_back(Warning{fault});
    if (faults.size() > maxFaults)
        blocks.push_back(Warning{QStringLiteral("%1 more like these").arg(faults.size() - maxFaults)});
    for (const QString& warning : content.warnings)
        blocks.push_back(Warning{warning});
    return blocks;
}

std::vector<Block> measurementOf(const RunResult& result, const Calibration::Content& content)
{
    const auto additivity = additivityOf(content.measurement);
    std::vector<Block> blocks{Heading{QStringLiteral("What was measured")}, detailTable(content.measurement),
                              pointTable(content.measurement.gamut, content.measurement.known())};
    if (additivity && !additivity->isContradiction())
        blocks.push_back(Paragraph{additivity->sentence()});
    blocks.insert(blocks.end(),
                  {Heading{QStringLiteral("White before and after")}, whiteTable(result, content),
                   Heading{QStringLiteral("Target")}, pointTable(result.figures.target, QStringLiteral("wanted"))});
    return blocks;
}

/// What the correction shows, or would show where nobody is known to hold it; then what other integers show.
std::vector<Block> coloursOf(const RunResult& result)
{
    const auto held = heldFigures(result.verification);
    const auto isRight = [&result](const HeldFigures& figures) {
        return figures.figures->coefficients == result.figures.coefficients;
    };
    const auto right = std::find_if(held.begin(), held.end(), isRight);
    const bool isHeld = right != held.end();
    const std::vector<Block> correction{
        Heading{isHeld ? QStringLiteral("Colours and grays")
                       : QStringLiteral("Colours and grays that the correction would show")},
        reachTable(result.figures, isHeld ? heldWord(right->known) : wordOf(Known::Computed)),
        Paragraph{reachText(result.figures)}};
    std::vector<Block> others;
    for (const HeldFigures& figures : held) {
        if (isRight(figures))
            continue;
        others.push_back(Heading{QStringLiteral("Colours and grays of other integers")});
        others.push_back(Paragraph{
            QStringLiteral("On %1 of %2.").arg(Calibration::cabinetsText(figures.cabinets), figures.devices)});
        others.push_back(reachTable(*figures.figures, heldWord(figures.known)));
    }
    std::vector<Block> blocks = isHeld ? correction : others;
    append(blocks, isHeld ? others : correction);
    return blocks;
}

std::vector<Block> figuresOf(const RunResult& result, const Drawings& charts)
{
    std::vector<Block> blocks{Heading{QStringLiteral("Correction")}, figuresTable(result.figures)};
    append(blocks, coloursOf(result));
    if (!charts.charts.empty())
        append(blocks, {Heading{QStringLiteral("Charts")}, charts});
    return blocks;
}

/// Devices that failed in full, the others folded.
std::vector<Block> devicesOf(const RunResult& result)
{
    std::vector<DeviceRecord> good;
    std::vector<DeviceRecord> bad;
    for (const DeviceRecord& record : result.records)
        (record.isDone() ? good : bad).push_back(record);
    std::vector<Block> blocks{Heading{QStringLiteral("Devices")}};
    if (!bad.empty()) {
        std::vector<Calibration::Outcome> outcomes;
        for (const DeviceRecord& record : bad)
            outcomes.insert(outcomes.end(), record.outcomes.begin(), record.outcomes.end());
        blocks.push_back(deviceTable(bad, result.resumed));
        blocks.push_back(FoldedTable{QStringLiteral("Their steps, one by one"), outcomeTable(outcomes)});
    }
    if (!good.empty())
        blocks.push_back(FoldedTable{QStringLiteral("%1 of %2 devices hold everything that was sent")
                                         .arg(QString::number(good.size()), QString::number(result.records.size())),
                                     deviceTable(good, result.resumed)});
    return blocks;
}

} // namespace

Document documentOf(const RunResult& result, const Calibration::Content& content, const ReportDetails& details,
                    const Drawings& charts)
{
    Document document;
    document.title = titleOf(result);
    document.generator = details.generator;
    document.verdict = headOf(result.verification.verdict);
    document.blocks = {occasionOf(result, details)};
    append(document.blocks, warningsOf(result, content));
    append(document.blocks, measurementOf(result, content));
    append(document.blocks, figuresOf(result, charts));
    append(document.blocks, devicesOf(result));
    append(document.blocks, {Heading{QStringLiteral("Inputs")}, inputTable(content)});
    return document;
}

} // namespace Reports
