#include "colourdifference.h"

#include <cmath>

namespace Colour {

namespace {

constexpr double pi = 3.14159265358979323846;
constexpr double degree = pi / 180.0;

double labFunction(double t)
{
    constexpr double epsilon = 216.0 / 24389.0;
    constexpr double kappa = 24389.0 / 27.0;
    return t > epsilon ? std::cbrt(t) : (kappa * t + 16.0) / 116.0;
}

double pow7(double value)
{
    const double cube = value * value * value;
    return cube * cube * value;
}

/// sqrt(C^7 / (C^7 + 25^7)), which both the change of a* and the rotation use.
double chromaWeight(double chroma)
{
    const double c7 = pow7(chroma);
    return std::sqrt(c7 / (c7 + pow7(25.0)));
}

/// Radians, 0 up to 2 pi; 0 for a gray.
double hueAngle(double a, double b)
{
    if (a == 0.0 && b == 0.0)
        return 0.0;
    const double angle = std::atan2(b, a);
    return angle < 0.0 ? angle + 2.0 * pi : angle;
}

double hueDifference(double first, double second)
{
    double difference = second - first;
    if (difference > pi)
        difference -= 2.0 * pi;
    else if (difference < -pi)
        difference += 2.0 * pi;
    return difference;
}

double meanHue(double first, double second)
{
    const double sum = first + second;
    if (std::abs(first - second) <= pi)
        return 0.5 * sum;
    return sum < 2.0 * pi ? 0.5 * sum + pi : 0.5 * sum - pi;
}

} // namespace

Lab toLab(const Vector3& xyz, const Vector3& white)
{
    const double x = labFunction(xyz[0] / white[0]);
    const double y = labFunction(xyz[1] / white[1]);
    const double z = labFunction(xyz[2] / white[2]);
    return {116.0 * y - 16.0, 500.0 * (x - y), 200.0 * (y - z)};
}

double deltaE76(const Lab& first, const Lab& second)
{
    return std::hypot(second.lightness - first.lightness, second.a - first.a, second.b - first.b);
}

double ciede2000(const Lab& first, const Lab& second)
{
    const double meanChroma = 0.5 * (std::hypot(first.a, first.b) + std::hypot(second.a, second.b));
    const double stretch = 1.0 + 0.5 * (1.0 - chromaWeight(meanChroma));
    const double chroma1 = std::hypot(stretch * first.a, first.b);
    const double chroma2 = std::hypot(stretch * second.a, second.b);
    const bool isGray = chroma1 == 0.0 || chroma2 == 0.0;
    const double hue1 = hueAngle(stretch * first.a, first.b);
    const double hue2 = hueAngle(stretch * second.a, second.b);

    const double lightness = second.lightness - first.lightness;
    const double chroma = chroma2 - chroma1;
    const double hue = isGray ? 0.0 : 2.0 * std::sqrt(chroma1 * chroma2) * std::sin(0.5 * hueDifference(hue1, hue2));

    const double l50 = 0.5 * (first.lightness + second.lightness) - 50.0;
    const double c = 0.5 * (chroma1 + chroma2);
    const double h = isGray ? hue1 + hue2 : meanHue(hue1, hue2);
    const double t = 1.0 - 0.17 * std::cos(h - 30.0 * degree) + 0.24 * std::cos(2.0 * h) +
                     0.32 * std::cos(3.0 * h + 6.0 * degree) - 0.20 * std::cos(4.0 * h - 63.0 * degree);
    const double weightL = 1.0 + 0.015 * l50 * l50 / std::sqrt(20.0 + l50 * l50);
    const double weightC = 1.0 + 0.045 * c;
    const double weightH = 1.0 + 0.015 * c * t;
    const double turn = (h / degree - 275.0) / 25.0;
    const double rotation = -2.0 * chromaWeight(c) * std::sin(60.0 * degree * std::exp(-turn * turn));
    const double dL = lightness / weightL;
    const double dC = chroma / weightC;
    const double dH = hue / weightH;
    return std::sqrt(dL * dL + dC * dC + dH * dH + rotation * dC * dH);
}

} // namespace Colour
