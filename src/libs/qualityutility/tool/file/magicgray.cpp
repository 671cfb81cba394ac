#include "jsonfields_p.h"
#include "magicgray_p.h"
#include <suite/model/magicgraycoeffs.h>
#include <suite/model/magicgrayparam.h>

#include <algorithm>
#include <array>
#include <limits>

namespace MagicGray {

namespace {

using Model::MagicGrayCoeffs;
using Model::MagicGrayParam;
using Support::latin1;
using Points = JsonFields::ListField<MagicGrayCoeffs, MagicGrayCoeffs::Points>;
using Series = JsonFields::ListField<MagicGrayCoeffs, MagicGrayCoeffs::PointSeries>;
using Table = JsonFields::ListField<MagicGrayCoeffs, MagicGrayCoeffs::Table>;

constexpr std::array<Points, 9> pointFields{{
    {latin1("rMG0Measure"), &MagicGrayCoeffs::getR0Measures, &MagicGrayCoeffs::getR0Measures, 3},
    {latin1("gMG0Measure"), &MagicGrayCoeffs::getG0Measures, &MagicGrayCoeffs::getG0Measures, 3},
    {latin1("bMG0Measure"), &MagicGrayCoeffs::getB0Measures, &MagicGrayCoeffs::getB0Measures, 3},
    {latin1("rMG1Measure"), &MagicGrayCoeffs::getR1Measures, &MagicGrayCoeffs::getR1Measures, 4},
    {latin1("gMG1Measure"), &MagicGrayCoeffs::getG1Measures, &MagicGrayCoeffs::getG1Measures, 4},
    {latin1("bMG1Measure"), &MagicGrayCoeffs::getB1Measures, &MagicGrayCoeffs::getB1Measures, 4},
    {latin1("rMGFirstMeasure"), &MagicGrayCoeffs::getFirstRMeasures, &MagicGrayCoeffs::getFirstRMeasures, 5},
    {latin1("gMGFirstMeasure"), &MagicGrayCoeffs::getFirstGMeasures, &MagicGrayCoeffs::getFirstGMeasures, 5},
    {latin1("bMGFirstMeasure"), &MagicGrayCoeffs::getFirstBMeasures, &MagicGrayCoeffs::getFirstBMeasures, 5},
}};

constexpr std::array<Series, 4> seriesFields{{
    {latin1("rMGMeasure"), &MagicGrayCoeffs::getACRMeasures, &MagicGrayCoeffs::getACRMeasures, 6},
    {latin1("gMGMeasure"), &MagicGrayCoeffs::getACGMeasures, &MagicGrayCoeffs::getACGMeasures, 6},
    {latin1("bMGMeasure"), &MagicGrayCoeffs::getACBMeasures, &MagicGrayCoeffs::getACBMeasures, 6},
    {latin1("wMGMeasure"), &MagicGrayCoeffs::getWhiteMeasures, &MagicGrayCoeffs::getWhiteMeasures},
}};

constexpr std::array<Table, 3> tableFields{{
    {latin1("mgCurrentLUTs"), &MagicGrayCoeffs::getCurrentLUTs, &MagicGrayCoeffs::getCurrentLUTs},
    {latin1("mgComGainLUTOdd"), &MagicGrayCoeffs::getComGainLUTOdd, &MagicGrayCoeffs::getComGainLUTOdd, 7},
    {latin1("mgComGainLUTEven"), &MagicGrayCoeffs::getComGainLUTEven, &MagicGrayCoeffs::getComGainLUTEven, 7},
}};

void setBaseScale(MagicGrayParam& param, int bits)
{
    param.setBaseScaleBit(bits);
}

/// The section counts the bits above the first eight.
void setPwmRange(MagicGrayParam& param, int bits)
{
    constexpr int offset = 8;
    param.setPWMRangeBit(std::min(bits, std::numeric_limits<int>::max() - offset) + offset);
}

constexpr std::array<JsonFields::ForeignField<MagicGrayParam>, 2> paramFields{{
    {latin1("compBase"), &setBaseScale},
    {latin1("maxDataShiftBase"), &setPwmRange},
}};

} // namespace

std::vector<JsonMember> members()
{
    return JsonFields::membersOf(pointFields, seriesFields, tableFields, paramFields);
}

std::vector<JsonMember> measureMembers()
{
    return JsonFields::membersOf(pointFields, seriesFields);
}

QJsonObject toJson(const MagicGrayCoeffs& coeffs)
{
    QJsonObject object;
    writeMeasures(coeffs, object);
    JsonFields::write(tableFields, coeffs, object);
    return object;
}

void writeMeasures(const MagicGrayCoeffs& coeffs, QJsonObject& object)
{
    JsonFields::write(pointFields, coeffs, object);
    JsonFields::write(seriesFields, coeffs, object);
}

void read(const QJsonObject& object, MagicGrayCoeffs& coeffs, MagicGrayParam& param)
{
    JsonFields::read(pointFields, object, coeffs);
    JsonFields::read(seriesFields, object, coeffs);
    JsonFields::read(tableFields, object, coeffs);
    JsonFields::read(paramFields, object, param);
}

} // namespace MagicGray
