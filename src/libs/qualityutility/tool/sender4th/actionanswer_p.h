#pragma once

#include <suite/action/parameters.h>

#include <QEventLoop>
#include <QString>

#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <variant>

namespace CabinetSenderSpace {

/// The answer to one device request, between its callbacks and the operation that waits for it. All of them own it
/// together, so a callback may come whenever and wherever it likes: the first answer before the end of the wait is
/// applied, once, on the operation's thread; every other one changes nothing. On that thread it is applied inside the
/// callback, also while an inner operation waits; from another thread, by the operation after its wait.
class ActionAnswer
{
public:
    struct Reply
    {
        Parameters values;
        std::string deviceId;
    };
    struct Error
    {
        QString text;
    };
    using Content = std::variant<Reply, Error>;
    /// Does what an answer means. Must not throw: the action library may be its caller's caller.
    using Apply = std::function<void(const Content&)>;

    /// Made on the operation's thread. What `apply` refers to lives until wait() has returned.
    explicit ActionAnswer(Apply apply) : m_apply(std::move(apply)) {}

    /// Takes an answer. Any thread.
    void give(Content content);

    /// Returns once an answer has been applied, or without one when the thread's loops are told to quit; runs `loop`
    /// meanwhile unless there is an answer already. Called once, on the operation's thread; `apply` is not called
    /// afterwards.
    void wait(QEventLoop& loop);

private:
    const std::thread::id m_owner = std::this_thread::get_id();
    Apply m_apply; ///< used on the operation's thread only
    std::mutex m_mutex;
    std::optional<Content> m_left; ///< by another thread; written while open only
    bool m_isOpen = true;          ///< no answer was given and the wait has not ended
    QEventLoop* m_loop = nullptr;  ///< runs in wait(); null otherwise
};

} // namespace CabinetSenderSpace
