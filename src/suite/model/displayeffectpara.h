#pragma once

#include <suite/model/colorgamutinfo.h>

#include <functional>

namespace Model {

/// What a cabinet is known to hold of picture quality, as last confirmed by its device. It belongs to one cabinet and
/// is not copied. Not thread-safe: used on the thread that works with the model, normally the GUI thread.
class DisplayEffectPara
{
public:
    enum class Field { EffectMode, FineGrayValid, ColorGamutValid, TargetColorGamut, OrgColorGamut };
    /// Called after a setter has stored its value, also when the value is the same as before.
    using Observer = std::function<void(Field)>;

    DisplayEffectPara() = default;
    DisplayEffectPara(const DisplayEffectPara&) = delete;
    DisplayEffectPara& operator=(const DisplayEffectPara&) = delete;

    /// Replaces the one observer; an empty one ends the observation.
    void setObserver(Observer observer) { m_observer = std::move(observer); }

    /// Bits that switch correction features; bit 3 (8) is the colour-gamut correction. 0 by default.
    unsigned int getEffectMode() const { return m_effectMode; }
    void setEffectMode(unsigned int mode) { store(m_effectMode, mode, Field::EffectMode); }

    /// Whether the cabinet holds a valid fine-gray table. False by default.
    bool getFineGrayValid() const { return m_fineGrayValid; }
    void setFineGrayValid(bool valid) { store(m_fineGrayValid, valid, Field::FineGrayValid); }

    /// Whether the cabinet holds a measured gamut. False by default.
    bool getColorGamutValid() const { return m_colorGamutValid; }
    void setColorGamutValid(bool valid) { store(m_colorGamutValid, valid, Field::ColorGamutValid); }

    const ColorGamutInfo& getTargetColorGamut() const { return m_targetColorGamut; }
    void setTargetColorGamut(const ColorGamutInfo& info) { store(m_targetColorGamut, info, Field::TargetColorGamut); }

    /// The measured ("original") gamut of the cabinet's LEDs.
    const ColorGamutInfo& getOrgColorGamut() const { return m_orgColorGamut; }
    void setOrgColorGamut(const ColorGamutInfo& info) { store(m_orgColorGamut, info, Field::OrgColorGamut); }

private:
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
    ColorGamutInfo m_targetColorGamut;
    ColorGamutInfo m_orgColorGamut;
    Observer m_observer;
};

} // namespace Model
