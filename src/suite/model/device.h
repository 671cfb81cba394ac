#pragma once

#include <string>

namespace Model {

/// Identity and kind of a device.
class Base
{
public:
    /// The key under which look-ups and actions name the device; not empty. Set before the device is entered into the
    /// registry, which keeps the key that it had then. @{
    const std::string& getId() const { return m_id; }
    void setId(const std::string& id) { m_id = id; }
    /// @}

    /// The maker's type name; exactly "G4" means coefficients with a full scale of 1023. Empty by default: unknown. @{
    const std::string& getType() const { return m_type; }
    void setType(const std::string& type) { m_type = type; }
    /// @}

private:
    std::string m_id;
    std::string m_type;
};

/// What a device can do.
class Capacity
{
public:
    /// Whether correction switches of many cabinets can be set by one batch request. False by default. @{
    bool getIsSupportBatchCorrectionSwitch() const { return m_batchCorrectionSwitch; }
    void setIsSupportBatchCorrectionSwitch(bool supported) { m_batchCorrectionSwitch = supported; }
    /// @}

private:
    bool m_batchCorrectionSwitch = false;
};

/// How a device is set up: here, what it can do.
class Configuration
{
public:
    /// Valid as long as the configuration. @{
    Capacity& getCapacity() { return m_capacity; }
    const Capacity& getCapacity() const { return m_capacity; }
    /// @}

private:
    Capacity m_capacity;
};

/// A device that cabinets hang on. Shared by those who look it up; it stays valid after the registry let go of it. Not
/// thread-safe: changed before it is entered, read afterwards.
class Device
{
public:
    /// Valid as long as the device. @{
    Base& getBase() { return m_base; }
    const Base& getBase() const { return m_base; }

    Configuration& getConfiguration() { return m_configuration; }
    const Configuration& getConfiguration() const { return m_configuration; }
    /// @}

private:
    Base m_base;
    Configuration m_configuration;
};

} // namespace Model
