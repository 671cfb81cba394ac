#include "verdict.h"

#include <QStringList>

#include <cmath>

namespace Calibration {

namespace {

/// A limit as people write it: "1.0".
QString limitText(double limit)
{
    const QString text = QString::number(limit);
    const bool isWhole = limit == std::floor(limit) && !text.contains(QLatin1Char('e'));
    return !isWhole ? text : text + QLatin1String(".0");
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
    const bool isWithin = worst <= limit;
    const QString format = isWithin ? QStringLiteral("at most %1 of %2") : QStringLiteral("up to %1, above %2");
    const QString two = QString::number(worst, 'f', 2);
    return format.arg(isWithin || two.toDouble() > limit ? two : QString::number(worst), limitText(limit));
}

QString Verdict::result() const
{
    switch (kind) {
    case Kind::Passed:
        return QStringLiteral("PASSED");
    case Kind::Differs:
        return QStringLiteral("DIFFERS");
    case Kind::Partly:
        return QStringLiteral("PARTLY APPLIED");
    case Kind::NotApplied:
        return QStringLiteral("NOT APPLIED");
    case Kind::Interrupted:
        return QStringLiteral("INTERRUPTED");
    }
    return {};
}

QString Verdict::details() const
{
    QStringList remarks;
    if (holding > 0)
        remarks << wordOf(known);
    if (isSimulated)
        remarks << QStringLiteral("simulated");
    if (isPast)
        remarks << QStringLiteral("from the journal");
    const bool isWord = holding > 0 && known == Known::Acknowledged; // nobody looked
    const QString verb =
        isWord ? QStringLiteral("acknowledged") : (isPast ? QStringLiteral("held") : QStringLiteral("hold"));
    return QStringLiteral("%1 of %2 devices %3 %4 correction")
               .arg(QString::number(holding), QString::number(devices), verb,
                    kind == Kind::Differs ? QStringLiteral("a") : QStringLiteral("the")) +
           (holding > 0 ? difference(*this) : QString()) +
           (isAsBright ? QString() : QStringLiteral(", white not as bright as wanted")) +
           (remarks.isEmpty() ? QString() : QStringLiteral(" (%1)").arg(remarks.join(QStringLiteral(", "))));
}

QString Verdict::sentence() const
{
    return result() + QLatin1String(": ") + details();
}

} // namespace Calibration
