#pragma once

#include <suite/model/colorgamutinfo.h>

#include <functional>
#include <memory>

namespace Model {

/// What a cabinet is known to hold of picture quality, as last confirmed by its device. It belongs to one cabinet and
/// is not copied. Not thread-safe: one thread at a time uses it, normally the GUI thread, or the
/// one that sends to its device.
class DisplayEffectPara
{
public:
    /// What a setter changes, one for each.
    enum class Field { EffectMode, FineGrayValid, ColorGamutValid, TargetColorGamut, OrgColorGamut };
    /// Called after a setter has stored its value, also when the value is the same as before; on the setter's thread.
    using Observer = std::function<void(Field)>;

    /// A cabinet of which nothing is known.
    DisplayEffectPara() = default;
    DisplayEffectPara(const DisplayEffectPara&) = delete;
    DisplayEffectPara& operator=(const DisplayEffectPara&) = delete;

    /// Replaces the one observer; an empty one ends the observation.
    void setObserver(Observer observer) { m_observer = std::move(observer); }

    /// Bits that switch correction features; bit 3 (8) is the colour-gamut correction. 0 by default. @{
    unsigned int getEffectMode() const { return m_effectMode; }
    void setEffectMode(unsigned int mode) { store(m_effectMode, mode, Field::EffectMode); }
    /// @}

    /// Whether the cabinet holds a valid fine-gray table. False by default. @{
    bool getFineGrayValid() const { return m_fineGrayValid; }
    void setFineGrayValid(bool valid) { store(m_fineGrayValid, valid, Field::FineGrayValid); }
    /// @}

    /// Whether the cabinet holds a measured gamut. False by default. @{
    bool getColorGamutValid() const { return m_colorGamutValid; }
    void setColorGamutValid(bool valid) { store(m_colorGamutValid, valid, Field::ColorGamutValid); }
    /// @}

    /// The gamut that the cabinet was told to show; a record of defaults where none was confirmed. The reference sees
    /// later changes, once there is a gamut. @{
    const ColorGamutInfo& getTargetColorGamut() const { return valueOf(m_targetColorGamut); }
    void setTargetColorGamut(const ColorGamutInfo& info) { store(m_targetColorGamut, info, Field::TargetColorGamut); }
    /// @}

    /// The measured ("original") gamut of the cabinet's LEDs, as the target gamut. @{
    const ColorGamutInfo& getOrgColorGamut() const { return valueOf(m_orgColorGamut); }
    void setOrgColorGamut(const ColorGamutInfo& info) { store(m_orgColorGamut, info, Field::OrgColorGamut); }
    /// @}

private:
    /// Gamuts take memory only where there is one: walls have up to a hundred thousand cabinets.
    using StoredGamut = std::unique_ptr<ColorGamutInfo>;

    static const ColorGamutInfo& valueOf(const StoredGamut& gamut)
    {
        static const ColorGamutInfo none;
        return gamut ? *gamut : none;
    }

    void store(StoredGamut& member, const ColorGamutInfo& info, Field field)
    {
        if (!member)
            member = std::make_unique<ColorGamutInfo>();
        store(*member, info, field);
    }

    template <typename T>
    void store(T& member, const T& value, Field field)
    {
        member = value;
        if (m_observer)
            m_observer(field);
    }

    unsigned int m_effectMode = 0;
    bool m_fineGrayValid = false;
    bool m_colorGamutValid = false;
    StoredGamut m_targetColorGamut;
    StoredGamut m_orgColorGamut;
    Observer m_observer;
};

} // namespace Model
