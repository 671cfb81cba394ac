#pragma once

#include <calibration/measurement.h>
#include <suite/colour/primaries.h>

namespace Calibration {

/// The white that red, green and blue of a measurement add up to, beside the white that was measured: on an additive
/// wall they are one.
struct Additivity
{
    Colour::MeasuredColour measured; ///< white as it was read
    Colour::MeasuredColour sum;      ///< of red, green and blue
    bool isRelative = false;         ///< luminances are not cd/m2, only right beside each other
    double luminance = 0.0;          ///< the sum's over the measured one's, less 1
    double duvPrime = 0.0;           ///< their distance in CIE 1976 u', v'

    /// Whether the two differ by more than 2 % of luminance or 0.003 in u', v'.
    bool isContradiction() const;
    /// Both whites and their difference in words.
    QString sentence() const;
};

/// Nothing for a measurement that does not know all four luminances.
std::optional<Additivity> additivityOf(const Measurement& measurement);

/// Which white a correction is computed from.
enum class WhiteSource { Measured, Sum };
/// "measured", "sum"
QString wordOf(WhiteSource white);

/// What a measurement's figures say against it, a sentence each: a contradiction between white and the sum, with the
/// one that counts, readings of a patch that differ, another observer, and labels that requireLabels() refuses.
QStringList warningsOf(const Measurement& measurement, WhiteSource white);

/// The measured gamut with the white that is wanted. Fault: bad data for the sum where luminances are not known, or
/// where it makes no gamut.
Result<Model::ColorGamutInfo> withWhite(const Measurement& measurement, WhiteSource white);

} // namespace Calibration
