#include "verification.h"

#include <calibration/destination.h>
#include <calibration/gamut.h>

#include <QJsonArray>

#include <cmath>
#include <limits>

namespace Calibration {

namespace {

/// The integers that cabinets work with: the identity while the correction is off.
Model::GamutCoeff workingCoefficients(const HeldCorrection& held)
{
    Model::GamutCoeff coeff; // the identity
    if (held.isOn)
        coeff.setCoeffs({held.coefficients.begin(), held.coefficients.end()});
    return coeff;
}

/// Judges one record after the other; equal integers are computed once.
class Judge
{
public:
    Judge(const Model::ColorGamutInfo& measured, const Model::ColorGamutInfo& target, const Acceptance& acceptance,
          Verification& verification)
        : m_measured(measured), m_target(target), m_acceptance(acceptance), m_verification(verification)
    {}

    void add(const DeviceRecord& record)
    {
        Verdict& verdict = m_verification.verdict;
        ++verdict.devices;
        const QString fault = faultOf(record);
        if (!fault.isEmpty())
            m_verification.faults << QStringLiteral("%1: %2").arg(record.device, fault);
        for (const HeldCorrection& held : record.held) {
            const Judgement judgement = judge(record, held);
            if (fault.isEmpty())
                count(judgement);
            m_verification.judgements.push_back(judgement);
        }
        if (fault.isEmpty()) {
            verdict.known = verdict.holding == 0 ? record.known : std::min(verdict.known, record.known);
            ++verdict.holding;
        }
    }

private:
    /// Why a device does not hold the correction, or is not known to; empty where it does.
    static QString faultOf(const DeviceRecord& record)
    {
        if (record.outcomes.empty() || record.outcomes.front().kind == Outcome::Kind::NotSent)
            return QStringLiteral("not served");
        if (!record.isDone())
            return QStringLiteral("does not hold everything");
        int known = 0;
        for (const HeldCorrection& held : record.held)
            known += std::max(0, held.cabinets);
        const int cabinets = record.outcomes.front().cabinets;
        if (cabinets <= 0)
            return QStringLiteral("has no cabinets");
        return known == cabinets ? QString()
                                 : QStringLiteral("of %1, %2 known to hold it").arg(cabinetsText(cabinets)).arg(known);
    }

    /// Takes a group of cabinets of a device that holds everything into the verdict.
    void count(const Judgement& judgement)
    {
        Verdict& verdict = m_verification.verdict;
        verdict.worst = std::max(verdict.worst, judgement.difference);
        const bool isFar = judgement.difference > m_acceptance.maxDifference;
        verdict.isAsBright = verdict.isAsBright && (judgement.isWithin || isFar);
        if (judgement.isWithin)
            return;
        const QString subject = QStringLiteral("%1: %2").arg(judgement.device, cabinetsText(judgement.held.cabinets));
        if (!judgement.figures)
            m_verification.faults << QStringLiteral("%1 give no light").arg(subject);
        else if (isFar)
            m_verification.faults << QStringLiteral("%1 differ%2 by CIEDE2000 %3, above %4")
                                         .arg(subject,
                                              m_acceptance.isStrict ? QStringLiteral(" from the target") : QString(),
                                              QString::number(judgement.difference, 'f', 2),
                                              QString::number(m_acceptance.maxDifference));
        else
            m_verification.faults << QStringLiteral("%1 show white at %2 cd/m2, wanted %3")
                                         .arg(subject, QString::number(whiteOf(*judgement.figures), 'f', 1),
                                              QString::number(m_target.wLxy.lum, 'f', 1));
    }

    Judgement judge(const DeviceRecord& record, const HeldCorrection& held)
    {
        const auto figures = figuresFor(held);
        Judgement judgement{record.device, held, record.known, {}, std::numeric_limits<double>::infinity(), false};
        if (!*figures)
            return judgement;
        judgement.figures = std::shared_ptr<const Figures>(figures, &**figures);
        judgement.difference = m_acceptance.isStrict ? (*figures)->worst() : (*figures)->worstHeld();
        judgement.isWithin = judgement.difference <= m_acceptance.maxDifference && isAsBright(judgement);
        return judgement;
    }

