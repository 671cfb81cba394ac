#include "recorder.h"

#include <calibration/output.h>

namespace Recording {

using Common::Fault;
using Common::Result;

Recorder::Recorder(const QString& file, Kind kind) : m_kind(kind), m_file(file)
{
    m_clock.start();
}

Result<std::shared_ptr<Recorder>> Recorder::begin(const QString& file, Kind kind)
{
    std::shared_ptr<Recorder> recorder(new Recorder(file, kind));
    // Unbuffered: a line goes to the system as a whole.
    if (!recorder->m_file.open(QIODevice::WriteOnly | QIODevice::NewOnly | QIODevice::Unbuffered) ||
        !recorder->write(firstLineOf(kind)))
        return Fault{Fault::Kind::CannotCreate, QStringLiteral("recording %1").arg(file), QStringLiteral("a new file"),
                     recorder->m_file.exists() ? QStringLiteral("one that exists") : recorder->m_file.errorString()};
    return recorder;
}

Recorder::Tap Recorder::tap(const QString& peer)
{
    return [self = shared_from_this(), peer](const QByteArray& payload, bool isReceived) {
        self->add(peer, payload, isReceived);
    };
}

Result<void> Recorder::state() const
{
    const std::lock_guard lock(m_mutex);
    if (!m_isSpoiled)
        return {};
    return Fault{
        Fault::Kind::InputOutput, QStringLiteral("recording %1").arg(m_file.fileName()), {}, m_file.errorString()};
}

void Recorder::add(const QString& peer, const QByteArray& payload, bool isReceived)
{
    const std::lock_guard lock(m_mutex);
    if (m_isSpoiled)
        return;
    const double seconds = static_cast<double>(m_clock.nsecsElapsed()) / 1e9;
    m_isSpoiled = !write(lineOf({seconds, peer, isReceived, payload}, m_kind));
}

bool Recorder::write(const QByteArray& line)
{
    return Calibration::writeThrough(m_file, line + '\n');
}

} // namespace Recording
