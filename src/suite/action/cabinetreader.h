#pragma once

#include <suite/action/suite_action_export.h>
#include <suite/model/colorgamutinfo.h>

#include <QByteArray>

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace Action {

/// A gray-scale table as a cabinet holds it: per gray level three coefficients and a magnitude, 0..255 each.
struct GrayTable
{
    std::vector<unsigned char> red;       ///< coefficients, as they were sent
    std::vector<unsigned char> green;     ///< likewise
    std::vector<unsigned char> blue;      ///< likewise
    std::vector<unsigned char> magnitude; ///< the table of the coefficients' magnitudes
    int freq = 0;                         ///< refresh frequency, Hz

    /// All five are equal.
    bool operator==(const GrayTable& other) const
    {
        return red == other.red && green == other.green && blue == other.blue && magnitude == other.magnitude &&
               freq == other.freq;
    }
};

/// What one cabinet holds. Large parts are shared by the cabinets that received them in one request; what was never
/// received is null.
struct CabinetState
{
    int mode = 0;                               ///< correction effect mode; bit 3 (8) is the gamut correction
    std::shared_ptr<const GrayTable> grayTable; ///< red, green and blue came together
    std::shared_ptr<const Model::ColorGamutInfo> targetGamut;   ///< name and four points
    std::shared_ptr<const Model::ColorGamutInfo> measuredGamut; ///< four points, no name
    std::vector<unsigned short> coefficients; ///< nine, row-major, signed Q1.14 as two's-complement bits
    int fullScale = 0;                        ///< 0: no coefficients were received
    std::shared_ptr<const QByteArray> binary; ///< the receiving-card file, decoded
};

/// Reads back what cabinets hold. A transport whose devices can be asked implements it too; any thread.
class SUITE_ACTION_EXPORT CabinetReader
{
public:
    CabinetReader() = default;
    virtual ~CabinetReader();
    CabinetReader(const CabinetReader&) = delete;
    CabinetReader& operator=(const CabinetReader&) = delete;

    /// What a cabinet holds; nothing for one that is not there. May block for the time of a request.
    virtual std::optional<CabinetState> cabinet(const std::string& deviceId, unsigned long long cid) const = 0;
};

} // namespace Action
