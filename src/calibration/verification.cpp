#include "verification.h"

#include <QJsonArray>

namespace Calibration {

namespace {

/// The integers that a device's cabinets work with: the identity while the correction is off.
Model::GamutCoeff workingCoefficients(const HeldCorrection& held)
{
    Model::GamutCoeff coeff; // the identity
    if (held.isOn)
        coeff.setCoeffs({held.coefficients.begin(), held.coefficients.end()});
    return coeff;
}

void judge(const QString& device, const HeldCorrection& held, const Model::ColorGamutInfo& measured,
           Model::ColorGamutInfo target, Verification& verification)
{
    target.coeff = workingCoefficients(held);
    const auto figures = figuresOf(measured, target);
    Judgement judgement{device, held, std::nullopt, false};
    const QString subject = QStringLiteral("%1: %2 cabinets").arg(device, QString::number(held.cabinets));
    if (figures) {
        judgement.figures = *figures;
        judgement.isWithin = figures->worstDifference() <= verification.maxDifference;
        if (!judgement.isWithin)
            verification.faults << QStringLiteral("%1 differ by %2, above %3")
                                       .arg(subject, QString::number(figures->worstDifference(), 'f', 2),
                                            QString::number(verification.maxDifference));
    } else {
        verification.faults << QStringLiteral("%1: %2").arg(subject, figures.fault().message());
    }
    verification.judgements.push_back(judgement);
}

} // namespace

Common::Result<Verification> verify(const Journal& journal, double maxDifference)
{
    const auto measured = gamutFromJson(journal.inputs().value(QStringLiteral("measured")).toObject());
    const auto target = gamutFromJson(journal.inputs().value(QStringLiteral("target")).toObject());
    Verification verification;
    verification.target = QString::fromStdString(target.name);
    verification.maxDifference = maxDifference;
    for (const DeviceRecord& record : journal.records()) {
        if (!record.isDone())
            verification.faults << QStringLiteral("%1: not everything was sent").arg(record.device);
        for (const HeldCorrection& held : record.held)
            judge(record.device, held, measured, target, verification);
    }
    for (const QJsonValue device : journal.inputs().value(QStringLiteral("devices")).toArray()) {
        if (!journal.records().contains(device.toString()))
            verification.faults << QStringLiteral("%1: not served").arg(device.toString());
    }
    if (verification.judgements.empty())
        return Fault{Fault::Kind::BadData, QStringLiteral("calibration"), {}, QStringLiteral("no device was served")};
    return verification;
}

} // namespace Calibration
