#pragma once

#include <suite/action/suite_action_export.h>
#include <suite/model/colorgamutinfo.h>

#include <QHash>
#include <QString>

namespace Action {

/// The standard gamut configurations, by name. Loaded by one thread, and read by any once nobody loads any more.
class SUITE_ACTION_EXPORT ColorGamutConfigAction
{
public:
    /// Reads a configuration document (docs/settings.md). False, with a log line and nothing changed, when it is
    /// missing or not one.
    bool load(const QString& path);

    /// Whether there is a configuration of exactly this name.
    bool contains(const QString& name) const { return m_gamuts.contains(name); }
    /// A record of defaults where there is none of that name.
    Model::ColorGamutInfo getByName(const QString& name) const { return m_gamuts.value(name); }
    /// The configuration that the document calls its default.
    Model::ColorGamutInfo defaultCfg() const { return getByName(m_defaultName); }

private:
    QHash<QString, Model::ColorGamutInfo> m_gamuts;
    QString m_defaultName;
};

/// The configurations that the suite's programs share.
class SUITE_ACTION_EXPORT CommonConfigAction
{
public:
    /// The process's instance, made at the first call by any thread: it reads qualityadjust/defaultcolorgamut.cfg
    /// beside the executable, or the built-in copy where that is missing or broken.
    static CommonConfigAction* getInstance();

    /// The gamut configurations, loaded; owned by this object and never null.
    ColorGamutConfigAction* getGamutConfigAC() { return &m_gamuts; }

private:
    CommonConfigAction();

    ColorGamutConfigAction m_gamuts;
};

} // namespace Action
