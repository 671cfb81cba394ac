#include "session.h"

#include <calibration/input.h>
#include <gateway/reading.h>
#include <suite/common/jsonreader.h>

#include <QDateTime>
#include <QJsonDocument>

namespace Recording {

namespace {

using Common::Fault;
using Common::Result;

constexpr qint64 maxFileBytes = qint64{1024} * 1024 * 1024;
constexpr int formatVersion = 1;

QString directionOf(bool isReceived)
{
    return isReceived ? QStringLiteral("received") : QStringLiteral("sent");
}

bool isText(const QByteArray& payload)
{
    return QString::fromUtf8(payload).toUtf8() == payload;
}

/// A line, as an object or with what is wrong with it.
Result<QJsonObject> objectOf(const QByteArray& line, const QString& subject)
{
    QJsonParseError error{};
    const auto document = QJsonDocument::fromJson(line, &error);
    if (document.isObject())
        return document.object();
    const bool isJson = error.error == QJsonParseError::NoError;
    return Fault{Fault::Kind::BadData, subject, QStringLiteral("a JSON object"),
                 isJson ? QStringLiteral("another value") : error.errorString()};
}

Result<void> checkFirst(const QByteArray& line, Kind kind, const QString& subject)
{
    const auto first = objectOf(line, subject);
    if (!first)
        return first.fault();
    std::optional<Fault> fault;
    const Common::JsonReader reader(*first, fault);
    const QString found = reader.member("recording").text();
    const int version = reader.member("version").integer();
    if (!fault && (found != wordOf(kind) || version != formatVersion))
        fault = Fault{Fault::Kind::BadData,
                      {},
                      QStringLiteral("the recording of a %1, version %2").arg(wordOf(kind)).arg(formatVersion),
                      QStringLiteral("%1, version %2").arg(found).arg(version)};
    if (!fault)
        return {};
    fault->subject = subject + (fault->subject.isEmpty() ? QString() : QStringLiteral(": ") + fault->subject);
    return *fault;
}

QByteArray payloadOf(const Common::JsonReader& line)
{
    const auto text = line.member("text");
    if (!text.isMissing())
        return text.text().toUtf8();
    const auto payload = line.member("payload");
    const auto decoded =
        QByteArray::fromBase64Encoding(payload.text().toLatin1(), QByteArray::AbortOnBase64DecodingErrors);
    if (!decoded)
        payload.expect(QStringLiteral("Base64"));
    return *decoded;
}

bool isReceived(const Common::JsonReader& direction)
{
    const QString word = direction.text();
    if (word != directionOf(true) && word != directionOf(false))
        direction.expect(QStringLiteral("\"sent\" or \"received\""));
    return word == directionOf(true);
}

Result<Message> messageOf(const QByteArray& line, const QString& subject)
{
    const auto object = objectOf(line, subject);
    if (!object)
        return object.fault();
    std::optional<Fault> fault;
    const Common::JsonReader reader(*object, fault);
    Message message;
    message.seconds = reader.member("seconds").number(0.0);
    message.peer = reader.member("peer").text();
    message.isReceived = isReceived(reader.member("direction"));
    message.payload = payloadOf(reader);
    if (!fault)
        return message;
    fault->subject = QStringLiteral("%1: %2").arg(subject, fault->subject);
    return *fault;
}

} // namespace

QString wordOf(Kind kind)
{
    return kind == Kind::Hub ? QStringLiteral("hub") : QStringLiteral("gateway");
}

QByteArray lineOf(const Message& message, Kind kind)
{
    QJsonObject line{{QStringLiteral("seconds"), message.seconds},
                     {QStringLiteral("peer"), message.peer},
                     {QStringLiteral("direction"), directionOf(message.isReceived)}};
    if (kind == Kind::Gateway)
        line.insert(QStringLiteral("message"), Gateway::readingOf(message.payload));
    if (kind == Kind::Hub && isText(message.payload))
        line.insert(QStringLiteral("text"), QString::fromUtf8(message.payload));
    else
        line.insert(QStringLiteral("payload"), QString::fromLatin1(message.payload.toBase64()));
    return QJsonDocument(line).toJson(QJsonDocument::Compact);
}

QByteArray firstLineOf(Kind kind)
{
    return QJsonDocument(QJsonObject{{QStringLiteral("recording"), wordOf(kind)},
                                     {QStringLiteral("version"), formatVersion},
                                     {QStringLiteral("begun"), QDateTime::currentDateTimeUtc().toString(Qt::ISODate)}})
        .toJson(QJsonDocument::Compact);
}

QStringList Session::peers() const
{
    QStringList peers;
    for (const Message& message : messages) {
        if (!peers.contains(message.peer))
            peers << message.peer;
    }
    return peers;
}

Result<Session> readSession(const QString& file, Kind kind)
{
    const auto input = Calibration::readInput(file, QStringLiteral("recording"), maxFileBytes);
    if (!input)
        return input.fault();
    Session session{input->subject(), {}};
    QList<QByteArray> lines = input->bytes.split('\n');
    lines.removeLast(); // empty, or cut short by the end of the process
    const Fault empty{Fault::Kind::BadData, session.name, QStringLiteral("messages"), QStringLiteral("none")};
    if (lines.isEmpty())
        return empty;
    const auto subjectOf = [&](int i) { return QStringLiteral("%1, line %2").arg(session.name).arg(i + 1); };
    const auto first = checkFirst(lines.takeFirst(), kind, subjectOf(0));
    if (!first)
        return first.fault();
    if (lines.isEmpty())
        return empty;
    for (int i = 0; i < lines.size(); ++i) {
        auto message = messageOf(lines[i], subjectOf(i + 1));
        if (!message)
            return message.fault();
        session.messages.push_back(*std::move(message));
    }
    return session;
}

} // namespace Recording
