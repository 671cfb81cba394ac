#include "cabinetreader.h"

namespace Action {

CabinetReader::~CabinetReader() = default;

} // namespace Action
