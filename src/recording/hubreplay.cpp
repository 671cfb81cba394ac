#include "hubreplay.h"

#include <recording/difference.h>

#include <QJsonDocument>

namespace Recording {

namespace {

using Common::Fault;
using Common::Result;

/// What a request says, as JSON where it is JSON.
QJsonValue contentOf(const QByteArray& request)
{
    const auto document = QJsonDocument::fromJson(request);
    return document.isNull() ? QJsonValue(QString::fromUtf8(request)) : QJsonValue(document.object());
}

} // namespace

HubReplay::HubReplay(std::vector<Exchange> exchanges, std::function<void(const QString&)> told)
    : m_exchanges(std::move(exchanges)), m_notes(static_cast<int>(m_exchanges.size()), std::move(told))
{}

Result<std::unique_ptr<HubReplay>> HubReplay::start(const Session& session, quint16 port,
                                                    std::function<void(const QString&)> told)
{
    const QStringList peers = session.peers();
    if (peers.size() > 1)
        return Fault{Fault::Kind::BadData, session.name, QStringLiteral("one hub"), peers.join(QStringLiteral(", "))};
    std::unique_ptr<HubReplay> replay(new HubReplay(exchangesOf(session), std::move(told)));
    QString error;
    replay->m_hub = Simulator::SimulatedHub::start(port, error);
    if (!replay->m_hub)
        return Fault{Fault::Kind::Unavailable, QStringLiteral("hub replay"), {}, error};
    replay->m_hub->setScript(
        [self = replay.get()](const QByteArray& request, const QByteArray&) { return self->answer(request); });
    return replay;
}

std::vector<HubReplay::Exchange> HubReplay::exchangesOf(const Session& session)
{
    std::vector<Exchange> exchanges;
    for (const Message& message : session.messages) {
        if (!message.isReceived)
            exchanges.push_back({message.payload, {}});
        else if (!exchanges.empty()) // a hub that speaks first has nothing to do with requests
            exchanges.back().replies << Simulator::hubFrame(message.payload);
    }
    return exchanges;
}

Simulator::HubAnswer HubReplay::answer(const QByteArray& request)
{
    const QString name = QStringLiteral("request %1").arg(m_next + 1);
    if (m_next == m_exchanges.size()) {
        m_notes.unknown(name);
        return {{}, true};
    }
    const Exchange& recorded = m_exchanges[m_next++];
    m_notes.asked(name, firstDifference(contentOf(recorded.request), contentOf(request)));
    return {recorded.replies, recorded.replies.isEmpty()};
}

} // namespace Recording
