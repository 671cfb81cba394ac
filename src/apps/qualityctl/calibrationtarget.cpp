#include "calibrationtarget.h"

#include "graytablefile.h"
#include "hostlog.h"
#include "sendsteps.h"

#include <suite/action/action.h>

#include <QElapsedTimer>
#include <qualityutility/data/computenicccoef.h>

namespace {

using CabinetSenderSpace::CabinetSender3th;
using Simulator::HubCommands;

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

class WallTarget : public CalibrationTarget
{
public:
    WallTarget(const CalibrationContent& content, const WallArgument& argument, unsigned int seed, const Output& output)
        : m_steps(calibrationSteps(content))
    {
        const OpenWall wall = openWall(argument);
        m_targets = selectTargets(wall, argument);
        m_name = wall.name;
        HostLog::install(output.quiet);
        QString error;
        m_simulation = Simulator::SimulatedWall::create(wall.wall, seed, error);
        if (!m_simulation)
            throw CommandError{ExitCode::BadData, QStringLiteral("wall document %1: %2").arg(wall.name, error)};
        output.note(QStringLiteral("qualityctl: simulated wall: %1").arg(wall.name));
        Action::setTransport(m_simulation);
    }
    ~WallTarget() override { Action::setTransport(nullptr); }

    QString name() const override { return m_name; }
    int stepCount() const override { return static_cast<int>(m_steps.size()); }

    std::vector<std::string> devices() const override
    {
        std::vector<std::string> result;
        for (const auto& [device, cids] : m_targets)
            result.push_back(device);
        return result;
    }

    DeviceRecord serve(const std::string& device, Progress& progress) override
    {
        const auto& cids = m_targets.at(device);
        DeviceRecord record = notServed(device);
        for (std::size_t i = 0; i < m_steps.size(); ++i) {
            record.outcomes[i] = sendToDevice(m_steps[i], device, cids, m_simulation.get());
            progress.advance(QStringLiteral("%1 to %2").arg(m_steps[i].name, record.device));
            if (record.outcomes[i].kind != SendOutcome::Kind::Answered)
                break;
        }
        record.held = heldBy(readBack(*m_simulation, {{device, cids}}));
        return record;
    }

    DeviceRecord notServed(const std::string& device) const override
    {
        DeviceRecord record;
        record.device = QString::fromStdString(device);
        for (const SendStep& step : m_steps)
            record.outcomes.push_back(notSent(step, device, m_targets.at(device).size()));
        return record;
    }

private:
    std::vector<SendStep> m_steps;
    QString m_name;
    CabinetSenderSpace::CabinetTargetMap m_targets;
    std::shared_ptr<Simulator::SimulatedWall> m_simulation;
};

/// One thing to send through a hub.
struct HubStep
{
    QString name;
    std::function<int(CabinetSender3th&)> send;
};

std::vector<HubStep> hubSteps(const CalibrationContent& content)
{
    std::vector<HubStep> steps;
    if (!content.table.isEmpty()) {
        const auto table = std::make_shared<const GrayTableFile>(readGrayTable(content.table));
        steps.push_back({QStringLiteral("gray"), [table, frequency = content.frequency](CabinetSender3th& sender) {
                             return sender.setGrayScaleTable({}, table->red, table->green, table->blue,
                                                             table->magnitude, frequency);
                         }});
    }
    steps.push_back({QStringLiteral("measure"), [gamut = content.measured](CabinetSender3th& sender) {
                         return sender.uploadNiccMeasure({}, gamut);
                     }});
    steps.push_back({QStringLiteral("gamut"),
                     [gamut = content.target](CabinetSender3th& sender) { return sender.uploadNiccData({}, gamut); }});
    return steps;
}

Model::LXY hubPoint(const QJsonValue& value)
{
    return {value[QLatin1String("lum")].toDouble(),
            value[QLatin1String("cx")].toDouble(),
            value[QLatin1String("cy")].toDouble(),
            {}};
}

Model::ColorGamutInfo hubGamut(const QJsonObject& data)
{
    Model::ColorGamutInfo gamut;
    gamut.rLxy = hubPoint(data.value(QLatin1String("rLxy")));
    gamut.gLxy = hubPoint(data.value(QLatin1String("gLxy")));
    gamut.bLxy = hubPoint(data.value(QLatin1String("bLxy")));
    gamut.wLxy = hubPoint(data.value(QLatin1String("wLxy")));
    gamut.name = data.value(QLatin1String("name")).toString().toStdString();
    return gamut;
}

class HubTarget : public CalibrationTarget
{
public:
    HubTarget(const CalibrationContent& content, const HubAddress& address, const Output& output)
        : m_content(content), m_steps(hubSteps(content)), m_hub(address, output)
    {}

