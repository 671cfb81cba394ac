#include "recordingtransport.h"

namespace Simulator {

void RecordingTransport::send(const Action::Request& request, const Action::Responder& responder)
{
    const Recorded recorded{request.method,  request.action,       request.deviceId, request.parameters,
                            request.headers, request.acknowledged, request.priority, responder};
    m_requests.push_back(recorded);
    if (m_answer)
        m_answer(recorded);
}

void RecordingTransport::confirm(const Recorded& request)
{
    const ParameterMap& arguments = request.parameters.arguments();
    Parameters reply;
    if (const auto* cids = arguments.find<std::vector<unsigned long long>>("cids"))
        reply.insert("cids", *cids);
    if (const auto* mode = arguments.find<int>("mode"))
        reply.insert("mode", *mode);
    request.responder.reply(std::move(reply));
}

} // namespace Simulator
