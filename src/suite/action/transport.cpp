#include "transport.h"

namespace Action {

Responder::Responder(std::shared_ptr<AnswerSink> sink, std::uint64_t request)
    : m_sink(std::move(sink)), m_request(request)
{}

void Responder::reply(Parameters values) const
{
    m_sink->deliver({m_request, std::move(values)});
}

void Responder::fail(const QString& text) const
{
    m_sink->deliver({m_request, text});
}

AnswerSink::~AnswerSink() = default;

Transport::~Transport() = default;

} // namespace Action
