#include "hubaddress.h"

#include <QHostAddress>
#include <QRegularExpression>

namespace Calibration {

QString HubAddress::text() const
{
    const bool isV6 = host.contains(QLatin1Char(':'));
    return (isV6 ? QStringLiteral("[%1]:%2") : QStringLiteral("%1:%2")).arg(host, QString::number(port));
}

QString HubAddress::name() const
{
    return QStringLiteral("hub ") + text();
}

Common::Result<HubAddress> parseHubAddress(const QString& text)
{
    static const QRegularExpression form(
        QStringLiteral("^(?:\\[(?<v6>[^\\]\\s]+)\\]|(?<name>[^\\[\\]:/\\s]+)):(?<port>[0-9]{1,5})$"));
    const auto match = form.match(text);
    const QString v6 = match.captured(QStringLiteral("v6"));
    const QHostAddress numeric(v6.isEmpty() ? match.captured(QStringLiteral("name")) : v6);
    const bool isHost = v6.isEmpty() || numeric.protocol() == QAbstractSocket::IPv6Protocol;
    bool isPort = false;
    const quint16 port = match.captured(QStringLiteral("port")).toUShort(&isPort);
    if (!match.hasMatch() || !isHost || !isPort || port == 0)
        return Common::Fault{Common::Fault::Kind::Usage,
                             {},
                             QStringLiteral("HOST:PORT, as 192.0.2.7:9000 or [::1]:9000, with a port from 1 to 65535"),
                             text.isEmpty() ? QStringLiteral("nothing") : text};
    HubAddress address;
    address.host = numeric.isNull() ? match.captured(QStringLiteral("name")).toLower() : numeric.toString();
    address.port = port;
    return address;
}

} // namespace Calibration
