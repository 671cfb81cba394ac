#include "sendreport.h"

#include <calibration/known.h>

namespace Reports {

namespace {

using Action::CabinetState;
using Calibration::Known;
using Calibration::Outcome;

QString gamutText(const std::shared_ptr<const Model::ColorGamutInfo>& gamut)
{
    if (!gamut)
        return QStringLiteral("none");
    return gamut->name.empty() ? QStringLiteral("yes") : QString::fromStdString(gamut->name);
}

QString describe(const CabinetState& state)
{
    const QString none = QStringLiteral("none");
    return QStringLiteral("mode %1 | gray table %2 | target gamut %3 | measured gamut %4 | coefficients %5 | binary %6")
        .arg(QString::number(state.mode),
             state.grayTable
                 ? QStringLiteral("%1 levels, %2 Hz").arg(state.grayTable->red.size()).arg(state.grayTable->freq)
                 : none,
             gamutText(state.targetGamut), gamutText(state.measuredGamut),
             state.fullScale ? QStringLiteral("9, full scale %1").arg(state.fullScale) : none,
             state.binary ? QStringLiteral("%1 bytes").arg(state.binary->size()) : none);
}

/// What the cabinets hold, one line per device and kind of content.
QString holdings(const Calibration::CabinetStates& states, bool isSimulated)
{
    std::map<std::pair<std::string, QString>, int> groups;
    for (const auto& [cabinet, state] : states)
        ++groups[{cabinet.first, describe(state)}];
    QString text = QStringLiteral("The cabinets now hold (%1%2):\n")
                       .arg(wordOf(Known::ReadBack), isSimulated ? QStringLiteral(", simulated") : QString());
    for (const auto& [group, count] : groups)
        text += QStringLiteral("  %1, %2 cabinets: %3\n")
                    .arg(QString::fromStdString(group.first), QString::number(count), group.second);
    return text;
}

QJsonArray coefficientsToJson(const std::vector<unsigned short>& bits)
{
    QJsonArray coefficients;
    for (const unsigned short coefficient : bits)
        coefficients.append(static_cast<short>(coefficient));
    return coefficients;
}

QJsonObject toJson(const std::pair<std::string, unsigned long long>& cabinet, const CabinetState& before,
                   const CabinetState& now)
{
    QJsonObject object{{QStringLiteral("device"), QString::fromStdString(cabinet.first)},
                       {QStringLiteral("cid"), identifier(cabinet.second).value},
                       {QStringLiteral("mode_before"), before.mode},
                       {QStringLiteral("mode"), now.mode},
                       {QStringLiteral("has_measured_gamut"), now.measuredGamut != nullptr}};
    if (now.grayTable) {
        object.insert(QStringLiteral("gray_levels"), static_cast<int>(now.grayTable->red.size()));
        object.insert(QStringLiteral("gray_frequency_hz"), now.grayTable->freq);
    }
    if (now.targetGamut)
        object.insert(QStringLiteral("target_gamut"), QString::fromStdString(now.targetGamut->name));
    if (now.fullScale) {
        object.insert(QStringLiteral("coefficients"), coefficientsToJson(now.coefficients));
        object.insert(QStringLiteral("full_scale"), now.fullScale);
    }
    if (now.binary)
        object.insert(QStringLiteral("binary_bytes"), now.binary->size());
    return object;
}

} // namespace

Table outcomeTable(const std::vector<Outcome>& outcomes)
{
    Table table({{QStringLiteral("step"), QStringLiteral("step")},
                 {QStringLiteral("device"), QStringLiteral("device")},
                 {QStringLiteral("cabinets"), QStringLiteral("cabinets")},
                 {QStringLiteral("cabinets_holding_it"), QStringLiteral("hold it")},
                 {QStringLiteral("seconds"), QStringLiteral("time"), QStringLiteral("s")},
                 {QStringLiteral("error"), QStringLiteral("answer")},
                 {QStringLiteral("sent"), {}},
                 {QStringLiteral("result"), {}}});
    for (const Outcome& outcome : outcomes) {
        const QString answer = Calibration::describe(outcome);
        const bool isAnswered = outcome.kind == Outcome::Kind::Answered;
        table.add({outcome.step,
                   outcome.device,
                   outcome.cabinets,
                   outcome.arrived,
                   decimal(outcome.seconds, 3),
                   {answer, isAnswered ? QJsonValue(QJsonValue::Undefined) : QJsonValue(answer)},
                   {{}, outcome.kind != Outcome::Kind::NotSent},
                   outcome.result});
    }
    return table;
}

QString toText(const SendResult& result)
{
    QString text = result.isSimulated ? QStringLiteral("Sent to simulated cabinets:\n") : QStringLiteral("Sent:\n");
    for (const Calibration::Step& step : result.steps)
        text += QStringLiteral("  %1: %2\n").arg(step.name, step.summary);
    return text + QLatin1Char('\n') + outcomeTable(result.outcomes).toText() + QLatin1Char('\n') +
           (result.isRead ? holdings(result.now, result.isSimulated)
                          : QStringLiteral("Acknowledged: these cabinets cannot be asked what they hold.\n"));
}

QJsonObject toJson(const SendResult& result)
{
    QJsonArray cabinets;
    for (const auto& [cabinet, state] : result.now) {
        const auto before = result.before.find(cabinet);
        cabinets.append(
            toJson(cabinet, before == result.before.end() ? Action::CabinetState() : before->second, state));
    }
    return {{QStringLiteral("simulated"), result.isSimulated},
            {QStringLiteral("known"), wordOf(result.isRead ? Known::ReadBack : Known::Acknowledged)},
            {QStringLiteral("results"), outcomeTable(result.outcomes).toJson()},
            {QStringLiteral("cabinets"), cabinets}};
}

} // namespace Reports
