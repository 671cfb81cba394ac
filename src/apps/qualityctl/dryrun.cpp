#include "dryrun.h"

#include <simulator/recordingtransport.h>
#include <suite/action/action.h>

#include <QJsonArray>

namespace {

using CabinetList = std::vector<unsigned long long>;

QString describeValue(const boost::any& value)
{
    if (const auto* number = boost::any_cast<int>(&value))
        return QString::number(*number);
    if (const auto* flag = boost::any_cast<bool>(&value))
        return *flag ? QStringLiteral("true") : QStringLiteral("false");
    if (const auto* real = boost::any_cast<double>(&value))
        return QString::number(*real, 'g', 10);
    if (const auto* text = boost::any_cast<std::string>(&value))
        return text->size() <= 40 ? QStringLiteral("\"%1\"").arg(QString::fromStdString(*text))
                                  : QStringLiteral("<%1 characters>").arg(text->size());
    if (const auto* cids = boost::any_cast<CabinetList>(&value))
        return QStringLiteral("<%1 cabinets>").arg(cids->size());
    if (const auto* bytes = boost::any_cast<std::vector<unsigned char>>(&value))
        return QStringLiteral("<%1 bytes>").arg(bytes->size());
    if (const auto* words = boost::any_cast<std::vector<unsigned short>>(&value)) {
        QStringList parts;
        for (const unsigned short bits : *words)
            parts << QString::number(static_cast<short>(bits));
        return QStringLiteral("[%1]").arg(parts.join(QStringLiteral(", ")));
    }
    if (const auto* list = boost::any_cast<std::vector<Parameters>>(&value))
        return QStringLiteral("<%1 records>").arg(list->size());
    return QStringLiteral("?");
}

/// The values of a map, sorted by key.
std::map<std::string, QString> describeItems(const ParameterMap& map)
{
    std::map<std::string, QString> items;
    for (const auto& [key, value] : map.items())
        items.emplace(key, describeValue(value));
    return items;
}

} // namespace

CommandResult dryRun(const std::vector<SendStep>& steps, const CabinetSenderSpace::CabinetTargetMap& targets)
{
    const auto recorder = std::make_shared<Simulator::RecordingTransport>();
    Action::setTransport(recorder);
    for (const SendStep& step : steps)
        for (const auto& [device, cids] : targets)
            sendToDevice(step, device, cids, nullptr);
    QString text;
    QJsonArray requests;
    for (const auto& request : recorder->requests()) {
        const bool isPut = request.method == Action::Request::Method::Put;
        QJsonObject arguments;
        QJsonObject request_options;
        text += QStringLiteral("would %1 %2 to %3\n")
                    .arg(isPut ? QStringLiteral("put") : QStringLiteral("post"), QString::fromStdString(request.action),
                         QString::fromStdString(request.deviceId));
        for (const auto& [key, value] : describeItems(request.parameters.arguments())) {
            text += QStringLiteral("    %1 = %2\n").arg(QString::fromStdString(key), value);
            arguments.insert(QString::fromStdString(key), value);
        }
        for (const auto& [key, value] : describeItems(request.parameters.options())) {
            text += QStringLiteral("    (option) %1 = %2 s\n").arg(QString::fromStdString(key), value);
            request_options.insert(QString::fromStdString(key), value);
        }
        requests.append(QJsonObject{{QStringLiteral("action"), QString::fromStdString(request.action)},
                                    {QStringLiteral("method"), isPut ? QStringLiteral("put") : QStringLiteral("post")},
                                    {QStringLiteral("device"), QString::fromStdString(request.deviceId)},
                                    {QStringLiteral("arguments"), arguments},
                                    {QStringLiteral("options"), request_options}});
    }
    Action::setTransport(nullptr);
    return {text, {{QStringLiteral("dry_run"), true}, {QStringLiteral("requests"), requests}}};
}
