#pragma once

#include <qualityutility/qualityutility_export.h>

#include <QList>
#include <QObject>
#include <QString>

#include <map>
#include <string>
#include <vector>

namespace Model {
struct ColorGamutInfo;
}

/// Sending to cabinets: the interface, its two generations and what they tell of a failure.
namespace CabinetSenderSpace {

/// Targets of a sending operation: device identity to the identifiers of the cabinets under it. Devices are served one
/// at a time in ascending order of identity; the identifiers travel in the caller's order.
using CabinetTargetMap = std::map<std::string, std::vector<unsigned long long>>;

/// What the operations return.
enum SenderResult : int {
    ResultSuccess = 0,      ///< the last device confirmed, or the local model had the answer
    ResultSkipped = 1,      ///< the last device was skipped or never answered, or there was none
    ResultActionError = 15, ///< the last device's action failed, or the file to send does not exist or is too large
    ResultInvalidParameter = 103, ///< no usable target, or the cabinet is not in the local model
    ResultNotDelivered = 105,     ///< third generation: every failure
};

/// Sends picture-quality data to LED cabinets.
///
/// The operations return a SenderResult, block until every device has answered and report the result of the last device
/// only: DeviceOutcomes has each device's own. While waiting they run a local event loop, so they are called on a
/// thread that may run one, normally the GUI thread, and must not be called again from an event handler meanwhile. The
/// local model and the logs take an answer as it arrives, before any later event of that thread. Nothing throws.
///
/// Operations of the fourth generation may be called on several threads at once, Qt's or not, as long as no two of them
/// have a device in common: each blocks its own thread only, and updates its cabinets' records of the local model
/// there. Who else uses those records, and what a record's observer does, is the caller's to keep apart. The third
/// generation does one operation at a time.
class QUALITYUTILITY_EXPORT CabinetSenderBase : public QObject
{
    Q_OBJECT

public:
    /// A child of `parent`, which deletes it; without one it is its maker's.
    explicit CabinetSenderBase(QObject* parent = nullptr);
    /// Not while an operation waits.
    ~CabinetSenderBase() override;

    /// Reads what decides which fine-gray table applies to a cabinet: the gray-scale depth in bits and the chip-effect
    /// flag. Sends nothing where the local model knows them. On failure both outputs stay untouched.
    virtual int getFineGrayConfig(const std::string& deviceId, unsigned long long cid, int& grayScaleSeries,
                                  int& chipEffectFlag) = 0;

    /// Reads a cabinet's correction effect mode; bit 3 (8) is the gamut correction. `mode` stays untouched on failure.
    virtual int getCorrectEffectMode(const std::string& deviceId, unsigned long long cid, int& mode) = 0;

    /// Sets the correction effect mode of all targets, starting from the first cabinet's current mode. With `enable`, a
    /// positive `mode` adds its bits and a negative one is a mask of the bits to keep; without, a positive one is set
    /// as it is and a negative one gives 0. A `mode` of 0 gives 0.
    virtual int setCorrectEffectMode(const CabinetTargetMap& targets, int mode, bool enable) = 0;

    /// Switches the gamut correction. With `enable` the other bits of the mode are kept; without, the mode becomes 8
    /// (`gamutOn`) or 0.
    virtual int gamutCorrectEffectMode(const CabinetTargetMap& targets, bool gamutOn, bool enable) = 0;

    /// Sends a gray-scale coefficient table per colour, their magnitude table and the refresh frequency (Hz). Lengths
    /// are the device's to judge. Cabinets that the device confirms are marked fine-gray valid in the local model.
    virtual int setGrayScaleTable(const CabinetTargetMap& targets, const QList<unsigned char>& rGrayCoeffs,
                                  const QList<unsigned char>& gGrayCoeffs, const QList<unsigned char>& bGrayCoeffs,
                                  const QList<unsigned char>& magnitude, int freq) = 0;

    /// Sends the target gamut: name, primaries and white point (cd/m2 and CIE 1931 xy, unrounded). Where the device
    /// confirms it, all its targets take it into the local model.
    virtual int uploadNiccData(const CabinetTargetMap& targets, const Model::ColorGamutInfo& info) = 0;

    /// Sends the gamut's nine correction coefficients with the full-scale value of the device's type (1023 for "G4",
    /// else 255). Nothing is kept in the local model.
    virtual int setColorManageMode(const CabinetTargetMap& targets, const Model::ColorGamutInfo& info) = 0;

    /// Sends the measured gamut: primaries and white point. Confirmed cabinets take it into the local model.
    virtual int uploadNiccMeasure(const CabinetTargetMap& targets, const Model::ColorGamutInfo& info) = 0;

    /// Sends a receiving-card binary, unchanged. The file is read and encoded once and held in memory whole; one of
    /// more than 1.5 GB is refused with ResultActionError. A file that exists but cannot be opened is sent as empty:
    /// check it before.
    virtual int sendRvcardBin(const CabinetTargetMap& targets, const QString& filePath) = 0;
};

} // namespace CabinetSenderSpace
