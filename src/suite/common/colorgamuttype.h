#pragma once

/// \file
/// The names of the gamut types.

#include <suite/common/suite_common_export.h>

#include <QString>

/// The name of a gamut type: a single bit, 1 to 128 for the standard gamuts, 2048 for the user's own. With
/// `untranslated` it is the fixed name by which gamut configurations are kept, otherwise the name in the user's
/// language (translation context "ColorGamutType"). Empty for a type without a name. Any thread.
SUITE_COMMON_EXPORT QString ColorGamutType2QString(int type, bool untranslated);
