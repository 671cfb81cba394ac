#pragma once

#include <qualityutility/data/configdata.h>

namespace ReceivingCard {

/// Holder of the receiving card's current configuration. There is no lock: the first getInstance() must come from one
/// thread, and the configuration is used on that.
class QUALITYUTILITY_EXPORT RvCardConfigDataModel : public QObject
{
    Q_OBJECT

public:
    /// The current configuration; one of defaults is made where there is none. Owned by this class.
    static ConfigData* getInstance();
    /// Deletes the current configuration; the next getInstance() starts anew.
    static void releaseInstance();

private:
    static ConfigData* m_pInstance;
};

} // namespace ReceivingCard