    QString name() const override
    {
        return m_hub.simulated() ? QStringLiteral("hub, simulated") : m_hub.name(); // without a port of the moment
    }
    int stepCount() const override { return static_cast<int>(m_steps.size()); }
    std::vector<std::string> devices() const override { return {name().toStdString()}; }

    DeviceRecord serve(const std::string& device, Progress& progress) override
    {
        DeviceRecord record = notServed(device);
        for (std::size_t i = 0; i < m_steps.size(); ++i) {
            run(m_steps[i], record.outcomes[i]);
            progress.advance(QStringLiteral("%1 to %2").arg(m_steps[i].name, record.device));
            if (record.outcomes[i].kind != SendOutcome::Kind::Answered)
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
            SendOutcome outcome;
            outcome.step = step.name;
            outcome.device = record.device;
            outcome.cabinets = 1; // the hub stands for all behind it
            record.outcomes.push_back(outcome);
        }
        return record;
    }

private:
    void run(const HubStep& step, SendOutcome& outcome)
    {
        try {
            outcome.seconds = m_hub.run(step.send);
            outcome.kind = SendOutcome::Kind::Answered;
            outcome.result = CabinetSenderSpace::ResultSuccess;
            outcome.arrived = 1;
        } catch (const CommandError& error) {
            outcome.kind = error.code == ExitCode::Timeout ? SendOutcome::Kind::TimedOut : SendOutcome::Kind::Failed;
            outcome.error = error.message;
        }
    }

    /// What the hub makes of the gamuts that it holds.
    Colour::Coefficients heldCoefficients() const
    {
        Model::ColorGamutInfo target = m_content.target;
        if (const auto* simulated = m_hub.simulated()) {
            target = hubGamut(simulated->received(HubCommands::TargetGamut));
            ComputeNICCCoef::createCoef(hubGamut(simulated->received(HubCommands::MeasuredGamut)), target);
        }
        return signedCoefficients(target.coeff.getCoeffs());
    }

    CalibrationContent m_content;
    std::vector<HubStep> m_steps;
    HubClient m_hub;
};

} // namespace

std::vector<SendStep> calibrationSteps(const CalibrationContent& content)
{
    std::vector<SendStep> steps;
    if (!content.binary.isEmpty())
        steps.push_back(binStep(content.binary));
    if (!content.table.isEmpty())
        steps.push_back(grayStep(content.table, content.frequency));
    steps.push_back(measureStep(content.measured));
    steps.push_back(gamutStep(content.target));
    steps.push_back(coefficientsStep(content.target.coeff.getCoeffs()));
    steps.push_back(modeStep(true, true));
    return steps;
}

std::unique_ptr<CalibrationTarget> wallTarget(const CalibrationContent& content, const WallArgument& wall,
                                              unsigned int seed, const Output& output)
{
    return std::make_unique<WallTarget>(content, wall, seed, output);
}

std::unique_ptr<CalibrationTarget> hubTarget(const CalibrationContent& content, const HubAddress& address,
                                             const Output& output)
{
    return std::make_unique<HubTarget>(content, address, output);
}
