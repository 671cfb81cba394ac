#pragma once

#include <array>
#include <cmath>
#include <optional>

/// Colour science of LED walls: linear light, CIE 1931 (2 degree observer), docs/colour.md has the derivations. Pure
/// functions of their arguments: any thread, nothing throws, nothing is kept. What has no answer is std::nullopt, or
/// what the function says.
namespace Colour {

/// Red, green and blue, or X, Y and Z.
using Vector3 = std::array<double, 3>;
/// Three rows of three.
using Matrix3 = std::array<Vector3, 3>;

/// m v, with v as a column.
constexpr Vector3 multiply(const Matrix3& m, const Vector3& v)
{
    Vector3 result{};
    for (std::size_t row = 0; row < 3; ++row)
        result[row] = m[row][0] * v[0] + m[row][1] * v[1] + m[row][2] * v[2];
    return result;
}

/// a b: what applies b first and then a.
constexpr Matrix3 multiply(const Matrix3& a, const Matrix3& b)
{
    Matrix3 result{};
    for (std::size_t row = 0; row < 3; ++row)
        for (std::size_t column = 0; column < 3; ++column)
            result[row][column] = a[row][0] * b[0][column] + a[row][1] * b[1][column] + a[row][2] * b[2][column];
    return result;
}

/// Each entry times `factor`.
constexpr Matrix3 scaled(Matrix3 m, double factor)
{
    for (Vector3& row : m)
        for (double& value : row)
            value *= factor;
    return m;
}

/// Of a correction's row: the drive of its LED channel for content white.
constexpr double rowSum(const Vector3& row)
{
    return row[0] + row[1] + row[2];
}

/// Whether no entry is infinite or NaN.
inline bool isFinite(const Matrix3& m)
{
    for (const Vector3& row : m)
        for (const double value : row)
            if (!std::isfinite(value))
                return false;
    return true;
}

/// The inverse, by cofactors. Nothing for a matrix that is not finite or is singular to within rounding (|det| up to
/// 1e-12).
inline std::optional<Matrix3> inverse(const Matrix3& m)
{
    constexpr double minDeterminant = 1e-12;
    Matrix3 cofactors{};
    for (std::size_t row = 0; row < 3; ++row) {
        const Vector3& next = m[(row + 1) % 3];
        const Vector3& last = m[(row + 2) % 3];
        for (std::size_t column = 0; column < 3; ++column) {
            const std::size_t second = (column + 1) % 3;
            const std::size_t third = (column + 2) % 3;
            cofactors[column][row] = next[second] * last[third] - next[third] * last[second];
        }
    }
    const double determinant = m[0][0] * cofactors[0][0] + m[0][1] * cofactors[1][0] + m[0][2] * cofactors[2][0];
    if (!(std::abs(determinant) > minDeterminant))
        return std::nullopt;
    const Matrix3 result = scaled(cofactors, 1.0 / determinant);
    if (!isFinite(result))
        return std::nullopt;
    return result;
}

} // namespace Colour
