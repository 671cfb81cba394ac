#pragma once

#include <suite/colour/correction.h>
#include <suite/colour/coverage.h>
#include <suite/model/colorgamutinfo.h>

#include <QJsonArray>
#include <QJsonObject>
#include <QList>
#include <QStringList>

/// What coefficients make of a wall of a measured gamut, beside the target: computed from the integers, as the cabinets
/// hold them.
struct GamutFigures
{
    Model::ColorGamutInfo source;
    Model::ColorGamutInfo target; ///< with the coefficients, cover and orgCover
    Colour::Coefficients coefficients{};
    Colour::Coverage coverageXy; ///< of the source against the target
    Colour::Coverage coverageUv;
    Colour::ReachedGamut reached;
    std::array<double, 4> ciede2000{}; ///< red, green, blue, white: reached against target

    /// The largest difference of the four.
    double worstDifference() const;
};

/// Computes the coefficients of `target` on a wall of `source`, and what they reach. Throws CommandError for gamuts
/// that have no correction.
GamutFigures computeFigures(const Model::ColorGamutInfo& source, const Model::ColorGamutInfo& target);

/// The figures of the coefficients that `target` holds already. Throws CommandError for coefficients that give no
/// light.
GamutFigures figuresOf(const Model::ColorGamutInfo& source, const Model::ColorGamutInfo& target);

/// Names of the four points, in the order of all figures: "red", "green", "blue", "white".
const QStringList& pointNames();

/// "95.37 %"
QString percent(double fraction);

QJsonArray coefficientsToJson(const Colour::Coefficients& coefficients);
/// Coefficients that are held as two's-complement bits.
Colour::Coefficients signedCoefficients(const std::vector<unsigned short>& bits);

QJsonObject toJson(const GamutFigures& figures);
/// A row per point: reached and target chromaticity, difference, reach. For textTable().
QList<QStringList> reachRows(const GamutFigures& figures);
/// The reach of one point in words: "reached", "out of reach".
QString reachText(const GamutFigures& figures, std::size_t point);
