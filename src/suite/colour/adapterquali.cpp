#include "adapterquali.h"

#include "colourdifference.h"
#include "correction.h"
#include "coverage.h"

#include <algorithm>

namespace {

Colour::Primaries primaries(const ColorGamutPARM& gamut, const OnePointLxy& white = {})
{
    return {{gamut.redX, gamut.redY}, {gamut.greenX, gamut.greenY}, {gamut.blueX, gamut.blueY}, {white.x, white.y}};
}

bool hasZeroY(const ColorGamutPARM& gamut)
{
    return gamut.redY == 0.0 || gamut.greenY == 0.0 || gamut.blueY == 0.0;
}

Colour::Vector3 toXyz(const OnePointLxy& point)
{
    return {point.L * point.x / point.y, point.L, point.L * (1.0 - point.x - point.y) / point.y};
}

} // namespace

void AdapterQuali::MICCMatrixCoef(short* coefficients, double* whiteLumRatio, const ColorGamutPARM& target,
                                  const ColorGamutPARM& source, OnePointLxy targetWhite, OnePointLxy sourceWhite) const
{
    std::fill_n(coefficients, 9, short{0});
    const auto correction = Colour::correctionMatrix(primaries(source, sourceWhite), primaries(target, targetWhite));
    if (!correction)
        return;
    const auto scale = Colour::whiteScale(*correction, *whiteLumRatio, targetWhite.L, sourceWhite.L);
    if (!scale)
        return;
    const auto fixed = Colour::quantised(Colour::scaled(*correction, *scale));
    const auto sums = Colour::rowSums(fixed);
    if (*std::min_element(sums.begin(), sums.end()) <= 0) // rounded away: white would lack a primary
        return;
    std::copy(fixed.begin(), fixed.end(), coefficients);
}

void AdapterQuali::MICCGamutCoverge(double* first, double* second, const ColorGamutPARM& source,
                                    const ColorGamutPARM& target) const
{
    Colour::Coverage coverage;
    if (!hasZeroY(source) && !hasZeroY(target))
        coverage = Colour::coverage(primaries(source), primaries(target));
    *first = coverage.ratio;
    *second = coverage.covered;
}

double AdapterQuali::MDeltaE76Lxy(OnePointLxy first, OnePointLxy second, OnePointLxy white) const
{
    const Colour::Vector3 whiteXyz = toXyz(white);
    return Colour::deltaE76(Colour::toLab(toXyz(first), whiteXyz), Colour::toLab(toXyz(second), whiteXyz));
}

void AdapterQuali::MWRGBxy2RGBLratio(const ColorGamutPARM& gamut, OnePointLxy white, double* red, double* green,
                                     double* blue) const
{
    const auto toXyz = Colour::rgbToXyz(primaries(gamut, white));
    const Colour::Vector3 luminance = toXyz ? (*toXyz)[1] : Colour::Vector3{};
    *red = luminance[0];
    *green = luminance[1];
    *blue = luminance[2];
}
