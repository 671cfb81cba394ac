#pragma once

#include <suite/action/parameters.h>

#include <QMap>
#include <QString>

#include <chrono>
#include <cstdint>
#include <memory>

/// How urgently a request should travel. The bundled library hands it to the transport unchanged.
enum class PackagePriority { Normal = 0, High = 1, Low = 2 };

namespace Action {

/// One device action on its way. The references hold only during Transport::send.
struct Request
{
    enum class Method { Put, Post };

    Method method;
    const std::string& action;
    const std::string& deviceId;
    const Parameters& parameters;
    const QMap<QString, QString>& headers; ///< empty for put
    bool acknowledged;                     ///< whether the device is asked to acknowledge
    PackagePriority priority;
    std::chrono::milliseconds timeout; ///< the request is ended with an error when this has passed
};

class Mailbox;

/// The way back of one request. Copies answer the same request; the first answer counts, later ones are dropped and
/// counted. May be called from any thread, at any time, also after the request has ended or the asking thread is gone.
class SUITE_ACTION_EXPORT Responder
{
public:
    Responder(std::shared_ptr<Mailbox> mailbox, std::uint64_t request);

    /// Ends the request with a reply.
    void reply(Parameters values) const;
    /// Ends the request with an error text for people.
    void fail(const QString& text) const;

private:
    std::shared_ptr<Mailbox> m_mailbox;
    std::uint64_t m_request;
};

/// What carries device actions to devices; implemented by a host or a simulator.
class SUITE_ACTION_EXPORT Transport
{
public:
    Transport() = default;
    virtual ~Transport();
    Transport(const Transport&) = delete;
    Transport& operator=(const Transport&) = delete;

    /// Takes one request. Called on the asking thread, possibly on several at once; must not block. What is needed
    /// after the return is copied here. The answer goes through `responder`: inside this call, or later from any
    /// thread.
    virtual void send(const Request& request, const Responder& responder) = 0;
};

} // namespace Action
