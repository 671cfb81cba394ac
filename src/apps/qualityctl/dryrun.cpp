#include "dryrun.h"

#include <simulator/recordingtransport.h>
#include <suite/action/action.h>

#include <QCryptographicHash>
#include <QJsonArray>
#include <QStringList>

#include <map>

namespace {

using CabinetList = std::vector<unsigned long long>;
using Recorded = Simulator::RecordingTransport::Recorded;

/// A value of a request, for people and for JSON.
struct Described
{
    QString text;
    QJsonValue json;
};

std::map<QString, Described> describeMap(const ParameterMap& map);

QString sha256(const QByteArray& bytes)
{
    return QString::fromLatin1(QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex());
}

/// What is too long to be shown: how long it is, and its digest.
Described digest(const QByteArray& bytes, const QString& unit)
{
    return {QStringLiteral("<%1 %2, SHA-256 %3>").arg(QString::number(bytes.size()), unit, sha256(bytes).left(16)),
            QJsonObject{{unit, bytes.size()}, {QStringLiteral("sha256"), sha256(bytes)}}};
}

Described describeText(const std::string& text)
{
    constexpr std::size_t shown = 40;
    if (text.size() > shown)
        return digest(QByteArray::fromStdString(text), QStringLiteral("characters"));
    const QString shownText = QString::fromStdString(text);
    return {QStringLiteral("\"%1\"").arg(shownText), shownText};
}

Described describeCabinets(const CabinetList& cids)
{
    QJsonArray array;
    for (const unsigned long long cid : cids)
        array.append(QString::number(cid));
    return {QStringLiteral("<%1 cabinets>").arg(cids.size()), array};
}

Described describeWords(const std::vector<unsigned short>& words)
{
    QStringList parts;
    QJsonArray array;
    for (const unsigned short bits : words) {
        const auto number = static_cast<short>(bits);
        parts << QString::number(number);
        array.append(number);
    }
    return {QStringLiteral("[%1]").arg(parts.join(QStringLiteral(", "))), array};
}

Described describeRecords(const std::vector<Parameters>& records)
{
    QStringList parts;
    QJsonArray array;
    for (const Parameters& record : records) {
        QStringList members;
        QJsonObject object;
        for (const auto& [key, value] : describeMap(record.arguments())) {
            members << QStringLiteral("%1 = %2").arg(key, value.text);
            object.insert(key, value.json);
        }
        parts << QStringLiteral("{%1}").arg(members.join(QStringLiteral(", ")));
        array.append(object);
    }
    return {QStringLiteral("[%1]").arg(parts.join(QStringLiteral(", "))), array};
}

Described describeValue(const boost::any& value)
{
    if (const auto* number = boost::any_cast<int>(&value))
        return {QString::number(*number), *number};
    if (const auto* flag = boost::any_cast<bool>(&value))
        return {*flag ? QStringLiteral("true") : QStringLiteral("false"), *flag};
    if (const auto* real = boost::any_cast<double>(&value))
        return {QString::number(*real, 'g', 10), *real};
    if (const auto* text = boost::any_cast<std::string>(&value))
        return describeText(*text);
    if (const auto* cids = boost::any_cast<CabinetList>(&value))
        return describeCabinets(*cids);
    if (const auto* bytes = boost::any_cast<std::vector<unsigned char>>(&value))
        return digest({reinterpret_cast<const char*>(bytes->data()), static_cast<int>(bytes->size())},
                      QStringLiteral("bytes"));
    if (const auto* words = boost::any_cast<std::vector<unsigned short>>(&value))
        return describeWords(*words);
    if (const auto* records = boost::any_cast<std::vector<Parameters>>(&value))
        return describeRecords(*records);
    return {QStringLiteral("?"), QJsonValue::Null};
}

/// The values of a map, sorted by key.
std::map<QString, Described> describeMap(const ParameterMap& map)
{
    std::map<QString, Described> items;
    for (const auto& [key, value] : map.items())
        items.emplace(QString::fromStdString(key), describeValue(value));
    return items;
}

/// Adds a request to both forms.
void describe(const Recorded& request, QString& text, QJsonArray& requests)
{
    const QString method =
        request.method == Action::Request::Method::Put ? QStringLiteral("put") : QStringLiteral("post");
    const QString action = QString::fromStdString(request.action);
    const QString device = QString::fromStdString(request.deviceId);
    text += QStringLiteral("would %1 %2 to %3\n").arg(method, action, device);
    QJsonObject arguments;
    for (const auto& [key, value] : describeMap(request.parameters.arguments())) {
        text += QStringLiteral("    %1 = %2\n").arg(key, value.text);
        arguments.insert(key, value.json);
    }
    QJsonObject options;
    for (const auto& [key, value] : describeMap(request.parameters.options())) {
        text += QStringLiteral("    (option) %1 = %2 s\n").arg(key, value.text);
        options.insert(key, value.json);
    }
    requests.append(QJsonObject{{QStringLiteral("action"), action},
                                {QStringLiteral("method"), method},
                                {QStringLiteral("device"), device},
                                {QStringLiteral("arguments"), arguments},
                                {QStringLiteral("options"), options}});
}

} // namespace

CommandResult dryRun(const std::function<void()>& sendAll)
{
    const auto recorder = std::make_shared<Simulator::RecordingTransport>();
    Action::setTransport(recorder);
    sendAll();
    Action::setTransport(nullptr);
    QString text;
    QJsonArray requests;
    for (const Recorded& request : recorder->requests())
        describe(request, text, requests);
    return {text, {{QStringLiteral("dry_run"), true}, {QStringLiteral("requests"), requests}}};
}
