#pragma once

#include <QByteArray>
#include <QJsonObject>
#include <QList>

namespace Simulator {

/// The message hub's commands, apart from sockets and threads: takes one request, checks it, keeps what it brings and
/// gives the reply.
class HubCommands
{
public:
    /// The commands that it knows.
    enum Command { FineGray = 17, TargetGamut = 23, MeasuredGamut = 25, GrayTable = 55 };

    /// Error numbers of replies; 0 is success.
    enum Error { NotJson = 1, UnknownCommand = 2, WrongData = 3 };

    /// The reply to a request: {"error": 0}, for FineGray with "data"; or an error number with a "message".
    QByteArray execute(const QByteArray& request);

    /// The "data" that a command has brought last; empty before.
    QJsonObject received(int command) const { return m_received.value(QString::number(command)).toObject(); }

private:
    QJsonObject m_received; ///< by command number
};

/// The bytes of a gray-coefficient string ("0,1,255"); `isGood` tells whether it is one.
QList<unsigned char> parseDecimalList(const QString& text, bool& isGood);

} // namespace Simulator
