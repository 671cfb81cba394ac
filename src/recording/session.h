#pragma once

#include <suite/common/result.h>

#include <QByteArray>
#include <QStringList>

#include <vector>

/// What went over a hub session or a gateway: written to a file as one JSON line a message, and played again in the
/// peer's place. docs/recordings.md has the format.
namespace Recording {

/// Which protocol was spoken.
enum class Kind { Hub, Gateway };

/// "hub" or "gateway".
QString wordOf(Kind kind);

/// One message, without the frame around it.
struct Message
{
    double seconds = 0.0; ///< since the recording began
    QString peer;         ///< "hub 127.0.0.1:9000"
    bool isReceived = false;
    QByteArray payload;
};

/// The first line of a recording that begins now.
QByteArray firstLineOf(Kind kind);

/// A message as a line of the file, without its end: as text where the payload is one, else in Base64; a
/// gateway's with a reading for people beside it. Any thread.
QByteArray lineOf(const Message& message, Kind kind);

/// A recording that has been read.
struct Session
{
    QString name; ///< of the file, for messages
    std::vector<Message> messages;

    /// Who was talked to, in the order of their first message.
    QStringList peers() const;
};

/// Reads a recording of a kind, up to 1 GiB; blocks meanwhile. Faults: no input; input/output; bad data, with the line.
Common::Result<Session> readSession(const QString& file, Kind kind);

} // namespace Recording
