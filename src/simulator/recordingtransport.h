#pragma once

#include <suite/action/transport.h>

#include <functional>
#include <vector>

namespace Simulator {

/// A transport that keeps every request and answers as it is told, on the asking thread. For dry runs and for tests
/// that script a device. Not thread-safe: used from one thread.
class RecordingTransport : public Action::Transport
{
public:
    struct Recorded
    {
        Action::Request::Method method;
        std::string action;
        std::string deviceId;
        Parameters parameters;
        QMap<QString, QString> headers;
        bool acknowledged;
        PackagePriority priority;
        Action::Responder responder; ///< to answer later, or again
    };
    /// Called inside send, after the request was kept.
    using Answer = std::function<void(const Recorded&)>;

    /// By default a request is confirmed inside the call: the reply names its cabinets and its mode.
    explicit RecordingTransport(Answer answer = confirm) : m_answer(std::move(answer)) {}

    void send(const Action::Request& request, const Action::Responder& responder) override;

    const std::vector<Recorded>& requests() const { return m_requests; }

    static void confirm(const Recorded& request);

private:
    Answer m_answer;
    std::vector<Recorded> m_requests;
};

} // namespace Simulator
