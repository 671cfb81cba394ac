#pragma once

#include <calibration/hubaddress.h>
#include <qualityutility/tool/sender3th/cabinetsender3th.h>
#include <suite/action/cabinetreader.h>
#include <suite/common/result.h>

#include <functional>
#include <memory>

namespace Calibration {

/// A connection to a message hub of the third generation, with a session and a sender of its own: several may be at
/// work at once, each on the thread that made it, which alone uses and destroys it. Qt need not have started that
/// thread.
class HubClient
{
public:
    /// Connects; blocks for at most two seconds. `tap` hears what is said from then on; it may be empty. Fault:
    /// unavailable, with the reason.
    static Common::Result<std::unique_ptr<HubClient>>
    connect(const HubAddress& address, const CabinetSenderSpace::ClientSession::Tap& tap = nullptr);
    /// Closes the connection.
    ~HubClient();
    HubClient(const HubClient&) = delete;
    HubClient& operator=(const HubClient&) = delete;

    /// "hub 127.0.0.1:9000"
    QString name() const { return m_address.name(); }

    /// Runs one operation and blocks its thread until the reply, without an event loop; gives the seconds that it took.
    /// Faults: timeout; unavailable for a lost connection or an error number of the hub; protocol for a reply that is
    /// not understood.
    Common::Result<double> run(const std::function<int(CabinetSenderSpace::CabinetSender3th&)>& operation);

private:
    explicit HubClient(const HubAddress& address);
    Common::Fault failure() const;

    HubAddress m_address;
    CabinetSenderSpace::ClientSession m_session;
    std::unique_ptr<CabinetSenderSpace::CabinetSender3th> m_sender;
};

/// Sends a gray table through the third-generation sender; gives its result. The frequency does not travel.
int sendGrayTable(CabinetSenderSpace::CabinetSender3th& sender, const Action::GrayTable& table);

} // namespace Calibration
