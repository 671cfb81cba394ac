#include "server.h"

#include "servercore_p.h"

namespace Gateway {

Common::Result<std::unique_ptr<Server>> Server::start(Action::Devices devices, const Listening& listening)
{
    std::unique_ptr<Server> server(new Server);
    server->m_core = new Core(std::move(devices), listening);
    const QString error = server->m_core->listen();
    server->m_port = server->m_core->port();
    server->m_core->moveToThread(&server->m_thread);
    QObject::connect(&server->m_thread, &QThread::finished, server->m_core, &QObject::deleteLater);
    server->m_thread.start();
    if (!error.isEmpty())
        return Common::Fault{Common::Fault::Kind::Unavailable,
                             QStringLiteral("%1:%2").arg(listening.address.toString()).arg(listening.port),
                             {},
                             error};
    return server;
}

Server::~Server()
{
    m_thread.quit();
    m_thread.wait();
}

qint64 Server::requestCount() const
{
    return m_core->requestCount();
}

} // namespace Gateway
