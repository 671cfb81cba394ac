#pragma once

#include <suite/action/parameters.h>

#include <QEventLoop>
#include <QString>

#include <mutex>
#include <string>
#include <variant>

namespace CabinetSenderSpace {

/// Where the callbacks of one device request leave its answer and the operation waits for it. The operation and both
/// callbacks own it together, so a callback may come whenever it likes: the first answer that is given before the wait
/// has ended counts, every other one changes nothing. Model and arguments are touched by the operation alone, on its
/// own thread.
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
    /// std::monostate: never answered.
    using Content = std::variant<std::monostate, Reply, Error>;

    /// Leaves an answer. Any thread.
    void give(Content content);

    /// Takes the answer; if there is none yet, runs a local event loop until it is given or the thread's loops are told
    /// to quit. Called once, on the operation's thread.
    Content wait();

private:
    bool isOpen() const { return !m_isClosed && std::holds_alternative<std::monostate>(m_content); }

    std::mutex m_mutex;
    Content m_content;
    bool m_isClosed = false;      ///< the wait has ended
    QEventLoop* m_loop = nullptr; ///< runs in wait(); null otherwise
};

} // namespace CabinetSenderSpace
