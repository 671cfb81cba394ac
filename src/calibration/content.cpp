#include "content.h"

#include <calibration/gamut.h>
#include <calibration/graytable.h>

namespace Calibration {

QStringList ContentNames::all() const
{
    QStringList given;
    for (const QString& name : {measured, target, table, binary}) {
        if (!name.isEmpty())
            given << name;
    }
    return given;
}

Result<Content> readContent(const ContentNames& names)
{
    Content content;
    const auto measured = readGamut(names.measured);
    if (!measured)
        return measured.fault();
    const auto target = readGamut(names.target);
    if (!target)
        return target.fault();
    content.measured = *measured;
    content.target = *target;
    content.table.freq = names.frequency;
    if (!names.table.isEmpty()) {
        const auto table = readGrayTable(names.table, names.frequency);
        if (!table)
            return table.fault();
        content.tableFile = table->file;
        content.table = table->table;
    }
    if (!names.binary.isEmpty()) {
        const auto binary = readInput(names.binary, QStringLiteral("binary"));
        if (!binary)
            return binary.fault();
        content.binary = *binary;
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
