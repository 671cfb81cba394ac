#pragma once

#include <qualityutility/qualityutility_export.h>
#include <suite/colour/adapterquali.h>
#include <suite/model/colorgamutinfo.h>

/// Computes the gamut (NICC) correction that makes a measured gamut show a target gamut. Stateless, except that every
/// computation logs its inputs and outputs; any thread.
class QUALITYUTILITY_EXPORT ComputeNICCCoef
{
public:
    ComputeNICCCoef() = delete;

    /// Computes the coefficients and coverage of `target` on a wall of the measured gamut `source` and stores them in
    /// `target`: its GamutCoeff, "cover" (what of the target the wall can show, 0..1) and "orgCover" (area of the
    /// source over area of the target). White is as bright as every channel allows. Always true: input that has no
    /// correction (a gamut that makes no RGB system, a white that cannot be shown or lies at its triangle's edge) gives
    /// nine zeros, and a critical log line that names the target.
    static bool createCoef(const Model::ColorGamutInfo& source, Model::ColorGamutInfo& target);

    /// The primaries' chromaticities of a record.
    static ColorGamutPARM ColorGamutTransform(const Model::ColorGamutInfo& info);

    /// The white of a record.
    static OnePointLxy GetWhiteLxy(const Model::ColorGamutInfo& info);

    /// As createCoef, with a white-luminance ratio: 0 for white as bright as every channel allows, 1 for the luminance
    /// of the target's white, where that is less.
    static void computeSingleCoef(Model::ColorGamutInfo& target, double whiteLumRatio, const ColorGamutPARM& source,
                                  OnePointLxy sourceWhite);
};
