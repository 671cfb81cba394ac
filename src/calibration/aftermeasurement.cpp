#include "aftermeasurement.h"

#include <calibration/gamut.h>
#include <suite/colour/colourdifference.h>

#include <cmath>

namespace Calibration {

namespace {

/// Where red, green, blue and white stand among the judged contents.
constexpr std::array<std::size_t, 4> contents{0, 1, 2, Colour::judgedWhite};

/// A point beside its white; only the ratio of both luminances counts.
ComparedColour measuredColour(const Model::LXY& point, const Model::LXY& white)
{
    ComparedColour colour{{point.x, point.y}, {}, point.lum};
    const double relative = point.lum / white.lum;
    if (point.lum > 0.0 && white.lum > 0.0 && point.y > 0.0)
        colour.xyz = {relative * point.x / point.y, relative, relative * (1.0 - point.x - point.y) / point.y};
    return colour;
}

ComparedColour computedColour(const Colour::Vector3& xyz, double whiteLuminance)
{
    return {Colour::chromaticity(xyz).value_or(Colour::Chromaticity()), xyz, xyz[1] * std::max(0.0, whiteLuminance)};
}

/// The figures that most cabinets show; null where none shows light.
std::shared_ptr<const Figures> shownByMost(const Verification& verification)
{
    std::map<std::shared_ptr<const Figures>, int> cabinets;
    std::shared_ptr<const Figures> most;
    for (const Judgement& judgement : verification.judgements) {
        if (!judgement.figures)
            continue;
        const int count = cabinets[judgement.figures] += judgement.held.cabinets;
        if (!most || count > cabinets[most])
            most = judgement.figures;
    }
    return most;
}

ComparedPoint compare(std::size_t point, const Figures& figures, const Measurement& measurement)
{
    const Colour::Corners& corners = figures.corners;
    const Colour::Corner& corner = corners.corners[contents[point]];
    const Model::LXY& white = figures.measured.wLxy;
    const auto& patches = measurement.patches.points;
    ComparedPoint result;
    result.target = computedColour(corner.target, 0.0);
    result.computed = computedColour(corner.shown, corners.whiteKept * white.lum);
    result.before = measuredColour(*pointsOf(figures.measured)[point], white);
    result.after = measuredColour(patches[point].mean, patches[3].mean); // relative figures serve as well
    result.after.luminance = pointsOf(measurement.gamut)[point]->lum;
    const Colour::Vector3& targetWhite = corners.corners[Colour::judgedWhite].target;
    const auto difference = [&targetWhite](const ComparedColour& a, const ComparedColour& b) {
        return Colour::ciede2000(Colour::toLab(*a.xyz, targetWhite), Colour::toLab(*b.xyz, targetWhite));
    };
    if (result.before.xyz)
        result.beforeToTarget = difference(result.before, result.target);
    if (result.after.xyz) {
        result.afterToTarget = difference(result.after, result.target);
        result.afterToComputed = difference(result.after, result.computed);
    }
    result.uvBeforeToTarget = Colour::uvDistance(result.before.xy, result.target.xy);
    result.uvAfterToTarget = Colour::uvDistance(result.after.xy, result.target.xy);
    result.uvAfterToComputed = Colour::uvDistance(result.after.xy, result.computed.xy);
    return result;
}

} // namespace

double AfterMeasurement::worst() const
{
    double worst = 0.0;
    for (const ComparedPoint& point : points)
        worst = std::max(worst, acceptance.isStrict ? point.afterToTarget : point.afterToComputed);
    return worst;
}

std::optional<double> AfterMeasurement::whiteDifference() const
{
    const ComparedPoint& white = points.back();
    if (!(white.computed.luminance > 0.0) || !(white.after.luminance > 0.0))
        return std::nullopt;
    return white.after.luminance / white.computed.luminance - 1.0;
}

bool AfterMeasurement::isPassed() const
{
    constexpr double maxWhiteDifference = 0.05;
    return worst() <= acceptance.maxDifference && std::abs(whiteDifference().value_or(0.0)) <= maxWhiteDifference;
}

QString AfterMeasurement::sentence() const
{
    const auto white = whiteDifference();
    return QStringLiteral("%1: measured afterwards, CIEDE2000 from %2 %3")
               .arg(isPassed() ? QStringLiteral("PASSED") : QStringLiteral("DIFFERS"),
                    acceptance.isStrict ? QStringLiteral("the target") : QStringLiteral("what was computed"),
                    differenceText(worst(), acceptance.maxDifference)) +
           (white ? QStringLiteral(", white %1%2 % of luminance")
                        .arg(*white < 0.0 ? QString() : QStringLiteral("+"), QString::number(100.0 * *white, 'f', 1))
                  : QString());
}

Result<AfterMeasurement> compareAfter(const Verification& verification, const Measurement& measurement,
                                      const Acceptance& acceptance)
{
    const auto figures = shownByMost(verification);
    if (!figures)
        return Fault{Fault::Kind::BadData,
                     QStringLiteral("calibration"),
                     {},
                     QStringLiteral("no cabinet is known to show light")};
    AfterMeasurement result;
    result.acceptance = acceptance;
    for (std::size_t point = 0; point < result.points.size(); ++point) {
        result.points[point] = compare(point, *figures, measurement);
        if (!result.points[point].after.xyz)
            return Fault{Fault::Kind::BadData,
                         QStringLiteral("measurement %1, %2")
                             .arg(QString::fromStdString(measurement.gamut.name), pointName(point)),
                         QStringLiteral("luminances of it and of white above 0"), QStringLiteral("none")};
    }
    return result;
}

} // namespace Calibration
