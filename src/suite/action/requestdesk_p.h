#pragma once

#include <suite/action/action.h>

#include <QObject>

#include <deque>
#include <mutex>
#include <optional>
#include <thread>
#include <unordered_map>

namespace Action {

class RequestDesk;

/// Where answers from any thread are left for one asking thread. Lives as long as somebody may still answer.
class Mailbox : public AnswerSink
{
public:
    explicit Mailbox(RequestDesk* desk) : m_desk(desk), m_owner(std::this_thread::get_id()) {}

    /// Ends the request at once when its send call is running on this very thread; otherwise leaves the answer and
    /// wakes the desk.
    void deliver(Answer answer) override;
    /// Tells the desk that requests over transports before `generation` get no answer any more.
    void transportLost(std::uint64_t generation);

    /// The oldest answer left here, if there is one.
    std::optional<Answer> take();
    std::uint64_t lostBefore();
    /// The asking thread is done: answers are dropped from now on.
    void close();

private:
    void wake();

    std::mutex m_mutex;
    RequestDesk* m_desk; ///< null once closed
    const std::thread::id m_owner;
    std::deque<Answer> m_answers;
    std::uint64_t m_lostBefore = 0;
};

/// The requests in flight of one asking thread. A request stands in its table until it ends: it is taken out first,
/// then its callback runs, so whatever comes later finds nothing.
class RequestDesk : public QObject
{
public:
    RequestDesk();
    ~RequestDesk() override;

    /// The desk of the current thread; it is closed when the thread ends (on the main thread: with the application
    /// object).
    static RequestDesk& ofCurrentThread();

    std::shared_ptr<RequestHandle> send(const Request& request, const ResultCallback& onResult,
                                        const ErrorCallback& onError);

    /// Ends `answer.request` if its send call is running. On the desk's thread only.
    bool endInsideSend(Answer& answer);

protected:
    bool event(QEvent* event) override;
    void timerEvent(QTimerEvent* event) override;

private:
    struct InFlight
    {
        std::string action;
        std::string deviceId;
        ResultCallback onResult;
        ErrorCallback onError;
        std::chrono::milliseconds timeout;
        std::shared_ptr<RequestHandle> handle;
        std::uint64_t transportGeneration;
        bool isSending;
        int timerId;
    };

    void end(Answer answer);
    void endLost();
    void startTimeout(std::uint64_t request);

    std::shared_ptr<Mailbox> m_mailbox;
    std::unordered_map<std::uint64_t, InFlight> m_inFlight;
    std::unordered_map<int, std::uint64_t> m_requestByTimer;
    std::uint64_t m_lostBefore = 0;
};

} // namespace Action
