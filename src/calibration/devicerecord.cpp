#include "devicerecord.h"

#include <QJsonArray>

#include <algorithm>

namespace Calibration {

namespace {

const QString s_deviceKey = QStringLiteral("device");
const QString s_outcomesKey = QStringLiteral("outcomes");
const QString s_stepKey = QStringLiteral("step");
const QString s_cabinetsKey = QStringLiteral("cabinets");
const QString s_sentKey = QStringLiteral("sent");
const QString s_resultKey = QStringLiteral("result");
const QString s_secondsKey = QStringLiteral("seconds");
const QString s_arrivedKey = QStringLiteral("cabinets_holding_it");
const QString s_errorKey = QStringLiteral("error");
const QString s_heldKey = QStringLiteral("held");
const QString s_coefficientsKey = QStringLiteral("coefficients");
const QString s_knownKey = QStringLiteral("known");
const QString s_isOnKey = QStringLiteral("on");

QJsonObject toJson(const Outcome& outcome)
{
    QJsonObject object{{s_stepKey, outcome.step},         {s_deviceKey, outcome.device},
                       {s_cabinetsKey, outcome.cabinets}, {s_sentKey, outcome.kind != Outcome::Kind::NotSent},
                       {s_resultKey, outcome.result},     {s_secondsKey, outcome.seconds},
                       {s_arrivedKey, outcome.arrived}};
    if (outcome.kind != Outcome::Kind::Answered)
        object.insert(s_errorKey, describe(outcome));
    return object;
}

Outcome outcomeFromJson(const QJsonObject& object)
{
    Outcome outcome;
    outcome.step = object.value(s_stepKey).toString();
    outcome.device = object.value(s_deviceKey).toString();
    outcome.cabinets = object.value(s_cabinetsKey).toInt();
    outcome.result = object.value(s_resultKey).toInt();
    outcome.seconds = object.value(s_secondsKey).toDouble();
    outcome.arrived = object.value(s_arrivedKey).toInt();
    outcome.error = object.value(s_errorKey).toString();
    if (object.value(s_sentKey).toBool())
        outcome.kind = kindOf(outcome.result, outcome.error);
    return outcome;
}

QJsonObject toJson(const HeldCorrection& held)
{
    QJsonArray coefficients;
    for (const int coefficient : held.coefficients)
        coefficients.append(coefficient);
    return {{s_cabinetsKey, held.cabinets}, {s_coefficientsKey, coefficients}, {s_isOnKey, held.isOn}};
}

HeldCorrection heldFromJson(const QJsonValue& value)
{
    HeldCorrection held;
    held.cabinets = value[s_cabinetsKey].toInt();
    held.isOn = value[s_isOnKey].toBool();
    const QJsonArray coefficients = value[s_coefficientsKey].toArray();
    for (std::size_t i = 0; i < held.coefficients.size(); ++i)
        held.coefficients[i] = static_cast<std::int16_t>(coefficients.at(static_cast<int>(i)).toInt());
    return held;
}

Known knownFromWord(const QString& word)
{
    const auto* found = std::find_if(knownWords.begin(), knownWords.end(),
                                     [&word](const char* known) { return word == QLatin1String(known); });
    return found == knownWords.end() ? Known::Acknowledged : static_cast<Known>(found - knownWords.begin());
}

} // namespace

bool DeviceRecord::isDone() const
{
    return !outcomes.empty() &&
           std::all_of(outcomes.begin(), outcomes.end(), [](const Outcome& outcome) { return outcome.isGood(); });
}

QString cabinetsText(int count)
{
    return count == 1 ? QStringLiteral("1 cabinet") : QStringLiteral("%1 cabinets").arg(count);
}

QJsonObject toJson(const DeviceRecord& record)
{
    QJsonArray outcomes;
    for (const Outcome& outcome : record.outcomes)
        outcomes.append(toJson(outcome));
    QJsonArray held;
    for (const HeldCorrection& correction : record.held)
        held.append(toJson(correction));
    return {
        {s_deviceKey, record.device}, {s_outcomesKey, outcomes}, {s_heldKey, held}, {s_knownKey, wordOf(record.known)}};
}

DeviceRecord recordFromJson(const QJsonObject& object)
{
    DeviceRecord record;
    record.device = object.value(s_deviceKey).toString();
    for (const QJsonValue outcome : object.value(s_outcomesKey).toArray())
        record.outcomes.push_back(outcomeFromJson(outcome.toObject()));
    for (const QJsonValue held : object.value(s_heldKey).toArray())
        record.held.append(heldFromJson(held));
    record.known = knownFromWord(object.value(s_knownKey).toString());
    return record;
}

} // namespace Calibration