    /// cd/m2; 0 where it is not known.
    double whiteOf(const Figures& figures) const { return figures.corners.whiteKept * m_measured.wLxy.lum; }

    bool isAsBright(const Judgement& judgement) const
    {
        constexpr double tolerance = 0.01;
        const double wanted = m_target.wLxy.lum;
        const double shown = judgement.figures ? whiteOf(*judgement.figures) : 0.0;
        return !(wanted > 0.0) || !(shown > 0.0) || std::abs(shown / wanted - 1.0) <= tolerance;
    }

    std::shared_ptr<const Common::Result<Figures>> figuresFor(const HeldCorrection& held)
    {
        Model::ColorGamutInfo target = m_target;
        target.coeff = workingCoefficients(held);
        auto& figures = m_figures[signedCoefficients(target.coeff.getCoeffs())];
        if (!figures)
            figures = std::make_shared<const Common::Result<Figures>>(figuresOf(m_measured, target));
        return figures;
    }

    const Model::ColorGamutInfo& m_measured;
    const Model::ColorGamutInfo& m_target;
    const Acceptance m_acceptance;
    Verification& m_verification;
    std::map<Colour::Coefficients, std::shared_ptr<const Common::Result<Figures>>> m_figures;
};

/// Replaces what is known of a device's cabinets by what they hold now.
void askAgain(DeviceRecord& record, const CabinetsNow& now)
{
    const auto target = now.targets.find(record.device.toStdString());
    record.held = target == now.targets.end() ? QList<HeldCorrection>() : heldBy(readBack(now.reader, {*target}));
    record.known = Known::ReadBack;
}

Verdict::Kind kindOf(const Verdict& verdict)
{
    if (verdict.holding == 0)
        return Verdict::Kind::NotApplied;
    if (verdict.holding < verdict.devices)
        return Verdict::Kind::Partly;
    return verdict.worst <= verdict.limit && verdict.isAsBright ? Verdict::Kind::Passed : Verdict::Kind::Differs;
}

} // namespace

Verification judge(const Model::ColorGamutInfo& measured, const Model::ColorGamutInfo& target,
                   const std::vector<DeviceRecord>& records, const Acceptance& acceptance)
{
    Verification verification;
    verification.measured = QString::fromStdString(measured.name);
    verification.target = QString::fromStdString(target.name);
    verification.coverageXy = Colour::coverage(primariesOf(measured), primariesOf(target));
    verification.coverageUv = Colour::coverage(uvPrime(primariesOf(measured)), uvPrime(primariesOf(target)));
    verification.verdict.limit = acceptance.maxDifference;
    verification.verdict.isStrict = acceptance.isStrict;
    Judge judge(measured, target, acceptance, verification);
    for (const DeviceRecord& record : records)
        judge.add(record);
    verification.verdict.kind = kindOf(verification.verdict);
    return verification;
}

Common::Result<Verification> verify(const Journal& journal, const Acceptance& acceptance, const CabinetsNow* now)
{
    const QJsonObject& inputs = journal.inputs();
    std::vector<DeviceRecord> records;
    for (const QJsonValue device : inputs.value(QStringLiteral("devices")).toArray()) {
        records.push_back(journal.records().value(device.toString()));
        records.back().device = device.toString();
        if (now)
            askAgain(records.back(), *now);
    }
    if (records.empty())
        return Fault{Fault::Kind::BadData, QStringLiteral("calibration"), {}, QStringLiteral("names no device")};
    const auto measured = gamutFromJson(inputs.value(QStringLiteral("measured")).toObject());
    const auto target = gamutFromJson(inputs.value(QStringLiteral("target")).toObject());
    for (const auto& [gamut, name] : {std::pair(&measured, "measured"), {&target, "target"}}) {
        const auto made =
            requireGamut(*gamut, QStringLiteral("calibration journal, gamut \"%1\"").arg(QLatin1String(name)));
        if (!made)
            return made.fault();
    }
    auto verification = judge(measured, target, records, acceptance);
    for (const QJsonValue warning : inputs.value(QStringLiteral("warnings")).toArray())
        verification.warnings << warning.toString();
    verification.verdict.isPast = !now;
    verification.verdict.isSimulated = inputs.value(QStringLiteral("simulated")).toBool();
    return verification;
}

} // namespace Calibration
