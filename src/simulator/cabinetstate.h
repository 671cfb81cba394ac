#pragma once

#include <suite/model/colorgamutinfo.h>

#include <QByteArray>

#include <memory>
#include <vector>

namespace Simulator {

/// A gray-scale table as a cabinet received it.
struct GrayTable
{
    std::vector<unsigned char> red;
    std::vector<unsigned char> green;
    std::vector<unsigned char> blue;
    std::vector<unsigned char> magnitude;
    int freq = 0;
};

/// What one simulated cabinet holds. Large parts are shared by the cabinets that received them in one request; a null
/// part was never received.
struct CabinetState
{
    int mode = 0;
    std::shared_ptr<const GrayTable> grayTable;
    std::shared_ptr<const Model::ColorGamutInfo> targetGamut;
    std::shared_ptr<const Model::ColorGamutInfo> measuredGamut;
    std::vector<unsigned short> coefficients;
    int fullScale = 0; ///< 0: no coefficients were received
    std::shared_ptr<const QByteArray> binary;
};

} // namespace Simulator
