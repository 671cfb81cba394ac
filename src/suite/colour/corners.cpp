#include "corners.h"

#include "colourdifference.h"

namespace Colour {

namespace {

constexpr Vector3 fullDrive{1.0, 1.0, 1.0};

/// A matrix from content to drive, on the wall that it drives.
struct DrivenWall
{
    Matrix3 toXyz;
    Matrix3 correction;

    Vector3 drive(const Vector3& content) const { return multiply(correction, content); }
    Vector3 shown(const Vector3& content) const { return multiply(toXyz, limitedDrive(drive(content))); }
    double whiteLuminance() const { return shown(fullDrive)[1]; }
};

Vector3 over(Vector3 xyz, double luminance)
{
    for (double& value : xyz)
        value /= luminance;
    return xyz;
}

Corner cornerOf(const Vector3& content, const Matrix3& targetToXyz, const DrivenWall& exact, const DrivenWall& real)
{
    Corner corner;
    corner.target = multiply(targetToXyz, content);
    corner.reachable = over(exact.shown(content), exact.whiteLuminance());
    corner.shown = over(real.shown(content), real.whiteLuminance());
    corner.exactDrive = exact.drive(content);
    const Vector3 white = multiply(targetToXyz, fullDrive);
    const Lab target = toLab(corner.target, white);
    const Lab reachable = toLab(corner.reachable, white);
    const Lab shown = toLab(corner.shown, white);
    corner.outOfReach = ciede2000(reachable, target);
    corner.notHeld = ciede2000(shown, reachable);
    corner.difference = ciede2000(shown, target);
    return corner;
}

} // namespace

std::optional<Corners> corners(const Primaries& source, const Primaries& target, const Coefficients& coefficients)
{
    const auto correction = correctionMatrix(source, target);
    const auto fit = correction ? whiteScale(*correction, 0.0, 0.0, 0.0) : std::nullopt;
    if (!fit)
        return std::nullopt;
    const Matrix3 sourceToXyz = *rgbToXyz(source); // both are systems, else there were no correction
    const Matrix3 targetToXyz = *rgbToXyz(target);
    const DrivenWall real{sourceToXyz, toMatrix(coefficients)};
    Corners result;
    result.whiteKept = real.whiteLuminance();
    if (!(result.whiteKept > 0.0))
        return std::nullopt;
    const double scale = std::min(result.whiteKept, *fit); // a correction keeps luminance
    const DrivenWall exact{sourceToXyz, scaled(*correction, scale)};
    for (std::size_t i = 0; i < judgedContents.size(); ++i)
        result.corners[i] = cornerOf(judgedContents[i], targetToXyz, exact, real);
    return result;
}

std::optional<Chromaticity> chromaticity(const Vector3& xyz)
{
    const double sum = rowSum(xyz);
    if (!(sum > 0.0))
        return std::nullopt;
    return Chromaticity{xyz[0] / sum, xyz[1] / sum};
}

std::optional<Primaries> shownPrimaries(const Corners& corners)
{
    const auto shown = [&corners](std::size_t content) { return chromaticity(corners.corners[content].shown); };
    const auto red = shown(0);
    const auto green = shown(1);
    const auto blue = shown(2);
    const auto white = shown(judgedWhite);
    if (!red || !green || !blue || !white)
        return std::nullopt;
    return Primaries{*red, *green, *blue, *white};
}

} // namespace Colour
