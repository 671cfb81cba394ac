#include "verificationreport.h"

#include <reports/figuresreport.h>
#include <reports/measurementreport.h>

#include <algorithm>
#include <cmath>

namespace Reports {

namespace {

using Calibration::Known;

/// A row per device and group of its cabinets that hold the same.
Table judgementTable(const Calibration::Verification& verification)
{
    Table table({{QStringLiteral("device"), QStringLiteral("device")},
                 {QStringLiteral("cabinets"), QStringLiteral("cabinets")},
                 {QStringLiteral("correction"), QStringLiteral("correction")},
                 {QStringLiteral("max_ciede2000"), QStringLiteral("CIEDE2000")},
                 {QStringLiteral("within"), QStringLiteral("result")},
                 {QStringLiteral("known"), QStringLiteral("known")}});
    for (const Calibration::Judgement& judgement : verification.judgements)
        table.add({judgement.device, judgement.held.cabinets,
                   flag(judgement.held.isOn, QStringLiteral("on"), QStringLiteral("off")),
                   judgement.figures ? decimal(judgement.difference, 2)
                                     : Cell(QStringLiteral("-"), QJsonValue(QJsonValue::Undefined)),
                   flag(judgement.isWithin, QStringLiteral("ok"),
                        judgement.figures ? QStringLiteral("DIFFERS") : QStringLiteral("DARK")),
                   wordOf(judgement.known)});
    return table;
}

/// How the journal knows what the cabinets held, for people.
QString source(const Calibration::Verdict& verdict)
{
    QStringList how;
    if (verdict.holding > 0)
        how << wordOf(verdict.known);
    if (verdict.isSimulated)
        how << QStringLiteral("simulated");
    if (!verdict.isPast)
        return QStringLiteral("From the cabinets: what they hold now") +
               (verdict.isSimulated ? QStringLiteral(" (simulated)") : QString());
    return (verdict.known == Known::Acknowledged && verdict.holding > 0
                ? QStringLiteral("From the journal: what the devices acknowledged")
                : QStringLiteral("From the journal: what the cabinets held when they were served")) +
           (how.isEmpty() ? QString() : QStringLiteral(" (%1)").arg(how.join(QStringLiteral(", "))));
}

} // namespace

QString heldWord(Known known)
{
    return QStringLiteral("computed, integers %1").arg(wordOf(known));
}

std::vector<HeldFigures> heldFigures(const Calibration::Verification& verification)
{
    constexpr int maxNames = 4;
    std::vector<HeldFigures> result;
    std::vector<QStringList> devices; // of each
    for (const Calibration::Judgement& judgement : verification.judgements) {
        if (!judgement.figures)
            continue;
        std::size_t i = 0;
        while (i < result.size() && result[i].figures != judgement.figures)
            ++i;
        if (i == result.size()) {
            result.push_back({judgement.figures, 0, {}, judgement.known});
            devices.emplace_back();
        }
        result[i].cabinets += judgement.held.cabinets;
        result[i].known = std::min(result[i].known, judgement.known);
        if (!devices[i].contains(judgement.device))
            devices[i] << judgement.device;
    }
    for (std::size_t i = 0; i < result.size(); ++i)
        result[i].devices = devices[i].size() > maxNames ? QStringLiteral("%1 devices").arg(devices[i].size())
                                                         : devices[i].join(QStringLiteral(", "));
    return result;
}

QJsonObject toJson(const Calibration::Verdict& verdict)
{
    QJsonObject object{{QStringLiteral("passed"), verdict.isPassed()},
                       {QStringLiteral("sentence"), verdict.sentence()},
                       {QStringLiteral("devices_holding_it"), verdict.holding},
                       {QStringLiteral("devices"), verdict.devices},
                       {QStringLiteral("max_de"), verdict.limit},
                       {QStringLiteral("strict"), verdict.isStrict},
                       {QStringLiteral("known"), wordOf(verdict.known)}};
    if (verdict.holding > 0 && std::isfinite(verdict.worst))
        object.insert(QStringLiteral("max_ciede2000"), verdict.worst);
    return object;
}

QString toText(const Calibration::Verification& verification)
{
    QString text = verification.verdict.sentence() + QLatin1String("\n\n") + source(verification.verdict) +
                   QLatin1String("\n\n") + warningLines(verification.warnings) + judgementTable(verification).toText();
    for (const HeldFigures& held : heldFigures(verification))
        text +=
            QStringLiteral("\nComputed for the coefficients %1:\n\n").arg(integersText(held.figures->coefficients)) +
            reachTable(*held.figures, heldWord(held.known)).toText() + QLatin1Char('\n') + reachText(*held.figures) +
            QLatin1Char('\n');
    return text;
}

QJsonObject toJson(const Calibration::Verification& verification)
{
    const QJsonArray rows = judgementTable(verification).toJson();
    QJsonArray devices;
    for (int i = 0; i < rows.size(); ++i) {
        QJsonObject device = rows.at(i).toObject();
        device.insert(QStringLiteral("coefficients"),
                      toJson(verification.judgements.at(static_cast<std::size_t>(i)).held.coefficients));
        devices.append(device);
    }
    QJsonArray shown;
    for (const HeldFigures& held : heldFigures(verification))
        shown.append(toJson(*held.figures));
    QJsonObject object = coverageJson(verification.coverageXy, verification.coverageUv);
    object.insert(QStringLiteral("measured"), verification.measured);
    object.insert(QStringLiteral("target"), verification.target);
    object.insert(QStringLiteral("simulated"), verification.verdict.isSimulated);
    object.insert(QStringLiteral("warnings"), QJsonArray::fromStringList(verification.warnings));
    object.insert(QStringLiteral("source"),
                  verification.verdict.isPast ? QStringLiteral("journal") : QStringLiteral("cabinets"));
    object.insert(QStringLiteral("verdict"), toJson(verification.verdict));
    object.insert(QStringLiteral("devices"), devices);
    object.insert(QStringLiteral("shown"), shown);
    return object;
}

} // namespace Reports
