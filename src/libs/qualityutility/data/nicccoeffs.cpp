#include "nicccoeffs.h"

namespace ReceivingCard {

NiccCoeffs::NiccCoeffs(Serializable* parent) : Serializable(parent) {}

int NiccCoeffs::getType() const
{
    constexpr unsigned char last = 12;
    return m_index >= 1 && m_index <= last ? 1 << (m_index - 1) : 1;
}

int NiccCoeffs::getTypeByIndex(unsigned char index)
{
    m_index = index;
    return getType();
}

} // namespace ReceivingCard
