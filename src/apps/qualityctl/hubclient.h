#pragma once

#include "output.h"

#include <simulator/simulatedhub.h>

#include <qualityutility/tool/sender3th/cabinetsender3th.h>

/// Where a hub is.
struct HubAddress
{
    std::string host; ///< empty with a port: this machine; empty without one: a simulated hub
    int port = 0;
    double timeout = 5.0; ///< longest wait for a reply, in seconds
};

/// A sender with a connected session; without an address, with a simulated hub of its own.
class HubClient
{
public:
    /// Throws CommandError, unavailable, for a hub that cannot be reached.
    HubClient(const HubAddress& address, const Output& output);
    ~HubClient();
    HubClient(const HubClient&) = delete;
    HubClient& operator=(const HubClient&) = delete;

    /// "hub 127.0.0.1:4000"
    QString name() const;
    /// Null for a hub elsewhere.
    const Simulator::SimulatedHub* simulated() const { return m_simulated.get(); }

    /// Runs one operation. Gives its seconds; throws CommandError with what the log said when it fails.
    double run(const std::function<int(CabinetSenderSpace::CabinetSender3th&)>& operation);

private:
    void startSimulated(const Output& output);
    CommandError failure(const QString& line) const;

    double m_timeout;
    QString m_host;
    int m_port = 0;
    std::unique_ptr<Simulator::SimulatedHub> m_simulated;
    CabinetSenderSpace::ClientSession m_session;
    CabinetSenderSpace::CabinetSender3th* m_sender = CabinetSenderSpace::CabinetSender3th::getInstance();
};
