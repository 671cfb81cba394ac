#include "destination.h"
#include <calibration/figures.h>
#include <qualityutility/data/computenicccoef.h>

#include <QElapsedTimer>

#include <algorithm>

namespace Calibration {

namespace {

using CabinetSenderSpace::CabinetSender3th;

/// One thing to send through a hub.
struct HubStep
{
    QString name;
    std::function<int(CabinetSender3th&)> send;
};

std::vector<HubStep> hubSteps(const Content& content)
{
    std::vector<HubStep> steps;
    if (content.tableFile)
        steps.push_back({QStringLiteral("gray"),
                         [table = content.table](CabinetSender3th& sender) { return sendGrayTable(sender, table); }});
    steps.push_back({QStringLiteral("measure"), [gamut = content.measured](CabinetSender3th& sender) {
                         return sender.uploadNiccMeasure({}, gamut);
                     }});
    steps.push_back({QStringLiteral("gamut"),
                     [gamut = content.target](CabinetSender3th& sender) { return sender.uploadNiccData({}, gamut); }});
    return steps;
}

class HubDestination : public Destination
{
public:
    HubDestination(std::vector<HubTarget> hubs, const Content& content)
        : m_hubs(std::move(hubs)), m_steps(hubSteps(content)), m_acknowledged{content.measured, content.target}
    {
        std::sort(m_hubs.begin(), m_hubs.end(), [](const auto& a, const auto& b) { return a.name < b.name; });
    }

    QString name() const override
    {
        return m_hubs.size() == 1 ? m_hubs.front().name : QStringLiteral("%1 hubs").arg(m_hubs.size());
    }
    int stepCount() const override { return static_cast<int>(m_steps.size()); }
    bool blocksEvents() const override { return true; }

    std::vector<std::string> devices() const override
    {
        std::vector<std::string> result;
        for (const HubTarget& hub : m_hubs)
            result.push_back(hub.name.toStdString());
        return result;
    }

    DeviceRecord serve(const std::string& device, Observer& observer) override
    {
        DeviceRecord record = notServed(device);
        const HubTarget& hub = *std::find_if(m_hubs.begin(), m_hubs.end(), [&record](const HubTarget& candidate) {
            return candidate.name == record.device;
        });
        const auto client = HubClient::connect(hub.address, hub.tap);
        if (!client) {
            fail(record.outcomes.front(), client.fault());
            observer.sent(record.outcomes.front());
        } else if (observer.mayBegin()) {
            serve(hub, **client, record, observer);
        }
        return record;
    }

    DeviceRecord notServed(const std::string& device) const override
    {
        DeviceRecord record;
        record.device = QString::fromStdString(device);
        for (const HubStep& step : m_steps) {
            Outcome outcome;
            outcome.step = step.name;
            outcome.device = record.device;
            outcome.cabinets = 1; // the hub stands for all behind it
            record.outcomes.push_back(outcome);
        }
        return record;
    }

private:
    void serve(const HubTarget& hub, HubClient& client, DeviceRecord& record, Observer& observer) const
    {
        record.known = hub.reader ? Known::ReadBack : Known::Acknowledged;
        for (std::size_t i = 0; i < m_steps.size(); ++i) {
            run(m_steps[i], client, record.outcomes[i]);
            observer.sent(record.outcomes[i]);
            if (record.outcomes[i].kind != Outcome::Kind::Answered)
                return;
        }
        record.held = {{1, heldCoefficients(hub.reader), true}};
    }

    static void run(const HubStep& step, HubClient& client, Outcome& outcome)
    {
        QElapsedTimer timer;
        timer.start();
        const auto answered = client.run(step.send);
        outcome.seconds = static_cast<double>(timer.nsecsElapsed()) / 1e9;
        if (!answered)
            return fail(outcome, answered.fault());
        outcome.kind = Outcome::Kind::Answered;
        outcome.result = CabinetSenderSpace::ResultSuccess;
        outcome.arrived = 1;
    }

    static void fail(Outcome& outcome, const Fault& fault)
    {
        outcome.kind = fault.kind == Fault::Kind::Timeout ? Outcome::Kind::TimedOut : Outcome::Kind::Failed;
        outcome.result = CabinetSenderSpace::ResultNotDelivered;
        outcome.error = fault.found; // the device is the subject
    }

    /// What a hub makes of the gamuts that it holds.
    Colour::Coefficients heldCoefficients(const HubReader& reader) const
    {
        HubHoldings held = reader ? reader() : m_acknowledged;
        if (reader)
            ComputeNICCCoef::createCoef(held.measured, held.target);
        return signedCoefficients(held.target.coeff.getCoeffs());
    }

    std::vector<HubTarget> m_hubs; ///< by name
    std::vector<HubStep> m_steps;
    HubHoldings m_acknowledged;
};

} // namespace

std::unique_ptr<Destination> hubDestination(std::vector<HubTarget> hubs, const Content& content)
{
    return std::make_unique<HubDestination>(std::move(hubs), content);
}

} // namespace Calibration
