#include "requestdesk_p.h"

#include <QCoreApplication>
#include <QEvent>
#include <QThreadStorage>
#include <QTimerEvent>

#include <algorithm>

namespace Action {

namespace {

QEvent::Type wakeEventType()
{
    static const int type = QEvent::registerEventType();
    return static_cast<QEvent::Type>(type);
}

std::atomic<std::uint64_t> s_droppedAnswers{0};
std::atomic<std::uint64_t> s_lastRequest{0};

/// The one transport, and the mailboxes to tell when it is replaced.
struct Exchange
{
    std::mutex mutex;
    std::shared_ptr<Transport> transport;
    std::uint64_t generation = 0;
    std::vector<std::weak_ptr<Mailbox>> mailboxes;
};

Exchange& exchange()
{
    // Never destroyed: threads may outlive the statics.
    static auto* instance = new Exchange;
    return *instance;
}

QString subject(const std::string& action, const std::string& deviceId)
{
    return QStringLiteral("%1 to device %2").arg(QString::fromStdString(action), QString::fromStdString(deviceId));
}

} // namespace

void Mailbox::deliver(Answer answer)
{
    // On the asking thread the desk cannot go away meanwhile: only that thread closes it.
    if (std::this_thread::get_id() == m_owner) {
        RequestDesk* desk = nullptr;
        {
            const std::lock_guard lock(m_mutex);
            desk = m_desk;
        }
        if (desk && desk->endInsideSend(answer))
            return;
    }
    const std::lock_guard lock(m_mutex);
    if (!m_desk) {
        ++s_droppedAnswers;
        return;
    }
    m_answers.push_back(std::move(answer));
    wake();
}

void Mailbox::transportLost(std::uint64_t generation)
{
    const std::lock_guard lock(m_mutex);
    m_lostBefore = generation;
    if (m_desk)
        wake();
}

// One event per answer, never one for several: a nested event loop begins with what is posted from then on, and may
// pass over an event that was waiting before.
void Mailbox::wake()
{
    QCoreApplication::postEvent(m_desk, new QEvent(wakeEventType()));
}

std::optional<Answer> Mailbox::take()
{
    const std::lock_guard lock(m_mutex);
    if (m_answers.empty())
        return std::nullopt;
    Answer oldest = std::move(m_answers.front());
    m_answers.pop_front();
    return oldest;
}

std::uint64_t Mailbox::lostBefore()
{
    const std::lock_guard lock(m_mutex);
    return m_lostBefore;
}

void Mailbox::close()
{
    const std::lock_guard lock(m_mutex);
    m_desk = nullptr;
    s_droppedAnswers += m_answers.size();
    m_answers.clear();
}

RequestDesk::RequestDesk() : m_mailbox(std::make_shared<Mailbox>(this))
{
    Exchange& shared = exchange();
    const std::lock_guard lock(shared.mutex);
    auto& all = shared.mailboxes;
    all.erase(std::remove_if(all.begin(), all.end(), [](const auto& box) { return box.expired(); }), all.end());
    all.push_back(m_mailbox);
}

RequestDesk::~RequestDesk()
{
    while (auto answer = m_mailbox->take())
        end(std::move(*answer));
    m_mailbox->close();
    while (!m_inFlight.empty())
        end({m_inFlight.begin()->first, QStringLiteral("shut down: the asking thread has ended")});
}

RequestDesk& RequestDesk::ofCurrentThread()
{
    static QThreadStorage<RequestDesk*> desks;
    if (!desks.hasLocalData())
        desks.setLocalData(new RequestDesk);
    return *desks.localData();
}

std::shared_ptr<RequestHandle> RequestDesk::send(const Request& request, const ResultCallback& onResult,
                                                 const ErrorCallback& onError)
{
    std::shared_ptr<Transport> transport;
    std::uint64_t generation = 0;
    {
        const std::lock_guard lock(exchange().mutex);
        transport = exchange().transport;
        generation = exchange().generation;
    }
    auto handle = std::make_shared<RequestHandle>();
    const std::uint64_t id = ++s_lastRequest;
    m_inFlight.emplace(id, InFlight{request.action, request.deviceId, onResult, onError, request.timeout, handle,
                                    generation, true, 0});
    if (!transport) {
        end({id, QStringLiteral("no transport for %1").arg(subject(request.action, request.deviceId))});
        return handle;
    }
    try {
        transport->send(request, Responder(m_mailbox, id));
    } catch (const std::exception& fault) {
        end({id, QStringLiteral("transport failed: %1").arg(QString::fromUtf8(fault.what()))});
    } catch (...) {
        end({id, QStringLiteral("transport failed: unknown exception")});
    }
    startTimeout(id);
    return handle;
}

void RequestDesk::startTimeout(std::uint64_t request)
{
    const auto found = m_inFlight.find(request);
    if (found == m_inFlight.end())
        return;
    InFlight& call = found->second;
    call.isSending = false;
    call.timerId = startTimer(call.timeout, Qt::PreciseTimer);
    if (call.timerId == 0) { // nothing would end it where no answer comes
        end({request,
             QStringLiteral("no timer for %1: its thread has no event loop").arg(subject(call.action, call.deviceId))});
        return;
    }
    m_requestByTimer.emplace(call.timerId, request);
}

bool RequestDesk::endInsideSend(Answer& answer)
{
    const auto found = m_inFlight.find(answer.request);
    if (found == m_inFlight.end() || !found->second.isSending)
        return false;
    end(std::move(answer));
    return true;
}

bool RequestDesk::event(QEvent* event)
{
    if (event->type() != wakeEventType())
        return QObject::event(event);
    if (auto answer = m_mailbox->take())
        end(std::move(*answer));
    endLost();
    return true;
}

void RequestDesk::timerEvent(QTimerEvent* event)
{
    const auto found = m_requestByTimer.find(event->timerId());
    if (found == m_requestByTimer.end())
        return;
    const std::uint64_t request = found->second;
    const InFlight& call = m_inFlight.at(request);
    end({request, QLatin1String(timeoutErrorPrefix) +
                      QStringLiteral("no answer for %1 within %2 s")
                          .arg(subject(call.action, call.deviceId),
                               QString::number(static_cast<double>(call.timeout.count()) / 1000.0))});
}

void RequestDesk::endLost()
{
    const std::uint64_t lostBefore = m_mailbox->lostBefore();
    if (lostBefore == m_lostBefore)
        return;
    m_lostBefore = lostBefore;
    std::vector<std::uint64_t> lost;
    for (const auto& [id, call] : m_inFlight) {
        if (call.transportGeneration < lostBefore)
            lost.push_back(id);
    }
    std::sort(lost.begin(), lost.end());
    for (const std::uint64_t id : lost) {
        if (m_inFlight.count(id) == 0)
            continue; // ended by a callback of the ones before it
        end({id, QStringLiteral("transport lost before the answer came")});
    }
}

void RequestDesk::end(Answer answer)
{
    const auto node = m_inFlight.extract(answer.request);
    if (node.empty()) {
        ++s_droppedAnswers;
        return;
    }
    const InFlight& call = node.mapped();
    if (call.timerId != 0) {
        killTimer(call.timerId);
        m_requestByTimer.erase(call.timerId);
    }
    call.handle->m_ended = true;
    if (auto* reply = std::get_if<Parameters>(&answer.content)) {
        if (call.onResult)
            call.onResult(std::move(*reply), call.deviceId);
    } else if (call.onError) {
        call.onError(std::get<QString>(answer.content));
    }
}

void setTransport(std::shared_ptr<Transport> transport)
{
    std::vector<std::shared_ptr<Mailbox>> mailboxes;
    std::uint64_t generation = 0;
    {
        const std::lock_guard lock(exchange().mutex);
        exchange().transport.swap(transport);
        generation = ++exchange().generation;
        for (const auto& box : exchange().mailboxes) {
            if (auto alive = box.lock())
                mailboxes.push_back(std::move(alive));
        }
    }
    transport.reset(); // outside the lock: the earlier transport may answer while it is taken down
    for (const auto& box : mailboxes)
        box->transportLost(generation);
}

std::uint64_t droppedAnswers()
{
    return s_droppedAnswers;
}

} // namespace Action
