#include "destination.h"
#include <calibration/figures.h>
#include <qualityutility/data/computenicccoef.h>

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
    HubDestination(QString name, const Content& content, HubClient& hub, HubReader reader)
        : m_name(std::move(name)), m_steps(hubSteps(content)), m_hub(hub),
          m_reader(std::move(reader)), m_acknowledged{content.measured, content.target}
    {}

    QString name() const override { return m_name; }
    int stepCount() const override { return static_cast<int>(m_steps.size()); }
    std::vector<std::string> devices() const override { return {m_name.toStdString()}; }

    DeviceRecord serve(const std::string& device, Observer& observer) override
    {
        DeviceRecord record = notServed(device);
        record.known = m_reader ? Known::ReadBack : Known::Acknowledged;
        for (std::size_t i = 0; i < m_steps.size(); ++i) {
            run(m_steps[i], record.outcomes[i]);
            observer.sent(record.outcomes[i]);
            if (record.outcomes[i].kind != Outcome::Kind::Answered)
                return record;
        }
        record.held = {{1, heldCoefficients(), true}};
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
    void run(const HubStep& step, Outcome& outcome)
    {
        const auto seconds = m_hub.run(step.send);
        if (!seconds) {
            const bool isLate = seconds.fault().kind == Fault::Kind::Timeout;
            outcome.kind = isLate ? Outcome::Kind::TimedOut : Outcome::Kind::Failed;
            outcome.result = CabinetSenderSpace::ResultNotDelivered;
            outcome.error = seconds.fault().message();
            return;
        }
        outcome.seconds = *seconds;
        outcome.kind = Outcome::Kind::Answered;
        outcome.result = CabinetSenderSpace::ResultSuccess;
        outcome.arrived = 1;
    }

    /// What the hub makes of the gamuts that it holds.
    Colour::Coefficients heldCoefficients() const
    {
        HubHoldings held = m_reader ? m_reader() : m_acknowledged;
        if (m_reader)
            ComputeNICCCoef::createCoef(held.measured, held.target);
        return signedCoefficients(held.target.coeff.getCoeffs());
    }

    QString m_name;
    std::vector<HubStep> m_steps;
    HubClient& m_hub;
    HubReader m_reader;
    HubHoldings m_acknowledged;
};

} // namespace

std::unique_ptr<Destination> hubDestination(const QString& name, const Content& content, HubClient& hub,
                                            HubReader reader)
{
    return std::make_unique<HubDestination>(name, content, hub, std::move(reader));
}

} // namespace Calibration
