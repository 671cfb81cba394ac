#include "transport.h"

#include "requestdesk_p.h"

namespace Action {

Responder::Responder(std::shared_ptr<Mailbox> mailbox, std::uint64_t request)
    : m_mailbox(std::move(mailbox)), m_request(request)
{}

void Responder::reply(Parameters values) const
{
    m_mailbox->deliver({m_request, std::move(values)});
}

void Responder::fail(const QString& text) const
{
    m_mailbox->deliver({m_request, text});
}

Transport::~Transport() = default;

} // namespace Action
