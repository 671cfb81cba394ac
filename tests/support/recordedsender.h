#pragma once

#include <qualityutility/tool/sender4th/cabinetsender4th.h>
#include <simulator/recordingtransport.h>
#include <suite/action/action.h>
#include <suite/service/modelservice.h>

#include <QStringList>

/// A device of three cabinets with this effect mode.
inline Service::DeviceEntry device(const std::string& id, const std::string& type, bool batch, unsigned int mode)
{
    Service::DeviceEntry entry{std::make_shared<Model::Device>(), {}};
    entry.device->getBase().setId(id);
    entry.device->getBase().setType(type);
    entry.device->getConfiguration().getCapacity().setIsSupportBatchCorrectionSwitch(batch);
    for (unsigned long long cid = 1; cid <= 3; ++cid) {
        entry.cabinets.push_back(std::make_shared<Model::Cabinet>(cid));
        entry.cabinets.back()->getDisplayEffectPara().setEffectMode(mode);
    }
    return entry;
}

inline Model::DisplayEffectPara& effect(const std::string& id, unsigned long long cid)
{
    return Service::ModelService::getCabByCid(id, cid, true)->getDisplayEffectPara();
}

/// The keys of a request's arguments, sorted.
inline QStringList keys(const Parameters& parameters)
{
    QStringList result;
    for (const auto& [key, value] : parameters.arguments().items())
        result << QString::fromStdString(key);
    result.sort();
    return result;
}

/// A sender to the devices a and b, whose requests are recorded and confirmed.
class RecordedSender
{
protected:
    void connectRecorder()
    {
        Service::ModelService::setDevices({device("a", "G4", true, 3), device("b", "G4+", false, 3)});
        answerWith(Simulator::RecordingTransport::confirm);
    }

    static void disconnectRecorder()
    {
        Action::setTransport(nullptr);
        Action::setTimeoutUnit(std::chrono::seconds(1));
    }

    void answerWith(Simulator::RecordingTransport::Answer answer)
    {
        m_transport = std::make_shared<Simulator::RecordingTransport>(std::move(answer));
        Action::setTransport(m_transport);
    }

    const Simulator::RecordingTransport::Recorded& request(size_t index = 0) const
    {
        return m_transport->requests().at(index);
    }

    std::shared_ptr<Simulator::RecordingTransport> m_transport;
    CabinetSenderSpace::CabinetSender4th m_sender{nullptr};
};
