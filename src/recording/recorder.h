#pragma once

#include <recording/session.h>

#include <QElapsedTimer>
#include <QFile>

#include <functional>
#include <memory>
#include <mutex>

namespace Recording {

/// Writes a recording, each message as it goes: whatever ends the process leaves whole lines. All functions may be
/// called from any thread.
class Recorder : public std::enable_shared_from_this<Recorder>
{
public:
    /// Hears the messages of one connection.
    using Tap = std::function<void(const QByteArray& payload, bool isReceived)>;

    /// Begins a file, which must not be there yet. Fault: cannot create.
    static Common::Result<std::shared_ptr<Recorder>> begin(const QString& file, Kind kind);

    /// For a connection to `peer`; keeps the recorder.
    Tap tap(const QString& peer);
    /// What stood in the way of writing so far; nothing is written after a fault. Fault: input/output.
    Common::Result<void> state() const;

private:
    Recorder(const QString& file, Kind kind);
    void add(const QString& peer, const QByteArray& payload, bool isReceived);
    bool write(const QByteArray& line);

    const Kind m_kind;
    mutable std::mutex m_mutex; ///< guards what follows
    QElapsedTimer m_clock;
    QFile m_file;
    bool m_isSpoiled = false;
};

} // namespace Recording
