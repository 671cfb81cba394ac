#pragma once

#include <vector>

namespace Charts {

/// The natural cubic spline through values at equal distances, at `steps` equal steps from each to the next: the given
/// values are met exactly, every `steps`-th is one of them. At least two values and one step, else nothing is between.
std::vector<double> splineThrough(const std::vector<double>& values, int steps);

} // namespace Charts
