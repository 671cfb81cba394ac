#pragma once

#include <qualityutility/tool/sender3th/cabinetsender3th.h>
#include <suite/action/cabinetreader.h>
#include <suite/common/result.h>

#include <functional>
#include <memory>

namespace Calibration {

/// Where a message hub is.
struct HubAddress
{
    QString host;
    quint16 port = 0;
    double timeout = 10.0;                           ///< longest wait for a reply, seconds
    CabinetSenderSpace::ClientSession::Tap tap = {}; ///< hears what is said; may be empty
};

/// A connection to a message hub of the third generation, on the thread that made it; the process's third-generation
/// sender works through it while it lives.
class HubClient
{
public:
    /// Connects; blocks for at most two seconds. Fault: unavailable, with the reason.
    static Common::Result<std::unique_ptr<HubClient>> connect(const HubAddress& address);
    ~HubClient();
    HubClient(const HubClient&) = delete;
    HubClient& operator=(const HubClient&) = delete;

    /// "hub 127.0.0.1:9000"
    QString name() const;

    /// Runs one operation and blocks until its reply; gives the seconds that it took. Faults: timeout; unavailable for
    /// a lost connection or an error number of the hub; protocol for a reply that is not understood.
    Common::Result<double> run(const std::function<int(CabinetSenderSpace::CabinetSender3th&)>& operation);

private:
    explicit HubClient(const HubAddress& address);
    Common::Fault failure() const;

    HubAddress m_address;
    CabinetSenderSpace::ClientSession m_session;
    CabinetSenderSpace::CabinetSender3th* m_sender;
};

/// Sends a gray table through the third-generation sender; gives its result. The frequency does not travel.
int sendGrayTable(CabinetSenderSpace::CabinetSender3th& sender, const Action::GrayTable& table);

} // namespace Calibration
