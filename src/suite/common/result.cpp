#include "result.h"

namespace Common {

QString Fault::message() const
{
    QString what = found;
    if (!expected.isEmpty()) {
        what = QStringLiteral("expected ") + expected;
        if (!found.isEmpty())
            what += QStringLiteral(", found ") + found;
    }
    return subject.isEmpty() ? what : subject + QStringLiteral(": ") + what;
}

} // namespace Common
