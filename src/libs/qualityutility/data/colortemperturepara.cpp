#include "colortemperturepara.h"

namespace ReceivingCard {

ColorTemperturePara::ColorTemperturePara(Serializable* parent) : Serializable(parent) {}

} // namespace ReceivingCard
