#pragma once

#include "jsoncolumn_p.h"

namespace NiccDocuments {

DocumentKind configuration();
DocumentKind newNicc();

} // namespace NiccDocuments
