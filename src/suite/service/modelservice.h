#pragma once

#include <suite/model/cabinet.h>
#include <suite/model/device.h>
#include <suite/service/suite_service_export.h>

#include <memory>
#include <string>
#include <vector>

/// Places and things of the system: devices, cabinets, folders, wall documents.
namespace Service {

/// A device with its cabinets, as entered into the registry.
struct DeviceEntry
{
    std::shared_ptr<Model::Device> device;                 ///< shared with the registry from then on
    std::vector<std::shared_ptr<Model::Cabinet>> cabinets; ///< each hangs on this device only
};

/// The process's registry of devices and cabinets. Look-ups cost O(1) on average. All functions may be called from any
/// thread; the devices and cabinets themselves are not guarded.
class SUITE_SERVICE_EXPORT ModelService
{
public:
    ModelService() = delete;

    /// Replaces the whole content. Null devices and cabinets are left out; of two devices with one identity, or two
    /// cabinets with one identifier under one device, the first is kept.
    static void setDevices(std::vector<DeviceEntry> entries);

    /// The device of this identity, or null.
    static std::shared_ptr<Model::Device> getDevice(const std::string& deviceId);

    /// The cabinet `cid` under `deviceId`, or null. When `underDeviceOnly` is false and this device has no such
    /// cabinet, the other devices are asked too, in no particular order.
    static std::shared_ptr<Model::Cabinet> getCabByCid(const std::string& deviceId, unsigned long long cid,
                                                       bool underDeviceOnly);
};

} // namespace Service
