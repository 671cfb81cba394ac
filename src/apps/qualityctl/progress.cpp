#include "progress.h"

#include "interrupt.h"

#include <unistd.h>

#include <cstdio>

namespace {

constexpr int barWidth = 30;

} // namespace

Progress::Progress(const Output& output) : m_isQuiet(output.quiet), m_isTerminal(isatty(STDERR_FILENO) != 0) {}

Progress::~Progress()
{
    if (m_isTerminal && !m_isQuiet && m_done > 0)
        std::fputs("\r\033[K", stderr); // the bar makes room for the result
}

void Progress::begin(int steps)
{
    m_total = qMax(1, steps);
    m_done = 0;
}

void Progress::sent(const Calibration::Outcome& outcome)
{
    const int before = m_done * 10 / m_total;
    ++m_done;
    if (m_isQuiet)
        return;
    const QByteArray what = QStringLiteral("%1 to %2").arg(outcome.step, outcome.device).toUtf8();
    const int percent = m_done * 100 / m_total;
    if (m_isTerminal) {
        const int filled = m_done * barWidth / m_total;
        const QString bar = QString(filled, QLatin1Char('#')) + QString(barWidth - filled, QLatin1Char('.'));
        std::fprintf(stderr, "\r\033[K[%s] %3d %% %s", qUtf8Printable(bar), percent, what.constData());
        std::fflush(stderr);
    } else if (m_done * 10 / m_total > before) {
        std::fprintf(stderr, "%3d %% %s\n", percent, what.constData());
    }
}

bool Progress::isStopWanted()
{
    return Interrupt::isRequested();
}
