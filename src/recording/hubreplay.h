#pragma once

#include <simulator/simulatedhub.h>

#include <recording/replaynotes.h>
#include <recording/session.h>

namespace Recording {

/// Stands for a hub that was recorded: answers requests in their recorded order with the recorded replies, at once, and
/// notes where a request is another one. A request whose reply is not recorded, and one beyond the last, ends the
/// connection. Serves on a thread of its own.
class HubReplay
{
public:
    /// Listens on loopback; port 0 lets the system choose. `told` gets each difference, on the hub's thread. Faults:
    /// bad data for a session with several hubs; unavailable.
    static Common::Result<std::unique_ptr<HubReplay>> start(const Session& session, quint16 port,
                                                            std::function<void(const QString&)> told);

    quint16 port() const { return m_hub->port(); }
    /// Any thread.
    ReplayState state() const { return m_notes.state(); }

private:
    struct Exchange
    {
        QByteArray request;
        QList<QByteArray> replies; ///< what came before the next request
    };

    HubReplay(std::vector<Exchange> exchanges, std::function<void(const QString&)> told);
    static std::vector<Exchange> exchangesOf(const Session& session);
    Simulator::HubAnswer answer(const QByteArray& request);

    const std::vector<Exchange> m_exchanges;
    std::size_t m_next = 0; ///< on the hub's thread
    ReplayNotes m_notes;
    std::unique_ptr<Simulator::SimulatedHub> m_hub; ///< last: it ends before what its thread uses
};

} // namespace Recording
