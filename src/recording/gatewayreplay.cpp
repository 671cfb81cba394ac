#include "gatewayreplay.h"

#include <gateway/cabinetparameters.h>
#include <gateway/frame.h>
#include <gateway/reading.h>

#include <recording/difference.h>

#include <QJsonArray>
#include <QJsonDocument>

#include <algorithm>

namespace Recording {

namespace {

using Common::Fault;
using Common::Result;

/// A call as it is compared: without the number that its client gave it, and the time that it waited.
QJsonObject callOf(const QByteArray& payload)
{
    QJsonObject call = Gateway::readingOf(payload);
    call.remove(QStringLiteral("id"));
    call.remove(QStringLiteral("timeout_ms"));
    return call;
}

/// What is asked of whom: "put Device_CorrectionGrayCoeff of left".
QString nameOf(const QJsonObject& call)
{
    const auto member = [&](const char* key) { return call.value(QLatin1String(key)).toString(); };
    QStringList parts{member("method")};
    if (!member("action").isEmpty())
        parts << member("action");
    const QJsonValue cids = call.value(QLatin1String("arguments"))[QLatin1String("cids")];
    if (member("method") == QLatin1String("read"))
        parts << QStringLiteral("cabinets")
              << QString::fromUtf8(QJsonDocument(cids.toArray()).toJson(QJsonDocument::Compact));
    if (!member("device").isEmpty())
        parts << QStringLiteral("of") << member("device");
    return parts.join(QLatin1Char(' '));
}

Gateway::Return failure(const QString& text)
{
    return {0, text};
}

} // namespace

Result<std::shared_ptr<GatewayReplay>> GatewayReplay::create(const Session& session,
                                                             std::function<void(const QString&)> told)
{
    const QStringList peers = session.peers();
    if (peers.size() > 1)
        return Fault{Fault::Kind::BadData, session.name, QStringLiteral("one gateway"),
                     peers.join(QStringLiteral(", "))};
    std::shared_ptr<GatewayReplay> replay(new GatewayReplay);
    const auto read = replay->read(session);
    if (!read)
        return read.fault();
    for (std::size_t i = 0; i < replay->m_exchanges.size(); ++i)
        replay->m_places[nameOf(replay->m_exchanges[i].call).toStdString()].push_back(i);
    replay->m_notes = std::make_unique<ReplayNotes>(static_cast<int>(replay->m_exchanges.size()), std::move(told));
    return replay;
}

Result<void> GatewayReplay::read(const Session& session)
{
    std::unordered_map<quint64, std::size_t> open; // calls without an answer yet
    for (std::size_t i = 0; i < session.messages.size(); ++i) {
        const auto message = Gateway::parseMessage(session.messages[i].payload);
        if (!message)
            return Fault{Fault::Kind::BadData,
                         QStringLiteral("%1, message %2").arg(session.name).arg(i + 1),
                         {},
                         message.fault().message()};
        if (const auto* hello = std::get_if<Gateway::Hello>(&*message)) {
            m_isReadable = m_isReadable || hello->isReadable;
        } else if (const auto* call = std::get_if<Gateway::Call>(&*message)) {
            open[call->id] = m_exchanges.size();
            m_exchanges.push_back({callOf(session.messages[i].payload), {}});
        } else if (const auto found = open.find(std::get<Gateway::Return>(*message).id); found != open.end()) {
            m_exchanges[found->second].answer = std::get<Gateway::Return>(*message);
        }
    }
    return {};
}

Gateway::Return GatewayReplay::answer(const Result<QByteArray>& frame) const
{
    if (!frame)
        return failure(frame.fault().message());
    const QJsonObject call = callOf(frame->mid(Gateway::headerLength));
    const QString name = nameOf(call);
    const std::lock_guard lock(m_mutex);
    std::vector<std::size_t> unasked;
    if (const auto found = m_places.find(name.toStdString()); found != m_places.end())
        std::copy_if(found->second.begin(), found->second.end(), std::back_inserter(unasked),
                     [this](std::size_t place) { return !m_exchanges[place].isAsked; });
    if (unasked.empty()) {
        m_notes->unknown(name);
        return failure(QStringLiteral("the recording has no such request any more"));
    }
    const auto equal = std::find_if(unasked.begin(), unasked.end(),
                                    [&](std::size_t place) { return m_exchanges[place].call == call; });
    Exchange& exchange = m_exchanges[equal == unasked.end() ? unasked.front() : *equal];
    exchange.isAsked = true;
    m_notes->asked(name, firstDifference(exchange.call, call));
    return exchange.answer ? *exchange.answer : failure(QStringLiteral("no answer was recorded"));
}

Result<QByteArray> GatewayReplay::wall() const
{
    Gateway::Call call;
    call.method = Gateway::Call::Method::List;
    const Gateway::Return recorded = answer(frameOf(call));
    if (const auto* text = std::get_if<QString>(&recorded.content))
        return Fault{Fault::Kind::Unavailable, QStringLiteral("wall document"), {}, *text};
    return QByteArray::fromStdString(std::get<Parameters>(recorded.content).get<std::string>("wall"));
}

void GatewayReplay::send(const Action::Request& request, const Action::Responder& responder)
{
    Gateway::Return recorded = answer(Gateway::frameOf(0, request));
    if (auto* reply = std::get_if<Parameters>(&recorded.content))
        responder.reply(std::move(*reply));
    else
        responder.fail(std::get<QString>(recorded.content));
}

std::optional<Action::CabinetState> GatewayReplay::cabinet(const std::string& deviceId, unsigned long long cid) const
{
    Gateway::Call call;
    call.method = Gateway::Call::Method::Read;
    call.device = deviceId;
    call.parameters.insert("cids", std::vector<unsigned long long>{cid});
    const Gateway::Return recorded = answer(frameOf(call));
    const auto* reply = std::get_if<Parameters>(&recorded.content);
    if (!reply)
        return std::nullopt;
    const std::lock_guard lock(m_mutex);
    auto state = Gateway::onlyCabinet(*reply, m_lastRead);
    if (state)
        m_lastRead = *state;
    return state;
}

} // namespace Recording
