#pragma once

#include <qualityutility/data/configdata.h>

namespace ReceivingCard {

/// Holder of the receiving card's current configuration. Its first getInstance() must come from one thread: there is no
/// lock.
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
