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

    /// Sends everything to a device, in order, and reads back what it holds then. A step that fails ends it. Blocks
    /// until the device has answered or its time is over. Any thread, Qt's or not; it is the only one at work on that
    /// device, and calls the observer itself. A destination of one device may need the thread that made it.
    virtual DeviceRecord serve(const std::string& device, Observer& observer) = 0;
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

/// What stands behind a message hub of the third generation, as one device. The hub corrects from the gamuts itself;
/// what it holds is asked of `reader`, and taken to be what was acknowledged where there is none. `hub` must outlive
/// the destination.
std::unique_ptr<Destination> hubDestination(const QString& name, const Content& content, HubClient& hub,
                                            HubReader reader);

} // namespace Calibration
