#include "verdict.h"

#include <QStringList>

#include <cmath>

namespace Calibration {

namespace {

QString opening(Verdict::Kind kind)
{
    switch (kind) {
    case Verdict::Kind::Passed:
        return QStringLiteral("PASSED");
    case Verdict::Kind::Differs:
        return QStringLiteral("DIFFERS");
    case Verdict::Kind::Partly:
        return QStringLiteral("PARTLY APPLIED");
    case Verdict::Kind::NotApplied:
        return QStringLiteral("NOT APPLIED");
    case Verdict::Kind::Interrupted:
        return QStringLiteral("INTERRUPTED");
    }
    return {};
}

/// A limit as people write it: "1.0".
QString limitText(double limit)
{
    const QString text = QString::number(limit);
    return text.contains(QLatin1Char('.')) ? text : text + QLatin1String(".0");
}

QString difference(const Verdict& verdict)
{
    if (std::isinf(verdict.worst))
        return QStringLiteral(", on which white gives no light");
    return QStringLiteral(", CIEDE2000%1 %2")
        .arg(verdict.isStrict ? QStringLiteral(" from the target") : QString(),
             differenceText(verdict.worst, verdict.limit));
}

} // namespace

QString differenceText(double worst, double limit)
{
    const QString format = worst <= limit ? QStringLiteral("at most %1 of %2") : QStringLiteral("up to %1, above %2");
    return format.arg(QString::number(worst, 'f', 2), limitText(limit));
}

QString Verdict::sentence() const
{
    QStringList remarks;
    if (holding > 0)
        remarks << wordOf(known);
    if (isSimulated)
        remarks << QStringLiteral("simulated");
    return QStringLiteral("%1: %2 of %3 devices hold %4 correction")
               .arg(opening(kind), QString::number(holding), QString::number(devices),
                    kind == Kind::Differs ? QStringLiteral("a") : QStringLiteral("the")) +
           (holding > 0 ? difference(*this) : QString()) +
           (isAsBright ? QString() : QStringLiteral(", white not as bright as wanted")) +
           (remarks.isEmpty() ? QString() : QStringLiteral(" (%1)").arg(remarks.join(QStringLiteral(", "))));
}

} // namespace Calibration
