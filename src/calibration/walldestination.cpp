#include "destination.h"
#include <calibration/figures.h>

namespace Calibration {

namespace {

class WallDestination : public Destination
{
public:
    WallDestination(QString name, CabinetSenderSpace::CabinetTargetMap targets, const Content& content,
                    const Action::CabinetReader* reader)
        : m_name(std::move(name)), m_targets(std::move(targets)), m_steps(stepsOf(content)),
          m_coefficients(signedCoefficients(content.target.coeff.getCoeffs())), m_reader(reader)
    {}

    QString name() const override { return m_name; }
    int stepCount() const override { return static_cast<int>(m_steps.size()); }

    std::vector<std::string> devices() const override
    {
        std::vector<std::string> result;
        for (const auto& [device, cids] : m_targets)
            result.push_back(device);
        return result;
    }

    DeviceRecord serve(const std::string& device, Observer& observer) override
    {
        const auto& cids = m_targets.at(device);
        DeviceRecord record = notServed(device);
        if (!observer.mayBegin())
            return record;
        for (std::size_t i = 0; i < m_steps.size(); ++i) {
            Outcome& outcome = record.outcomes[i];
            outcome = sendToDevice(m_steps[i], device, cids, m_reader);
            observer.sent(outcome);
            if (outcome.kind != Outcome::Kind::Answered)
                break;
        }
        if (m_reader)
            record.held = heldBy(readBack(*m_reader, {{device, cids}}));
        else if (record.isDone())
            record.held = {{static_cast<int>(cids.size()), m_coefficients, true}};
        record.known = m_reader && !record.held.isEmpty() ? Known::ReadBack : Known::Acknowledged;
        return record;
    }

    DeviceRecord notServed(const std::string& device) const override
    {
        DeviceRecord record;
        record.device = QString::fromStdString(device);
        for (const Step& step : m_steps)
            record.outcomes.push_back(notSent(step, device, m_targets.at(device).size()));
        return record;
    }

private:
    QString m_name;
    CabinetSenderSpace::CabinetTargetMap m_targets;
    std::vector<Step> m_steps;
    Colour::Coefficients m_coefficients;
    const Action::CabinetReader* m_reader;
};

} // namespace

QList<HeldCorrection> heldBy(const CabinetStates& states)
{
    std::map<std::pair<Colour::Coefficients, bool>, int> groups;
    for (const auto& [cabinet, state] : states)
        ++groups[{signedCoefficients(state.coefficients), (state.mode & gamutCorrectionBit) != 0}];
    QList<HeldCorrection> held;
    for (const auto& [group, count] : groups)
        held.append({count, group.first, group.second});
    return held;
}

Destination::~Destination() = default;

std::unique_ptr<Destination> wallDestination(const QString& name, const CabinetSenderSpace::CabinetTargetMap& targets,
                                             const Content& content, const Action::CabinetReader* reader)
{
    return std::make_unique<WallDestination>(name, targets, content, reader);
}

} // namespace Calibration
