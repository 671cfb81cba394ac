#pragma once

#include <qualityutility/qualityutility_export.h>
#include <suite/serialize/serializable.h>

namespace ReceivingCard {

/// Selector of the kind of gamut coefficients that a receiving card uses.
class QUALITYUTILITY_EXPORT NiccCoeffs : public Xq::Serialize::Serializable
{
    Q_OBJECT
    /// Which kind, from 1; 1 by default. What has no kind is kept as given.
    Q_PROPERTY(unsigned char index MEMBER m_index)

public:
    /// A child of `parent`, which deletes it; without one it is its maker's.
    explicit NiccCoeffs(Serializable* parent = nullptr);
    /// Index and attribute; no parent.
    NiccCoeffs(const NiccCoeffs& other) = default;

    /// A copy without a parent, owned by the caller.
    NiccCoeffs* clone() const { return new NiccCoeffs(*this); }

    /// The bit of the index: 2^(index - 1) for 1 to 12, 1 for all others. ColorGamutType2QString() has the names.
    int getType() const;
    /// Stores the index, whatever it is, and gives its type.
    int getTypeByIndex(unsigned char index);

private:
    unsigned char m_index = 1;
};

} // namespace ReceivingCard
