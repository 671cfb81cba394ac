#include "hubcommands.h"

#include <QJsonDocument>
#include <QStringList>

namespace Simulator {

namespace {

constexpr int fineGrayLevel = 14;
constexpr int fineGrayMode = 1;

QByteArray toText(const QJsonObject& reply)
{
    return QJsonDocument(reply).toJson(QJsonDocument::Compact);
}

QByteArray refusal(HubCommands::Error error, const QString& message)
{
    return toText({{QStringLiteral("error"), error}, {QStringLiteral("message"), message}});
}

/// What is wrong with the points of a gamut; empty when nothing is.
QString pointsFault(const QJsonObject& data)
{
    for (const char* name : {"rLxy", "gLxy", "bLxy", "wLxy"}) {
        const QJsonObject point = data.value(QLatin1String(name)).toObject();
        for (const char* member : {"lum", "cx", "cy"}) {
            if (!point.value(QLatin1String(member)).isDouble())
                return QStringLiteral("data.%1.%2: expected a number").arg(QLatin1String(name), QLatin1String(member));
        }
    }
    return {};
}

QString grayFault(const QJsonObject& data)
{
    int length = -1;
    for (const char* name : {"rGrayCoeffs", "gGrayCoeffs", "bGrayCoeffs", "magnitude"}) {
        const QJsonValue value = data.value(QLatin1String(name));
        bool isGood = value.isString();
        const auto bytes = parseDecimalList(value.toString(), isGood);
        if (!value.isString() || !isGood)
            return QStringLiteral("data.%1: expected numbers from 0 to 255 joined by commas").arg(QLatin1String(name));
        if (length >= 0 && bytes.size() != length)
            return QStringLiteral("data.%1: expected %2 numbers, found %3")
                .arg(QLatin1String(name))
                .arg(length)
                .arg(bytes.size());
        length = bytes.size();
    }
    return {};
}

QString dataFault(int command, const QJsonObject& data)
{
    if (command == HubCommands::GrayTable)
        return grayFault(data);
    if (command == HubCommands::TargetGamut && !data.value(QLatin1String("name")).isString())
        return QStringLiteral("data.name: expected a text");
    return pointsFault(data);
}

} // namespace

QList<unsigned char> parseDecimalList(const QString& text, bool& isGood)
{
    QList<unsigned char> bytes;
    isGood = true;
    if (text.isEmpty())
        return bytes;
    for (const QString& number : text.split(QLatin1Char(','))) {
        const uint value = number.toUInt(&isGood, 10);
        isGood = isGood && value <= 255 && QString::number(value) == number;
        if (!isGood)
            return bytes;
        bytes.append(static_cast<unsigned char>(value));
    }
    return bytes;
}

QByteArray HubCommands::execute(const QByteArray& request)
{
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(request, &error);
    if (error.error != QJsonParseError::NoError || !document.isObject())
        return refusal(NotJson, QStringLiteral("expected a JSON object"));
    const QJsonObject root = document.object();
    const int command = root.value(QLatin1String("cmd")).toInt(-1);
    if (command == FineGray)
        return toText({{QStringLiteral("error"), 0},
                       {QStringLiteral("data"), QJsonObject{{QStringLiteral("level"), fineGrayLevel},
                                                            {QStringLiteral("mode"), fineGrayMode}}}});
    if (command != TargetGamut && command != MeasuredGamut && command != GrayTable)
        return refusal(UnknownCommand, QStringLiteral("unknown command %1").arg(command));
    const QJsonObject data = root.value(QLatin1String("data")).toObject();
    const QString fault = dataFault(command, data);
    if (!fault.isEmpty())
        return refusal(WrongData, fault);
    m_received.insert(QString::number(command), data);
    return toText({{QStringLiteral("error"), 0}});
}

} // namespace Simulator
