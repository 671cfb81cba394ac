#pragma once

#include <calibration/content.h>
#include <calibration/devicerecord.h>
#include <calibration/hubclient.h>

namespace Calibration {

/// Where a calibration is sent: devices. serve() may be called on several threads at once, each for another device; all
/// else is used on one thread.
class Destination
{
public:
    Destination() = default;
    virtual ~Destination();
    Destination(const Destination&) = delete;
    Destination& operator=(const Destination&) = delete;

    virtual QString name() const = 0;
    virtual std::vector<std::string> devices() const = 0;
    /// How many steps a device takes.
    virtual int stepCount() const = 0;

    /// Reaches a device, asks the observer whether it may begin, sends everything in order, and reads back what the
    /// device holds then. A step that fails ends it; a device that is not reached fails with its first. Blocks until
    /// the device has answered or its time is over. Any thread, Qt's or not; it is the only one at work on that device,
    /// and calls the observer itself.
    virtual DeviceRecord serve(const std::string& device, Observer& observer) = 0;
    /// Whether serve() blocks its thread without an event loop, so that it must not run where events are waited for.
    virtual bool blocksEvents() const { return false; }
    /// The record of a device to which nothing was sent.
    virtual DeviceRecord notServed(const std::string& device) const = 0;
};

/// What cabinets hold of a correction; those that hold the same stand together.
QList<HeldCorrection> heldBy(const CabinetStates& states);

/// Cabinets of the fourth generation, behind the transport of the action library. `reader` tells what they hold; it
/// must outlive the destination. Without one what a device acknowledged is taken to be held by all its cabinets.
std::unique_ptr<Destination> wallDestination(const QString& name, const CabinetSenderSpace::CabinetTargetMap& targets,
                                             const Content& content, const Action::CabinetReader* reader);

/// What a hub has received last; a simulated one can be asked.
struct HubHoldings
{
    Model::ColorGamutInfo measured;
    Model::ColorGamutInfo target;
};
using HubReader = std::function<HubHoldings()>;

/// A message hub that is served as one device.
struct HubTarget
{
    QString name; ///< the device's: HubAddress::name(), or another where the address is of the moment
    HubAddress address;
    HubReader reader = nullptr;                           ///< any thread; null where the hub cannot be asked
    CabinetSenderSpace::ClientSession::Tap tap = nullptr; ///< hears what is said, on the serving thread; may be empty
};

/// What stands behind message hubs of the third generation: each hub is one device, of another name, in the order of
/// the names. serve() connects, sends and disconnects on its own thread. A hub corrects from the gamuts itself; what it
/// holds is asked of its reader, and taken to be what was acknowledged where there is none.
std::unique_ptr<Destination> hubDestination(std::vector<HubTarget> hubs, const Content& content);

} // namespace Calibration
