#include "modelservice.h"

#include <mutex>
#include <shared_mutex>
#include <unordered_map>

namespace Service {

namespace {

struct RegisteredDevice
{
    std::shared_ptr<Model::Device> device;
    std::unordered_map<unsigned long long, std::shared_ptr<Model::Cabinet>> cabinets;
};

using Registry = std::unordered_map<std::string, RegisteredDevice>;

std::shared_mutex s_mutex;

Registry& registry()
{
    static Registry devices;
    return devices;
}

std::shared_ptr<Model::Cabinet> cabinetOf(const RegisteredDevice& entry, unsigned long long cid)
{
    const auto found = entry.cabinets.find(cid);
    return found == entry.cabinets.end() ? nullptr : found->second;
}

} // namespace

void ModelService::setDevices(std::vector<DeviceEntry> entries)
{
    Registry next;
    next.reserve(entries.size());
    for (DeviceEntry& entry : entries) {
        if (!entry.device)
            continue;
        const auto [place, isNew] = next.try_emplace(entry.device->getBase().getId());
        if (!isNew)
            continue;
        place->second.device = std::move(entry.device);
        place->second.cabinets.reserve(entry.cabinets.size());
        for (auto& cabinet : entry.cabinets) {
            if (!cabinet)
                continue;
            const unsigned long long cid = cabinet->getCid();
            place->second.cabinets.try_emplace(cid, std::move(cabinet));
        }
    }
    {
        const std::unique_lock lock(s_mutex);
        registry().swap(next);
    }
    // The earlier content is destroyed here, outside the lock: its observers may look things up.
}

std::shared_ptr<Model::Device> ModelService::getDevice(const std::string& deviceId)
{
    const std::shared_lock lock(s_mutex);
    const auto found = registry().find(deviceId);
    return found == registry().end() ? nullptr : found->second.device;
}

std::shared_ptr<Model::Cabinet> ModelService::getCabByCid(const std::string& deviceId, unsigned long long cid,
                                                          bool underDeviceOnly)
{
    const std::shared_lock lock(s_mutex);
    const auto found = registry().find(deviceId);
    if (found != registry().end()) {
        if (auto cabinet = cabinetOf(found->second, cid))
            return cabinet;
    }
    if (underDeviceOnly)
        return nullptr;
    for (const auto& [id, entry] : registry()) {
        if (auto cabinet = cabinetOf(entry, cid))
            return cabinet;
    }
    return nullptr;
}

} // namespace Service
