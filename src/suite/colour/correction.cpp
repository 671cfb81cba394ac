#include "correction.h"

#include <algorithm>
#include <limits>

namespace Colour {

namespace {

/// One unit less than the type holds: the adjustment of a row may add it.
constexpr double largestEntry = (std::numeric_limits<std::int16_t>::max() - 1.0) / fullScale;

bool isUsable(const Chromaticity& c)
{
    return std::isfinite(c.x) && std::isfinite(c.y) && c.y != 0.0;
}

std::int64_t toFixedPoint(double value)
{
    constexpr double limit = 1e15; // far outside the type, well inside the integers
    return std::llround(std::clamp(value * fullScale, -limit, limit));
}

std::int16_t limited(std::int64_t value)
{
    using Limits = std::numeric_limits<std::int16_t>;
    return static_cast<std::int16_t>(std::clamp<std::int64_t>(value, Limits::min(), Limits::max()));
}

} // namespace

std::optional<Matrix3> rgbToXyz(const Primaries& primaries)
{
    const std::array points{primaries.red, primaries.green, primaries.blue, primaries.white};
    if (!std::all_of(points.begin(), points.end(), isUsable) || isOnOneLine(primaries))
        return std::nullopt;
    const auto shares = luminanceShares(primaries);
    Matrix3 result{};
    for (std::size_t column = 0; column < 3; ++column) {
        const Chromaticity& c = points[column];
        result[0][column] = shares[column] * c.x / c.y;
        result[1][column] = shares[column];
        result[2][column] = shares[column] * (1.0 - c.x - c.y) / c.y;
    }
    if (!isFinite(result))
        return std::nullopt;
    return result;
}

std::optional<Matrix3> correctionMatrix(const Primaries& source, const Primaries& target)
{
    const auto sourceToXyz = rgbToXyz(source);
    const auto targetToXyz = rgbToXyz(target);
    const Primaries driven{source.red, source.green, source.blue, target.white};
    if (!sourceToXyz || !targetToXyz || !showsWhite(source) || !showsWhite(target) || !showsWhite(driven))
        return std::nullopt;
    const auto xyzToSource = inverse(*sourceToXyz);
    if (!xyzToSource)
        return std::nullopt;
    const Matrix3 result = multiply(*xyzToSource, *targetToXyz);
    if (!isFinite(result))
        return std::nullopt;
    return result;
}

std::optional<double> whiteScale(const Matrix3& correction, double ratio, double targetLuminance,
                                 double sourceLuminance)
{
    double largest = 0.0;
    for (const Vector3& row : correction)
        for (const double entry : row)
            largest = std::max(largest, std::abs(entry));
    const double sum = std::max({rowSum(correction[0]), rowSum(correction[1]), rowSum(correction[2])});
    const double fit = std::min(1.0 / sum, largestEntry / largest);
    double keep = 1.0;
    if (targetLuminance > 0.0 && sourceLuminance > 0.0 && std::isfinite(targetLuminance / sourceLuminance))
        keep = targetLuminance / sourceLuminance;
    const double k = ratio > 0.0 ? std::min(ratio, 1.0) : 0.0;
    const double scale = fit + k * (std::min(keep, fit) - fit);
    if (!(fit > 0.0) || !(scale > 0.0) || !std::isfinite(scale))
        return std::nullopt;
    return scale;
}

Coefficients quantised(const Matrix3& correction)
{
    Coefficients result{};
    for (std::size_t row = 0; row < 3; ++row) {
        const Vector3& exact = correction[row];
        std::array<std::int64_t, 3> rounded{};
        std::transform(exact.begin(), exact.end(), rounded.begin(), toFixedPoint);
        const auto largest =
            std::max_element(exact.begin(), exact.end(), [](double a, double b) { return std::abs(a) < std::abs(b); });
        rounded[static_cast<std::size_t>(largest - exact.begin())] +=
            toFixedPoint(rowSum(exact)) - (rounded[0] + rounded[1] + rounded[2]);
        std::transform(rounded.begin(), rounded.end(), result.data() + 3 * row, limited);
    }
    return result;
}

} // namespace Colour
