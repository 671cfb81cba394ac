#pragma once

// A call to the message hub beside a window: it waits on a thread of its own, and the window's events go on.

#include <qualityutility/tool/sender3th/cabinetsender3th.h>
#include <suite/model/colorgamutinfo.h>

#include <QThread>

/// Sends a target gamut through a hub: start() it, and take the result when finished() is emitted.
class HubCall : public QThread
{
public:
    HubCall(QString host, quint16 port, Model::ColorGamutInfo gamut)
        : m_host(std::move(host)), m_port(port), m_gamut(std::move(gamut))
    {}
    ~HubCall() override { wait(); }

    /// 0, or 105 with the reason; to be read once it is finished.
    int result() const { return m_result; }
    CabinetSenderSpace::HubFailure failure() const { return m_failure; }

protected:
    void run() override
    {
        CabinetSenderSpace::ClientSession session; // this thread's own, and so is the sender
        session.setTimeLimit(10000);
        session.connectToServer(m_host, m_port);
        const auto sender = CabinetSenderSpace::CabinetSender3th::create();
        sender->attachSession(&session);
        m_result = sender->uploadNiccData({}, m_gamut);
        m_failure = sender->lastFailure();
        sender->attachSession(nullptr); // a sender takes a connected session along
    }

private:
    const QString m_host;
    const quint16 m_port;
    const Model::ColorGamutInfo m_gamut;
    int m_result = CabinetSenderSpace::ResultNotDelivered;
    CabinetSenderSpace::HubFailure m_failure;
};
