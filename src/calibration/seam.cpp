#include "seam.h"

#include <calibration/gamut.h>
#include <suite/colour/colourdifference.h>

#include <algorithm>

namespace Calibration {

namespace {

using Differences = std::array<SeamDifference, Colour::judgedContents.size()>;

/// What cabinets show, in cd/m2.
class Shown
{
public:
    explicit Shown(const Figures& figures)
        : m_toXyz(Colour::scaled(*Colour::rgbToXyz(primariesOf(figures.measured)), figures.measured.wLxy.lum)),
          m_correction(Colour::toMatrix(figures.coefficients))
    {}

    Colour::Vector3 before(const Colour::Vector3& content) const { return Colour::multiply(m_toXyz, content); }
    Colour::Vector3 after(const Colour::Vector3& content) const
    {
        return Colour::multiply(m_toXyz, Colour::limitedDrive(Colour::multiply(m_correction, content)));
    }

private:
    Colour::Matrix3 m_toXyz;
    Colour::Matrix3 m_correction;
};

SeamDifference differenceOf(const Colour::Vector3& first, const Colour::Vector3& second, const Colour::Vector3& white)
{
    SeamDifference result;
    result.ciede2000 = ciede2000(Colour::toLab(first, white), Colour::toLab(second, white));
    const auto a = Colour::chromaticity(first);
    const auto b = Colour::chromaticity(second);
    if (a && b)
        result.duvPrime = Colour::uvDistance(*a, *b);
    return result;
}

Colour::Vector3 xyzOf(const Model::LXY& point)
{
    return {point.lum * point.x / point.y, point.lum, point.lum * (1.0 - point.x - point.y) / point.y};
}

std::size_t worstOf(const Differences& differences)
{
    const auto* const worst =
        std::max_element(differences.begin(), differences.end(),
                         [](const SeamDifference& a, const SeamDifference& b) { return a.ciede2000 < b.ciede2000; });
    return static_cast<std::size_t>(worst - differences.begin());
}

} // namespace

std::size_t Seam::worstBefore() const
{
    return worstOf(before);
}

std::size_t Seam::worstAfter() const
{
    return worstOf(after);
}

Seam seamOf(const Match& match, std::size_t first, std::size_t second)
{
    const Shown a(match.groups[first].figures);
    const Shown b(match.groups[second].figures);
    const Colour::Vector3 white = xyzOf(match.target.wLxy);
    Seam seam;
    for (std::size_t i = 0; i < Colour::judgedContents.size(); ++i) {
        const Colour::Vector3& content = Colour::judgedContents[i];
        seam.before[i] = differenceOf(a.before(content), b.before(content), white);
        seam.after[i] = differenceOf(a.after(content), b.after(content), white);
    }
    return seam;
}

} // namespace Calibration
