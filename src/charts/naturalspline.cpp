#include "naturalspline.h"

namespace Charts {

namespace {

/// The spline's second derivatives at the values: m[i-1] + 4 m[i] + m[i+1] = 6 (v[i-1] - 2 v[i] + v[i+1]), zero at both
/// ends, solved by elimination from the front and substitution from the back.
std::vector<double> curvatures(const std::vector<double>& values)
{
    std::vector<double> above(values.size(), 0.0);
    std::vector<double> m(values.size(), 0.0);
    for (std::size_t i = 1; i + 1 < values.size(); ++i) {
        const double divisor = 4.0 - above[i - 1];
        above[i] = 1.0 / divisor;
        m[i] = (6.0 * (values[i - 1] - 2.0 * values[i] + values[i + 1]) - m[i - 1]) / divisor;
    }
    for (std::size_t i = values.size(); i-- > 2;)
        m[i - 1] -= above[i - 1] * m[i];
    return m;
}

} // namespace

std::vector<double> splineThrough(const std::vector<double>& values, int steps)
{
    if (values.size() < 2 || steps < 2)
        return values;
    const std::vector<double> m = curvatures(values);
    const auto bend = [](double t) { return (t * t * t - t) / 6.0; };
    std::vector<double> result;
    result.reserve((values.size() - 1) * static_cast<std::size_t>(steps) + 1);
    for (std::size_t i = 0; i + 1 < values.size(); ++i) {
        for (int step = 0; step < steps; ++step) {
            const double t = static_cast<double>(step) / steps;
            result.push_back((1.0 - t) * values[i] + t * values[i + 1] + bend(1.0 - t) * m[i] + bend(t) * m[i + 1]);
        }
    }
    result.push_back(values.back());
    return result;
}

} // namespace Charts
