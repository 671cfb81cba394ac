#pragma once

#include <gateway/message.h>
#include <suite/action/cabinetreader.h>

#include <recording/replaynotes.h>
#include <recording/session.h>

#include <QJsonObject>

#include <unordered_map>

namespace Recording {

/// Stands for the devices behind a gateway that was recorded, for a server: answers each request with what was recorded
/// for an equal one, at once and in whatever order they come; where there is none, with the answer to the first
/// unasked one of that action to that device, and notes where they differ; and where there is none either, with an
/// error. All functions may be called from any thread.
class GatewayReplay : public Action::Transport, public Action::CabinetReader
{
public:
    /// `told` gets each difference. Fault: bad data, for a session with several gateways too.
    static Common::Result<std::shared_ptr<GatewayReplay>> create(const Session& session,
                                                                 std::function<void(const QString&)> told);

    /// Whether cabinets of the recorded gateway could be asked.
    bool isReadable() const { return m_isReadable; }
    ReplayState state() const { return m_notes->state(); }
    /// The wall document. Fault: unavailable, where it was not asked for.
    Common::Result<QByteArray> wall() const;

    void send(const Action::Request& request, const Action::Responder& responder) override;
    std::optional<Action::CabinetState> cabinet(const std::string& deviceId, unsigned long long cid) const override;

private:
    /// A request and how it ended; nothing where that was not recorded.
    struct Exchange
    {
        QJsonObject call;
        std::optional<Gateway::Return> answer;
        bool isAsked = false;
    };
    GatewayReplay() = default;
    Common::Result<void> read(const Session& session);
    Gateway::Return answer(const Common::Result<QByteArray>& frame) const;

    bool m_isReadable = false;
    std::unique_ptr<ReplayNotes> m_notes;
    mutable std::mutex m_mutex; ///< guards what follows
    mutable std::vector<Exchange> m_exchanges;
    std::unordered_map<std::string, std::vector<std::size_t>> m_places; ///< of exchanges, by what is asked of whom
    mutable Action::CabinetState m_lastRead;
};

} // namespace Recording
