#pragma once

/// \file
/// The way of a device action to its device and back.

#include <suite/action/parameters.h>

#include <QMap>
#include <QString>

#include <chrono>
#include <cstdint>
#include <memory>
#include <variant>

/// How urgently a request should travel. The bundled library hands it to the transport unchanged.
enum class PackagePriority { Normal = 0, High = 1, Low = 2 };

namespace Action {

/// One device action on its way. The references hold only during Transport::send.
struct Request
{
    /// Which of Action::put and Action::post was called.
    enum class Method { Put, Post };

    Method method;                         ///< by which call it was asked
    const std::string& action;             ///< "Device_..."; docs/device-actions.md has the sender's
    const std::string& deviceId;           ///< the device's key, as the registry has it
    const Parameters& parameters;          ///< what the caller gave, its option "timeout" too
    const QMap<QString, QString>& headers; ///< empty for put
    bool acknowledged;                     ///< whether the device is asked to acknowledge
    PackagePriority priority;              ///< the caller's wish
    std::chrono::milliseconds timeout;     ///< the request is ended with an error when this has passed
};

/// How a request ended: its reply, or an error text for people.
struct Answer
{
    std::uint64_t request;                     ///< the number that its responder was made with
    std::variant<Parameters, QString> content; ///< the reply, or the error text
};

/// Where answers go. The action library has its own; another asker of a transport, such as a server that passes
/// requests on, brings one too.
class SUITE_ACTION_EXPORT AnswerSink
{
public:
    AnswerSink() = default;
    virtual ~AnswerSink();
    AnswerSink(const AnswerSink&) = delete;
    AnswerSink& operator=(const AnswerSink&) = delete;

    /// Takes an answer, the same request's perhaps again. Any thread, also inside Transport::send; must not block.
    virtual void deliver(Answer answer) = 0;
};

/// The way back of one request. Copies answer the same request; the first answer counts, later ones are dropped and
/// counted. May be called from any thread, at any time, also after the request has ended or the asking thread is gone.
class SUITE_ACTION_EXPORT Responder
{
public:
    /// Made by who asks, one for each request.
    Responder(std::shared_ptr<AnswerSink> sink, std::uint64_t request);

    /// Ends the request with a reply. The asker's callback runs inside this call when it is made within Transport::send
    /// on the asking thread, otherwise through that thread's event loop. Does not block.
    void reply(Parameters values) const;
    /// Ends the request with an error text for people, in the same way.
    void fail(const QString& text) const;

private:
    std::shared_ptr<AnswerSink> m_sink;
    std::uint64_t m_request;
};

/// What carries device actions to devices; implemented by a host or a simulator.
class SUITE_ACTION_EXPORT Transport
{
public:
    Transport() = default;
    /// Runs on whichever thread lets go of it last.
    virtual ~Transport();
    Transport(const Transport&) = delete;
    Transport& operator=(const Transport&) = delete;

    /// Takes one request. Called on the asking thread, possibly on several at once; must not block. What is needed
    /// after the return is copied here. The answer goes through `responder`, inside this call or from any thread later.
    virtual void send(const Request& request, const Responder& responder) = 0;
};

} // namespace Action
